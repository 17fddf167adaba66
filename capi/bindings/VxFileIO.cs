// The constants, structs and functions of vxfileio.h, which describes them, for C#.
//
// Structs are classes that know their size; null stands for NULL. A handle closes itself, at the latest when it is
// collected. Only vx_writer_finish reports that a file isn't complete; closing a writer doesn't. The DLL, or
// libvxfileio_c.so, must be where the system finds it.
using System;
using System.Runtime.InteropServices;
using System.Text;

public sealed class VxHandle : SafeHandle {
    VxHandle() : base(IntPtr.Zero, true) { }
    public override bool IsInvalid { get { return handle == IntPtr.Zero; } }
    protected override bool ReleaseHandle() { return Vx.vx_close(handle) == Vx.VX_OK; }
}

public sealed class VxException : Exception {
    public readonly int Code;
    public VxException(int code, string text) : base(text) { Code = code; }
}

public static class Vx {
    const string Library = "vxfileio_c";

    /// <summary>Throws a VxException if a call returned anything but VX_OK. The handle is that of the call, or null.
    /// </summary>
    public static void Check(int code, VxHandle handle) {
        if (code == VX_OK) return;
        var text = new byte[1000];
        long size = text.Length;
        bool hasText = handle != null && code != VX_ERROR_BUSY;
        int found = hasText ? vx_last_error(handle, text, ref size) : VX_ERROR_HANDLE;
        if (found == VX_ERROR_BUSY || found == VX_ERROR_HANDLE) vx_code_text(code, text, ref size);
        throw new VxException(code, Encoding.UTF8.GetString(text).TrimEnd('\0'));
    }

    /// <summary>A call that fills a buffer, or stores what it needs if the buffer is null.</summary>
    public delegate int Fill<T>(T[] buffer, ref long count);

    /// <summary>Returns an array that a call fills.</summary>
    public static T[] Get<T>(VxHandle handle, Fill<T> call) {
        long count = 0;
        Check(call(null, ref count), handle);
        var buffer = new T[count];
        Check(call(buffer, ref count), handle);
        return buffer;
    }

    /// <summary>Returns a text that a call fills. What isn't UTF-8 is taken as Latin-1; Get has the bytes.</summary>
    public static string GetText(VxHandle handle, Fill<byte> call) {
        byte[] stored = Get(handle, call);
        byte[] text = Get(null, (byte[] to, ref long size) => vx_to_utf8(stored, stored.Length - 1, to, ref size));
        return Encoding.UTF8.GetString(text, 0, text.Length - 1);
    }

    // <declarations> capi/tools/bindings.py makes them from the header.
    public const int VX_OK = 0;
    public const int VX_ERROR_ARGUMENT = 1;
    public const int VX_ERROR_HANDLE = 2;
    public const int VX_ERROR_KIND = 3;
    public const int VX_ERROR_BUSY = 4;
    public const int VX_ERROR_STATE = 5;
    public const int VX_ERROR_STRUCT = 6;
    public const int VX_ERROR_SHORT_BUFFER = 7;
    public const int VX_ERROR_NOT_FOUND = 8;
    public const int VX_ERROR_TYPE = 9;
    public const int VX_ERROR_VALUE = 10;
    public const int VX_ERROR_REFUSED = 11;
    public const int VX_ERROR_FILE = 20;
    public const int VX_ERROR_WRITE = 21;
    public const int VX_DAMAGED = 22;
    public const int VX_CANCELLED = 30;
    public const int VX_END = 31;
    public const int VX_ERROR_MEMORY = 40;
    public const int VX_ERROR_INTERNAL = 41;
    public const int VX_RAW_HEADER_ID = 0;
    public const int VX_RAW_FILE_TYPE = 1;
    public const int VX_RAW_PROGRAM_VERSION = 2;
    public const int VX_RAW_GUID = 3;
    public const int VX_RAW_PLATE_ID = 4;
    public const int VX_RAW_COMPOUND_NAME = 5;
    public const int VX_RAW_PRE_QC = 0;
    public const int VX_RAW_COMPOUND_TEST = 1;
    public const int VX_RAW_POST_QC = 2;
    public const int VX_CREATE_NEW = 0;
    public const int VX_CREATE_REPLACE = 1;
    public const int VX_SETTINGS = 0;
    public const int VX_RESULTS = 1;
    public const int VX_TYPE_OBJECT = 0;
    public const int VX_TYPE_LIST = 1;
    public const int VX_TYPE_MAP = 2;
    public const int VX_TYPE_TEXT = 3;
    public const int VX_TYPE_WORD = 4;
    public const int VX_TYPE_CHARACTER = 5;
    public const int VX_TYPE_BOOL = 6;
    public const int VX_TYPE_INTEGER = 7;
    public const int VX_TYPE_DOUBLE = 8;
    public const int VX_TABLE_RESPONSES = 0;
    public const int VX_TABLE_MEANS = 1;
    public const int VX_TABLE_BEATS = 2;
    public const int VX_TABLE_AVERAGES = 3;
    public const int VX_FILE_RAW = 0;
    public const int VX_FILE_SETTINGS = 1;
    public const int VX_FILE_RESULTS = 2;
    public const int VX_FILE_WORKBOOK = 3;
    public const int VX_FINDING_WHERE = 0;
    public const int VX_FINDING_FOUND = 1;
    public const int VX_FINDING_EXPECTED = 2;
    public const int VX_FINDING_MEANING = 3;
    public const int VX_VERSION = 10000;
    public const long VX_TIME_FIRST = -9223372036854775808;
    public const long VX_TIME_LAST = 9223372036854775807;
    public const int VX_ALL_WELLS = -1;
    public const long VX_MISSING = -9223372036854775808;

