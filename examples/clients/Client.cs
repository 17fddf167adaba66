// Copies a raw data file by the C interface and compares one well of both: Client.exe SOURCE COPY
using System;
using System.Linq;
using System.Runtime.InteropServices;
using System.Text;

static class Vx {
    const string Library = "vxfileio_c";
    const CallingConvention C = CallingConvention.Cdecl;

    [StructLayout(LayoutKind.Sequential)]
    public struct RawInfo { public long size, recordings; public int fileVersion, compoundId; }
    [StructLayout(LayoutKind.Sequential)]
    public struct RecordingInfo { public long size, dose, recordingTime; public ulong startTime; public long wells; public int number, isFinished; }
    [StructLayout(LayoutKind.Sequential)]
    public struct WellInfo { public long size; public double unitsPerAD; public long interval; public int well, adZero; }
    [StructLayout(LayoutKind.Sequential)]
    public struct SegmentInfo { public long size, samples, timeFrom, timeTo, offset; public int well, reserved; }
    [StructLayout(LayoutKind.Sequential)]
    public struct FileHeader {
        public long size;
        public IntPtr headerId, fileType, programVersion, guid;
        [MarshalAs(UnmanagedType.LPUTF8Str)] public string plateId;
        public IntPtr compoundName;
        public int fileVersion, compoundId;
    }
    [StructLayout(LayoutKind.Sequential)]
    public struct RecordingHeader {
        public long size;
        [MarshalAs(UnmanagedType.LPUTF8Str)] public string task;
        public long dose; public ulong startTime; public long recordingTime; public int number, reserved;
    }

    [DllImport(Library, CallingConvention = C)] public static extern int vx_last_error(IntPtr handle, byte[] buffer, ref long size);
    [DllImport(Library, CallingConvention = C)] public static extern int vx_close(IntPtr handle);
    [DllImport(Library, CallingConvention = C)] public static extern int vx_raw_open(out IntPtr raw, [MarshalAs(UnmanagedType.LPUTF8Str)] string path);
    [DllImport(Library, CallingConvention = C)] public static extern int vx_raw_get_info(IntPtr raw, ref RawInfo info);
    [DllImport(Library, CallingConvention = C)] public static extern int vx_raw_get_text(IntPtr raw, int text, byte[] buffer, ref long size);
    [DllImport(Library, CallingConvention = C)] public static extern int vx_raw_get_recording(IntPtr raw, long index, ref RecordingInfo info);
    [DllImport(Library, CallingConvention = C)] public static extern int vx_raw_get_task(IntPtr raw, long index, byte[] buffer, ref long size);
    [DllImport(Library, CallingConvention = C)] public static extern int vx_recording_open(out IntPtr recording, IntPtr raw, long index, IntPtr options);
    [DllImport(Library, CallingConvention = C)] public static extern int vx_recording_get_wells(IntPtr recording, [Out] int[] wells, ref long count);
    [DllImport(Library, CallingConvention = C)] public static extern int vx_recording_get_well(IntPtr recording, int well, ref WellInfo info);
    [DllImport(Library, CallingConvention = C)] public static extern int vx_recording_get_segment(IntPtr recording, long number, ref SegmentInfo info);
    [DllImport(Library, CallingConvention = C)] public static extern int vx_recording_read(IntPtr recording, int well, long from, long to, [Out] ushort[] samples, ref long count);
    [DllImport(Library, CallingConvention = C)] public static extern int vx_writer_create(out IntPtr writer, [MarshalAs(UnmanagedType.LPUTF8Str)] string path, int mode);
    [DllImport(Library, CallingConvention = C)] public static extern int vx_writer_write_file_header(IntPtr writer, ref FileHeader header);
    [DllImport(Library, CallingConvention = C)] public static extern int vx_writer_begin_recording(IntPtr writer, ref RecordingHeader header, int[] wells, int[] adZeros, double[] unitsPerAD, long[] intervals, long count);
    [DllImport(Library, CallingConvention = C)] public static extern int vx_writer_write(IntPtr writer, int well, long from, long to, long interval, ushort[] samples, long count);
    [DllImport(Library, CallingConvention = C)] public static extern int vx_writer_finish(IntPtr writer);
}

