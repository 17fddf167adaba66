// Copies a raw data file by the C interface and compares one well of both: Client SOURCE COPY. Needs JNA.
import com.sun.jna.Library;
import com.sun.jna.Native;
import com.sun.jna.Pointer;
import com.sun.jna.Structure;
import com.sun.jna.ptr.LongByReference;
import com.sun.jna.ptr.PointerByReference;
import java.nio.charset.StandardCharsets;
import java.util.Arrays;
import java.util.Map;

public class Client {
    public static class Sized extends Structure {
        public long size;
        void init() { size = size(); write(); }
    }
    @Structure.FieldOrder({"size", "recordings", "fileVersion", "compoundId"})
    public static class RawInfo extends Sized { public long recordings; public int fileVersion, compoundId; }
    @Structure.FieldOrder({"size", "dose", "recordingTime", "startTime", "wells", "number", "isFinished"})
    public static class RecordingInfo extends Sized { public long dose, recordingTime, startTime, wells; public int number, isFinished; }
    @Structure.FieldOrder({"size", "unitsPerAD", "interval", "well", "adZero"})
    public static class WellInfo extends Sized { public double unitsPerAD; public long interval; public int well, adZero; }
    @Structure.FieldOrder({"size", "samples", "timeFrom", "timeTo", "offset", "well", "reserved"})
    public static class SegmentInfo extends Sized { public long samples, timeFrom, timeTo, offset; public int well, reserved; }
    @Structure.FieldOrder({"size", "headerId", "fileType", "programVersion", "guid", "plateId", "compoundName", "fileVersion", "compoundId"})
    public static class FileHeader extends Sized { public String headerId, fileType, programVersion, guid, plateId, compoundName; public int fileVersion, compoundId; }
    @Structure.FieldOrder({"size", "task", "dose", "startTime", "recordingTime", "number", "reserved"})
    public static class RecordingHeader extends Sized { public String task; public long dose, startTime, recordingTime; public int number, reserved; }

    public interface Vx extends Library {
        int vx_last_error(Pointer handle, byte[] buffer, LongByReference size);
        int vx_close(Pointer handle);
        int vx_raw_open(PointerByReference out, String path);
        int vx_raw_get_info(Pointer raw, RawInfo info);
        int vx_raw_get_text(Pointer raw, int text, byte[] buffer, LongByReference size);
        int vx_raw_get_recording(Pointer raw, long index, RecordingInfo info);
        int vx_raw_get_task(Pointer raw, long index, byte[] buffer, LongByReference size);
        int vx_recording_open(PointerByReference out, Pointer raw, long index, Pointer options);
        int vx_recording_get_wells(Pointer recording, int[] wells, LongByReference count);
        int vx_recording_get_well(Pointer recording, int well, WellInfo info);
        int vx_recording_get_segment(Pointer recording, long number, SegmentInfo info);
        int vx_recording_read(Pointer recording, int well, long from, long to, short[] samples, LongByReference count);
        int vx_writer_create(PointerByReference out, String path, int mode);
        int vx_writer_write_file_header(Pointer writer, FileHeader header);
        int vx_writer_begin_recording(Pointer writer, RecordingHeader header, int[] wells, int[] adZeros, double[] unitsPerAD, long[] intervals, long count);
        int vx_writer_write(Pointer writer, int well, long from, long to, long interval, short[] samples, long count);
        int vx_writer_finish(Pointer writer);
    }

    static final Vx VX = Native.load("vxfileio_c", Vx.class, Map.of(Library.OPTION_STRING_ENCODING, "UTF-8"));

    static Pointer check(int code, Pointer handle) {
        if (code == 0) return handle;
        byte[] text = new byte[500];
        VX.vx_last_error(handle, text, new LongByReference(text.length));
        throw new RuntimeException("error " + code + ": " + Native.toString(text, StandardCharsets.UTF_8));
    }

    static <T extends Sized> T sized(T struct) { struct.init(); return struct; }

    static int firstWell(Pointer recording) {
        int[] wells = new int[100];
        check(VX.vx_recording_get_wells(recording, wells, new LongByReference(wells.length)), recording);
        return wells[0];
    }

    static Pointer openRecording(Pointer raw) {
        PointerByReference out = new PointerByReference();
        return check(VX.vx_recording_open(out, raw, 0, null), out.getValue());
    }

    static short[] read(Pointer recording, int well) {
        LongByReference count = new LongByReference();
        check(VX.vx_recording_read(recording, well, Long.MIN_VALUE, Long.MAX_VALUE, null, count), recording);
        short[] samples = new short[(int) count.getValue()];  // mask a sample with 0xffff to get its value
        check(VX.vx_recording_read(recording, well, Long.MIN_VALUE, Long.MAX_VALUE, samples, count), recording);
        return samples;
    }

    public static void main(String[] arguments) {
        PointerByReference out = new PointerByReference();
        Pointer raw = check(VX.vx_raw_open(out, arguments[0]), out.getValue());
        RawInfo info = sized(new RawInfo());
        check(VX.vx_raw_get_info(raw, info), raw);
        RecordingInfo about = sized(new RecordingInfo());
        check(VX.vx_raw_get_recording(raw, 0, about), raw);
        byte[] bytes = new byte[100];
        check(VX.vx_raw_get_text(raw, 4, bytes, new LongByReference(100)), raw);
        String plate = Native.toString(bytes, StandardCharsets.UTF_8);
        check(VX.vx_raw_get_task(raw, 0, bytes, new LongByReference(100)), raw);
        String task = Native.toString(bytes, StandardCharsets.UTF_8);
        System.out.println("plate " + plate + ", " + info.recordings + " recordings, the first: " + task + " " + about.number);

        Pointer recording = openRecording(raw);
        int well = firstWell(recording);
        short[] samples = read(recording, well);
        System.out.println("well " + well + ": " + samples.length + " samples");

        WellInfo channel = sized(new WellInfo());
        check(VX.vx_recording_get_well(recording, well, channel), recording);
        SegmentInfo segment = sized(new SegmentInfo());
        check(VX.vx_recording_get_segment(recording, 0, segment), recording);
        Pointer writer = check(VX.vx_writer_create(out, arguments[1], 1), out.getValue());
        FileHeader file = sized(new FileHeader());
        file.plateId = plate;
        check(VX.vx_writer_write_file_header(writer, file), writer);
        RecordingHeader header = sized(new RecordingHeader());
        header.task = task;
        header.number = about.number;
        header.dose = about.dose;
        check(VX.vx_writer_begin_recording(writer, header, new int[] {well}, new int[] {channel.adZero},
            new double[] {channel.unitsPerAD}, new long[] {channel.interval}, 1), writer);
        long end = segment.timeFrom + (samples.length - 1) * channel.interval;
        check(VX.vx_writer_write(writer, well, segment.timeFrom, end, channel.interval, samples, samples.length), writer);
        check(VX.vx_writer_finish(writer), writer);

        Pointer copy = check(VX.vx_raw_open(out, arguments[1]), out.getValue());
        Pointer copied = openRecording(copy);
        if (!Arrays.equals(read(copied, firstWell(copied)), samples)) throw new RuntimeException("the copy differs");
        System.out.println("the copy is the same");
        for (Pointer handle : new Pointer[] {recording, copied, writer, copy, raw}) VX.vx_close(handle);
    }
}