    [StructLayout(LayoutKind.Sequential)]
    public class vx_raw_info {
        public long size = Marshal.SizeOf(typeof(vx_raw_info));
        public long recordings;
        public int file_version;
        public int compound_id;
    }

    [StructLayout(LayoutKind.Sequential)]
    public class vx_recording_info {
        public long size = Marshal.SizeOf(typeof(vx_recording_info));
        public long dose;
        public long recording_time;
        public ulong start_time;
        public long wells;
        public int number;
        public int is_finished;
    }

    [StructLayout(LayoutKind.Sequential)]
    public class vx_recording_options {
        public long size = Marshal.SizeOf(typeof(vx_recording_options));
        public int unfinished;
        public int up_to_damage;
    }

    [StructLayout(LayoutKind.Sequential)]
    public class vx_recording_state {
        public long size = Marshal.SizeOf(typeof(vx_recording_state));
        public long segments;
        public long wells;
        public long certain_samples;
    }

    [StructLayout(LayoutKind.Sequential)]
    public class vx_well_info {
        public long size = Marshal.SizeOf(typeof(vx_well_info));
        public double units_per_ad;
        public long interval;
        public int well;
        public int ad_zero;
    }

    [StructLayout(LayoutKind.Sequential)]
    public class vx_segment_info {
        public long size = Marshal.SizeOf(typeof(vx_segment_info));
        public long samples;
        public long time_from;
        public long time_to;
        public long offset;
        public int well;
        public int reserved;
    }

    [StructLayout(LayoutKind.Sequential)]
    public class vx_selected_well {
        public long size = Marshal.SizeOf(typeof(vx_selected_well));
        public long samples;
        public long missing;
        public long first;
        public long runs;
        public int well;
        public int reserved;
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct vx_run {
        public long time_from;
        public long interval;
        public long samples;
        public long first;
    }

    [StructLayout(LayoutKind.Sequential)]
    public class vx_file_header {
        public long size = Marshal.SizeOf(typeof(vx_file_header));
        [MarshalAs(UnmanagedType.LPUTF8Str)] public string header_id;
        [MarshalAs(UnmanagedType.LPUTF8Str)] public string file_type;
        [MarshalAs(UnmanagedType.LPUTF8Str)] public string program_version;
        [MarshalAs(UnmanagedType.LPUTF8Str)] public string guid;
        [MarshalAs(UnmanagedType.LPUTF8Str)] public string plate_id;
        [MarshalAs(UnmanagedType.LPUTF8Str)] public string compound_name;
        public int file_version;
        public int compound_id;
    }

    [StructLayout(LayoutKind.Sequential)]
    public class vx_recording_header {
        public long size = Marshal.SizeOf(typeof(vx_recording_header));
        [MarshalAs(UnmanagedType.LPUTF8Str)] public string task;
        public long dose;
        public ulong start_time;
        public long recording_time;
        public int number;
        public int reserved;
    }

    [StructLayout(LayoutKind.Sequential)]
    public class vx_plan_result {
        public long size = Marshal.SizeOf(typeof(vx_plan_result));
        public long wells;
        public long wells_that_fit;
        public long cells;
        public int fits;
        public int reserved;
    }

    [StructLayout(LayoutKind.Sequential)]
    public class vx_plan_cell {
        public long size = Marshal.SizeOf(typeof(vx_plan_cell));
        public long room;
        public long needed;
        public long wells_that_fit;
        public int is_list;
        public int reserved;
    }

    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate int vx_callbacks_progress(IntPtr user, long done, long total);

    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    public delegate int vx_callbacks_finding(IntPtr user, long offset, [MarshalAs(UnmanagedType.LPUTF8Str)] string
        where, [MarshalAs(UnmanagedType.LPUTF8Str)] string meaning);

