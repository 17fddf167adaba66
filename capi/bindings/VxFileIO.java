// The constants, structs and functions of vxfileio.h, which describes them, for Java with JNA.
//
// Structs know their size; null stands for NULL. Mask a sample with 0xffff to get its value.
package vxfileio;

import com.sun.jna.Callback;
import com.sun.jna.Library;
import com.sun.jna.Native;
import com.sun.jna.Pointer;
import com.sun.jna.Structure;
import com.sun.jna.ptr.DoubleByReference;
import com.sun.jna.ptr.IntByReference;
import com.sun.jna.ptr.LongByReference;
import com.sun.jna.ptr.PointerByReference;
import java.nio.charset.StandardCharsets;
import java.util.Map;
import java.util.function.IntFunction;

public interface VxFileIO extends Library {
    VxFileIO VX = Native.load("vxfileio_c", VxFileIO.class, Map.of(Library.OPTION_STRING_ENCODING, "UTF-8"));

    class VxException extends RuntimeException {
        public final int code;
        public VxException(int code, String text) {
            super(text);
            this.code = code;
        }
    }

    class Sized extends Structure {
        public long size;
        public Sized() { size = size(); }
    }

    /** Throws a VxException if a call with this handle returned anything but VX_OK. */
    static void check(int code, Pointer handle) {
        if (code == VX_OK) return;
        byte[] text = new byte[1000];
        LongByReference size = new LongByReference(text.length);
        int found = code == VX_ERROR_BUSY ? code : VX.vx_last_error(handle, text, size);
        if (found == VX_ERROR_BUSY || found == VX_ERROR_HANDLE) VX.vx_code_text(code, text, size);
        throw new VxException(code, Native.toString(text, StandardCharsets.UTF_8));
    }

    /** A call that makes a handle. */
    interface Make { int call(PointerByReference out); }

    /**
     * Returns the handle that a call makes, or closes it and throws if the call fails. To keep a document that is
     * VX_DAMAGED, call vx_document_open itself.
     */
    static Pointer open(Make call) {
        PointerByReference out = new PointerByReference();
        int code = call.call(out);
        try {
            check(code, out.getValue());
        } catch (VxException failure) {
            VX.vx_close(out.getValue());
            throw failure;
        }
        return out.getValue();
    }

    /** A call that fills a buffer, or stores what it needs if the buffer is null. */
    interface Fill<T> { int call(T buffer, LongByReference count); }

    /** Returns an array that a call fills: get(recording, short[]::new, (buffer, count) -> ...). */
    static <T> T get(Pointer handle, IntFunction<T> make, Fill<T> call) {
        LongByReference count = new LongByReference();
        check(call.call(null, count), handle);
        T buffer = make.apply((int) count.getValue());
        check(call.call(buffer, count), handle);
        return buffer;
    }

    /** Returns a text that a call fills. What isn't UTF-8 is taken as Latin-1; get has the bytes. */
    static String getText(Pointer handle, Fill<byte[]> call) {
        byte[] stored = get(handle, byte[]::new, call);
        byte[] text = get(null, byte[]::new, (to, size) -> VX.vx_to_utf8(stored, stored.length - 1, to, size));
        return new String(text, 0, text.length - 1, StandardCharsets.UTF_8);
    }