static class Client {
    static void Check(int code, IntPtr handle) {
        if (code == 0) return;
        var text = new byte[500];
        long size = text.Length;
        Vx.vx_last_error(handle, text, ref size);
        throw new Exception("error " + code + ": " + Encoding.UTF8.GetString(text).TrimEnd('\0'));
    }

    static long SizeOf<T>() { return Marshal.SizeOf(typeof(T)); }
    static string TextOf(byte[] bytes, long size) { return Encoding.UTF8.GetString(bytes, 0, (int)size - 1); }

    static ushort[] ReadFirstWell(IntPtr raw, out IntPtr recording, out int well) {
        Check(Vx.vx_recording_open(out recording, raw, 0, IntPtr.Zero), recording);
        var wells = new int[100];
        long count = wells.Length;
        Check(Vx.vx_recording_get_wells(recording, wells, ref count), recording);
        well = wells[0];
        Check(Vx.vx_recording_read(recording, well, long.MinValue, long.MaxValue, null, ref count), recording);
        var samples = new ushort[count];
        Check(Vx.vx_recording_read(recording, well, long.MinValue, long.MaxValue, samples, ref count), recording);
        return samples;
    }

    static int Main(string[] arguments) {
        IntPtr raw, recording, writer, copy, copied;
        int well;
        Check(Vx.vx_raw_open(out raw, arguments[0]), raw);
        var info = new Vx.RawInfo { size = SizeOf<Vx.RawInfo>() };
        Check(Vx.vx_raw_get_info(raw, ref info), raw);
        var about = new Vx.RecordingInfo { size = SizeOf<Vx.RecordingInfo>() };
        Check(Vx.vx_raw_get_recording(raw, 0, ref about), raw);
        var bytes = new byte[100];
        long size = bytes.Length;
        Check(Vx.vx_raw_get_text(raw, 4, bytes, ref size), raw);
        string plate = TextOf(bytes, size);
        size = bytes.Length;
        Check(Vx.vx_raw_get_task(raw, 0, bytes, ref size), raw);
        string task = TextOf(bytes, size);
        Console.WriteLine("plate {0}, {1} recordings, the first: {2} {3}", plate, info.recordings, task, about.number);

        ushort[] samples = ReadFirstWell(raw, out recording, out well);
        Console.WriteLine("well {0}: {1} samples", well, samples.Length);

        var channel = new Vx.WellInfo { size = SizeOf<Vx.WellInfo>() };
        Check(Vx.vx_recording_get_well(recording, well, ref channel), recording);
        var segment = new Vx.SegmentInfo { size = SizeOf<Vx.SegmentInfo>() };
        Check(Vx.vx_recording_get_segment(recording, 0, ref segment), recording);
        Check(Vx.vx_writer_create(out writer, arguments[1], 1), writer);
        var file = new Vx.FileHeader { size = SizeOf<Vx.FileHeader>(), plateId = plate };
        Check(Vx.vx_writer_write_file_header(writer, ref file), writer);
        var header = new Vx.RecordingHeader { size = SizeOf<Vx.RecordingHeader>(), task = task, number = about.number, dose = about.dose };
        Check(Vx.vx_writer_begin_recording(writer, ref header, new[] { well }, new[] { channel.adZero }, new[] { channel.unitsPerAD }, new[] { channel.interval }, 1), writer);
        long end = segment.timeFrom + (samples.Length - 1) * channel.interval;
        Check(Vx.vx_writer_write(writer, well, segment.timeFrom, end, channel.interval, samples, samples.Length), writer);
        Check(Vx.vx_writer_finish(writer), writer);

        Check(Vx.vx_raw_open(out copy, arguments[1]), copy);
        if (!ReadFirstWell(copy, out copied, out well).SequenceEqual(samples)) throw new Exception("the copy differs");
        Console.WriteLine("the copy is the same");
        foreach (var handle in new[] { recording, copied, writer, copy, raw }) Vx.vx_close(handle);
        return 0;
    }
}