    [StructLayout(LayoutKind.Sequential)]
    public class vx_callbacks {
        public long size = Marshal.SizeOf(typeof(vx_callbacks));
        public IntPtr user;
        public vx_callbacks_progress progress;
        public vx_callbacks_finding finding;
    }

    [StructLayout(LayoutKind.Sequential)]
    public class vx_recover_options {
        public long size = Marshal.SizeOf(typeof(vx_recover_options));
        public int keep_cut;
        public int replace;
    }

    [StructLayout(LayoutKind.Sequential)]
    public class vx_report_summary {
        public long size = Marshal.SizeOf(typeof(vx_report_summary));
        public long findings;
        public long kept;
        public long bytes;
        public int is_sound;
        public int is_usable;
    }

    [StructLayout(LayoutKind.Sequential)]
    public class vx_finding {
        public long size = Marshal.SizeOf(typeof(vx_finding));
        public long offset;
        public long end;
    }

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_close(IntPtr handle);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_last_error(VxHandle handle, [In, Out] byte[] buffer, ref long size);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_code_text(int code, [In, Out] byte[] buffer, ref long size);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_get_version(ref int version);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_to_utf8(byte[] bytes, long length, [In, Out] byte[] buffer, ref long size);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_raw_open(out VxHandle @out, [MarshalAs(UnmanagedType.LPUTF8Str)] string path);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_raw_get_info(VxHandle raw, [In, Out] vx_raw_info info);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_raw_get_text(VxHandle raw, int text, [In, Out] byte[] buffer, ref long size);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_raw_get_list(VxHandle raw, int list, [In, Out] long[] values, ref long count);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_raw_get_recording(VxHandle raw, long index, [In, Out] vx_recording_info info);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_raw_get_task(VxHandle raw, long index, [In, Out] byte[] buffer, ref long size);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_raw_find_recording(VxHandle raw, [MarshalAs(UnmanagedType.LPUTF8Str)] string task, int
        number, ref long index);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_recording_open(out VxHandle @out, VxHandle raw, long index, [In] vx_recording_options
        options);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_recording_get_state(VxHandle recording, [In, Out] vx_recording_state state);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_recording_get_damage(VxHandle recording, [In, Out] byte[] buffer, ref long size);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_recording_get_wells(VxHandle recording, [In, Out] int[] wells, ref long count);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_recording_get_well(VxHandle recording, int well, [In, Out] vx_well_info info);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_recording_get_segment(VxHandle recording, long number, [In, Out] vx_segment_info info);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_recording_read_segment(VxHandle recording, long number, [In, Out] ushort[] samples, ref
        long count);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_recording_read(VxHandle recording, int well, long from, long to, [In, Out] ushort[]
        samples, ref long count);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_recording_read_scaled(VxHandle recording, int well, long from, long to, [In, Out]
        double[] values, ref long count);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_recording_select(out VxHandle @out, VxHandle recording, int[] wells, long well_count,
        long from, long to);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_selection_get_well_count(VxHandle selection, ref long count);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_selection_get_well(VxHandle selection, long index, [In, Out] vx_selected_well well);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_selection_get_runs(VxHandle selection, long index, [In, Out] vx_run[] runs, ref long
        count);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_selection_read(VxHandle selection, [In, Out] ushort[] samples, ref long count);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_selection_read_scaled(VxHandle selection, [In, Out] double[] values, ref long count);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_segments_open(out VxHandle @out, VxHandle raw, long index, int only_well);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_segments_next(VxHandle segments, [In, Out] vx_segment_info info, [In, Out] ushort[]
        samples, ref long count);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_writer_create(out VxHandle @out, [MarshalAs(UnmanagedType.LPUTF8Str)] string path, int
        mode);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_writer_set_strict(VxHandle writer, int is_strict);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_writer_write_file_header(VxHandle writer, [In] vx_file_header header);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_writer_begin_recording(VxHandle writer, [In] vx_recording_header header, int[] wells,
        int[] ad_zeros, double[] units_per_ad, long[] intervals, long count);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_writer_write(VxHandle writer, int well, long time_from, long time_to, long interval,
        ushort[] samples, long count);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_writer_set_list(VxHandle writer, int list, long[] values, long count);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_writer_flush_to_disk(VxHandle writer);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_writer_finish(VxHandle writer);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_writer_get_report(VxHandle writer, [In, Out] byte[] buffer, ref long size);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_plan_check(out VxHandle @out, [In] vx_recording_header header, int[] wells, int[]
        ad_zeros, double[] units_per_ad, long[] intervals, long count, int file_version);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_plan_get_result(VxHandle plan, [In, Out] vx_plan_result result);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_plan_get_text(VxHandle plan, [In, Out] byte[] buffer, ref long size);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_plan_get_split(VxHandle plan, [In, Out] long[] wells, ref long count);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_plan_get_cell(VxHandle plan, long index, [In, Out] vx_plan_cell cell);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_plan_get_key(VxHandle plan, long index, [In, Out] byte[] buffer, ref long size);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_document_create(out VxHandle @out, int kind);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_document_open(out VxHandle @out, int kind, [MarshalAs(UnmanagedType.LPUTF8Str)] string
        path);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_document_get_faults(VxHandle document, [In, Out] byte[] buffer, ref long size);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_document_save(VxHandle document, [MarshalAs(UnmanagedType.LPUTF8Str)] string path, int
        compound);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_document_get_type(VxHandle document, [MarshalAs(UnmanagedType.LPUTF8Str)] string path,
        ref int type);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_document_get_count(VxHandle document, [MarshalAs(UnmanagedType.LPUTF8Str)] string path,
        ref long count);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_document_get_name(VxHandle document, [MarshalAs(UnmanagedType.LPUTF8Str)] string path,
        long index, [In, Out] byte[] buffer, ref long size);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_document_get_text(VxHandle document, [MarshalAs(UnmanagedType.LPUTF8Str)] string path,
        [In, Out] byte[] buffer, ref long size);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_document_set_text(VxHandle document, [MarshalAs(UnmanagedType.LPUTF8Str)] string path,
        [MarshalAs(UnmanagedType.LPUTF8Str)] string text);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_document_get_int64(VxHandle document, [MarshalAs(UnmanagedType.LPUTF8Str)] string path,
        ref long value);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_document_set_int64(VxHandle document, [MarshalAs(UnmanagedType.LPUTF8Str)] string path,
        long value);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_document_get_double(VxHandle document, [MarshalAs(UnmanagedType.LPUTF8Str)] string path,
        ref double value);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_document_set_double(VxHandle document, [MarshalAs(UnmanagedType.LPUTF8Str)] string path,
        double value);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_document_get_int64s(VxHandle document, [MarshalAs(UnmanagedType.LPUTF8Str)] string path,
        [In, Out] long[] values, ref long count);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_document_set_int64s(VxHandle document, [MarshalAs(UnmanagedType.LPUTF8Str)] string path,
        long[] values, long count);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_document_get_doubles(VxHandle document, [MarshalAs(UnmanagedType.LPUTF8Str)] string
        path, [In, Out] double[] values, ref long count);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_document_set_doubles(VxHandle document, [MarshalAs(UnmanagedType.LPUTF8Str)] string
        path, double[] values, long count);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_document_insert(VxHandle document, [MarshalAs(UnmanagedType.LPUTF8Str)] string path);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_document_remove(VxHandle document, [MarshalAs(UnmanagedType.LPUTF8Str)] string path);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_export(VxHandle results, VxHandle settings, [MarshalAs(UnmanagedType.LPUTF8Str)] string
        path);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_table_open(out VxHandle @out, VxHandle results, int table);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_table_get_size(VxHandle table, ref long rows, ref long columns);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_table_get_name(VxHandle table, long column, [In, Out] byte[] buffer, ref long size);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_table_get_type(VxHandle table, long column, ref int type);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_table_get_int64s(VxHandle table, long column, [In, Out] long[] values, ref long count);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_table_get_doubles(VxHandle table, long column, [In, Out] double[] values, ref long
        count);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_table_get_text(VxHandle table, long column, long row, [In, Out] byte[] buffer, ref long
        size);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_verify(out VxHandle @out, [MarshalAs(UnmanagedType.LPUTF8Str)] string path, int kind,
        [In] vx_callbacks callbacks);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_recover(out VxHandle @out, [MarshalAs(UnmanagedType.LPUTF8Str)] string source,
        [MarshalAs(UnmanagedType.LPUTF8Str)] string target, [In] vx_recover_options options, [In] vx_callbacks
        callbacks);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_report_get_summary(VxHandle report, [In, Out] vx_report_summary summary);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_report_get_finding(VxHandle report, long index, [In, Out] vx_finding finding);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
    public static extern int vx_report_get_text(VxHandle report, long index, int text, [In, Out] byte[] buffer, ref long
        size);
    // </declarations>
}