    // <declarations> capi/tools/bindings.py makes them from the header.
    int VX_OK = 0;
    int VX_ERROR_ARGUMENT = 1;
    int VX_ERROR_HANDLE = 2;
    int VX_ERROR_KIND = 3;
    int VX_ERROR_BUSY = 4;
    int VX_ERROR_STATE = 5;
    int VX_ERROR_STRUCT = 6;
    int VX_ERROR_SHORT_BUFFER = 7;
    int VX_ERROR_NOT_FOUND = 8;
    int VX_ERROR_TYPE = 9;
    int VX_ERROR_VALUE = 10;
    int VX_ERROR_REFUSED = 11;
    int VX_ERROR_FILE = 20;
    int VX_ERROR_WRITE = 21;
    int VX_DAMAGED = 22;
    int VX_CANCELLED = 30;
    int VX_END = 31;
    int VX_ERROR_MEMORY = 40;
    int VX_ERROR_INTERNAL = 41;
    int VX_RAW_HEADER_ID = 0;
    int VX_RAW_FILE_TYPE = 1;
    int VX_RAW_PROGRAM_VERSION = 2;
    int VX_RAW_GUID = 3;
    int VX_RAW_PLATE_ID = 4;
    int VX_RAW_COMPOUND_NAME = 5;
    int VX_RAW_PRE_QC = 0;
    int VX_RAW_COMPOUND_TEST = 1;
    int VX_RAW_POST_QC = 2;
    int VX_CREATE_NEW = 0;
    int VX_CREATE_REPLACE = 1;
    int VX_SETTINGS = 0;
    int VX_RESULTS = 1;
    int VX_TYPE_OBJECT = 0;
    int VX_TYPE_LIST = 1;
    int VX_TYPE_MAP = 2;
    int VX_TYPE_TEXT = 3;
    int VX_TYPE_WORD = 4;
    int VX_TYPE_CHARACTER = 5;
    int VX_TYPE_BOOL = 6;
    int VX_TYPE_INTEGER = 7;
    int VX_TYPE_DOUBLE = 8;
    int VX_TABLE_RESPONSES = 0;
    int VX_TABLE_MEANS = 1;
    int VX_TABLE_BEATS = 2;
    int VX_TABLE_AVERAGES = 3;
    int VX_FILE_RAW = 0;
    int VX_FILE_SETTINGS = 1;
    int VX_FILE_RESULTS = 2;
    int VX_FILE_WORKBOOK = 3;
    int VX_FINDING_WHERE = 0;
    int VX_FINDING_FOUND = 1;
    int VX_FINDING_EXPECTED = 2;
    int VX_FINDING_MEANING = 3;
    int VX_VERSION = 10000;
    long VX_TIME_FIRST = -9223372036854775808L;
    long VX_TIME_LAST = 9223372036854775807L;
    int VX_ALL_WELLS = -1;
    long VX_MISSING = -9223372036854775808L;

    @Structure.FieldOrder({"size", "recordings", "file_version", "compound_id"})
    class vx_raw_info extends Sized {
        public long recordings;
        public int file_version;
        public int compound_id;
    }

    @Structure.FieldOrder({"size", "dose", "recording_time", "start_time", "wells", "number", "is_finished"})
    class vx_recording_info extends Sized {
        public long dose;
        public long recording_time;
        public long start_time;
        public long wells;
        public int number;
        public int is_finished;
    }

    @Structure.FieldOrder({"size", "unfinished", "up_to_damage"})
    class vx_recording_options extends Sized {
        public int unfinished;
        public int up_to_damage;
    }

    @Structure.FieldOrder({"size", "segments", "wells", "certain_samples"})
    class vx_recording_state extends Sized {
        public long segments;
        public long wells;
        public long certain_samples;
    }

    @Structure.FieldOrder({"size", "units_per_ad", "interval", "well", "ad_zero"})
    class vx_well_info extends Sized {
        public double units_per_ad;
        public long interval;
        public int well;
        public int ad_zero;
    }

    @Structure.FieldOrder({"size", "samples", "time_from", "time_to", "offset", "well", "reserved"})
    class vx_segment_info extends Sized {
        public long samples;
        public long time_from;
        public long time_to;
        public long offset;
        public int well;
        public int reserved;
    }

    @Structure.FieldOrder({"size", "samples", "missing", "first", "runs", "well", "reserved"})
    class vx_selected_well extends Sized {
        public long samples;
        public long missing;
        public long first;
        public long runs;
        public int well;
        public int reserved;
    }

    @Structure.FieldOrder({"time_from", "interval", "samples", "first"})
    class vx_run extends Structure {
        public long time_from;
        public long interval;
        public long samples;
        public long first;
    }

    @Structure.FieldOrder({"size", "header_id", "file_type", "program_version", "guid", "plate_id", "compound_name",
        "file_version", "compound_id"})
    class vx_file_header extends Sized {
        public String header_id;
        public String file_type;
        public String program_version;
        public String guid;
        public String plate_id;
        public String compound_name;
        public int file_version;
        public int compound_id;
    }

    @Structure.FieldOrder({"size", "task", "dose", "start_time", "recording_time", "number", "reserved"})
    class vx_recording_header extends Sized {
        public String task;
        public long dose;
        public long start_time;
        public long recording_time;
        public int number;
        public int reserved;
    }

    @Structure.FieldOrder({"size", "wells", "wells_that_fit", "cells", "fits", "reserved"})
    class vx_plan_result extends Sized {
        public long wells;
        public long wells_that_fit;
        public long cells;
        public int fits;
        public int reserved;
    }

    @Structure.FieldOrder({"size", "room", "needed", "wells_that_fit", "is_list", "reserved"})
    class vx_plan_cell extends Sized {
        public long room;
        public long needed;
        public long wells_that_fit;
        public int is_list;
        public int reserved;
    }

    interface vx_callbacks_progress extends Callback {
        int call(Pointer user, long done, long total);
    }

    interface vx_callbacks_finding extends Callback {
        int call(Pointer user, long offset, String where, String meaning);
    }

    @Structure.FieldOrder({"size", "user", "progress", "finding"})
    class vx_callbacks extends Sized {
        public Pointer user;
        public vx_callbacks_progress progress;
        public vx_callbacks_finding finding;
    }

    @Structure.FieldOrder({"size", "keep_cut", "replace"})
    class vx_recover_options extends Sized {
        public int keep_cut;
        public int replace;
    }

    @Structure.FieldOrder({"size", "findings", "kept", "bytes", "is_sound", "is_usable"})
    class vx_report_summary extends Sized {
        public long findings;
        public long kept;
        public long bytes;
        public int is_sound;
        public int is_usable;
    }

    @Structure.FieldOrder({"size", "offset", "end"})
    class vx_finding extends Sized {
        public long offset;
        public long end;
    }

    int vx_close(Pointer handle);
    int vx_last_error(Pointer handle, byte[] buffer, LongByReference size);
    int vx_code_text(int code, byte[] buffer, LongByReference size);
    int vx_get_version(IntByReference version);
    int vx_to_utf8(byte[] bytes, long length, byte[] buffer, LongByReference size);
    int vx_raw_open(PointerByReference out, String path);
    int vx_raw_get_info(Pointer raw, vx_raw_info info);
    int vx_raw_get_text(Pointer raw, int text, byte[] buffer, LongByReference size);
    int vx_raw_get_list(Pointer raw, int list, long[] values, LongByReference count);
    int vx_raw_get_recording(Pointer raw, long index, vx_recording_info info);
    int vx_raw_get_task(Pointer raw, long index, byte[] buffer, LongByReference size);
    int vx_raw_find_recording(Pointer raw, String task, int number, LongByReference index);
    int vx_recording_open(PointerByReference out, Pointer raw, long index, vx_recording_options options);
    int vx_recording_get_state(Pointer recording, vx_recording_state state);
    int vx_recording_get_damage(Pointer recording, byte[] buffer, LongByReference size);
    int vx_recording_get_wells(Pointer recording, int[] wells, LongByReference count);
    int vx_recording_get_well(Pointer recording, int well, vx_well_info info);
    int vx_recording_get_segment(Pointer recording, long number, vx_segment_info info);
    int vx_recording_read_segment(Pointer recording, long number, short[] samples, LongByReference count);
    int vx_recording_read(Pointer recording, int well, long from, long to, short[] samples, LongByReference count);
    int vx_recording_read_scaled(Pointer recording, int well, long from, long to, double[] values, LongByReference
        count);
    int vx_recording_select(PointerByReference out, Pointer recording, int[] wells, long well_count, long from, long
        to);
    int vx_selection_get_well_count(Pointer selection, LongByReference count);
    int vx_selection_get_well(Pointer selection, long index, vx_selected_well well);
    int vx_selection_get_runs(Pointer selection, long index, vx_run[] runs, LongByReference count);
    int vx_selection_read(Pointer selection, short[] samples, LongByReference count);
    int vx_selection_read_scaled(Pointer selection, double[] values, LongByReference count);
    int vx_segments_open(PointerByReference out, Pointer raw, long index, int only_well);
    int vx_segments_next(Pointer segments, vx_segment_info info, short[] samples, LongByReference count);
    int vx_writer_create(PointerByReference out, String path, int mode);
    int vx_writer_set_strict(Pointer writer, int is_strict);
    int vx_writer_write_file_header(Pointer writer, vx_file_header header);
    int vx_writer_begin_recording(Pointer writer, vx_recording_header header, int[] wells, int[] ad_zeros, double[]
        units_per_ad, long[] intervals, long count);
    int vx_writer_write(Pointer writer, int well, long time_from, long time_to, long interval, short[] samples, long
        count);
    int vx_writer_set_list(Pointer writer, int list, long[] values, long count);
    int vx_writer_flush_to_disk(Pointer writer);
    int vx_writer_finish(Pointer writer);
    int vx_writer_get_report(Pointer writer, byte[] buffer, LongByReference size);
    int vx_plan_check(PointerByReference out, vx_recording_header header, int[] wells, int[] ad_zeros, double[]
        units_per_ad, long[] intervals, long count, int file_version);
    int vx_plan_get_result(Pointer plan, vx_plan_result result);
    int vx_plan_get_text(Pointer plan, byte[] buffer, LongByReference size);
    int vx_plan_get_split(Pointer plan, long[] wells, LongByReference count);
    int vx_plan_get_cell(Pointer plan, long index, vx_plan_cell cell);
    int vx_plan_get_key(Pointer plan, long index, byte[] buffer, LongByReference size);
    int vx_document_create(PointerByReference out, int kind);
    int vx_document_open(PointerByReference out, int kind, String path);
    int vx_document_get_faults(Pointer document, byte[] buffer, LongByReference size);
    int vx_document_save(Pointer document, String path, int compound);
    int vx_document_get_type(Pointer document, String path, IntByReference type);
    int vx_document_get_count(Pointer document, String path, LongByReference count);
    int vx_document_get_name(Pointer document, String path, long index, byte[] buffer, LongByReference size);
    int vx_document_get_text(Pointer document, String path, byte[] buffer, LongByReference size);
    int vx_document_set_text(Pointer document, String path, String text);
    int vx_document_get_int64(Pointer document, String path, LongByReference value);
    int vx_document_set_int64(Pointer document, String path, long value);
    int vx_document_get_double(Pointer document, String path, DoubleByReference value);
    int vx_document_set_double(Pointer document, String path, double value);
    int vx_document_get_int64s(Pointer document, String path, long[] values, LongByReference count);
    int vx_document_set_int64s(Pointer document, String path, long[] values, long count);
    int vx_document_get_doubles(Pointer document, String path, double[] values, LongByReference count);
    int vx_document_set_doubles(Pointer document, String path, double[] values, long count);
    int vx_document_insert(Pointer document, String path);
    int vx_document_remove(Pointer document, String path);
    int vx_export(Pointer results, Pointer settings, String path);
    int vx_table_open(PointerByReference out, Pointer results, int table);
    int vx_table_get_size(Pointer table, LongByReference rows, LongByReference columns);
    int vx_table_get_name(Pointer table, long column, byte[] buffer, LongByReference size);
    int vx_table_get_type(Pointer table, long column, IntByReference type);
    int vx_table_get_int64s(Pointer table, long column, long[] values, LongByReference count);
    int vx_table_get_doubles(Pointer table, long column, double[] values, LongByReference count);
    int vx_table_get_text(Pointer table, long column, long row, byte[] buffer, LongByReference size);
    int vx_verify(PointerByReference out, String path, int kind, vx_callbacks callbacks);
    int vx_recover(PointerByReference out, String source, String target, vx_recover_options options, vx_callbacks
        callbacks);
    int vx_report_get_summary(Pointer report, vx_report_summary summary);
    int vx_report_get_finding(Pointer report, long index, vx_finding finding);
    int vx_report_get_text(Pointer report, long index, int text, byte[] buffer, LongByReference size);
    // </declarations>
}
