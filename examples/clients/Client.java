// Copies a well of a raw data file by the C interface and compares: Client SOURCE COPY (needs VxFileIO.java and JNA)
import static vxfileio.VxFileIO.*;

import com.sun.jna.Pointer;
import java.util.Arrays;

public class Client {
    static short[] read(Pointer recording, int well) {
        return get(recording, short[]::new, (samples, count) ->
            VX.vx_recording_read(recording, well, VX_TIME_FIRST, VX_TIME_LAST, samples, count));
    }

    public static void main(String[] arguments) {
        // List what the file has.
        Pointer raw = open(out -> VX.vx_raw_open(out, arguments[0]));
        vx_raw_info info = new vx_raw_info();
        check(VX.vx_raw_get_info(raw, info), raw);
        vx_recording_info about = new vx_recording_info();
        check(VX.vx_raw_get_recording(raw, 0, about), raw);
        String plate = getText(raw, (to, size) -> VX.vx_raw_get_text(raw, VX_RAW_PLATE_ID, to, size));
        String task = getText(raw, (to, size) -> VX.vx_raw_get_task(raw, 0, to, size));
        System.out.printf("plate %s, %d recordings, the first: %s %d%n", plate, info.recordings, task, about.number);

        // Read the well of the first segment.
        Pointer recording = open(out -> VX.vx_recording_open(out, raw, 0, null));
        vx_segment_info first = new vx_segment_info();
        check(VX.vx_recording_get_segment(recording, 0, first), recording);
        vx_well_info well = new vx_well_info();
        check(VX.vx_recording_get_well(recording, first.well, well), recording);
        short[] samples = read(recording, well.well);
        System.out.printf("well %d: %d samples%n", well.well, samples.length);

        // Write a copy.
        Pointer writer = open(out -> VX.vx_writer_create(out, arguments[1], VX_CREATE_REPLACE));
        vx_file_header file = new vx_file_header();
        file.plate_id = plate;
        check(VX.vx_writer_write_file_header(writer, file), writer);
        vx_recording_header header = new vx_recording_header();
        header.task = task;
        header.number = about.number;
        header.dose = about.dose;
        check(VX.vx_writer_begin_recording(writer, header, new int[] {well.well}, new int[] {well.ad_zero},
            new double[] {well.units_per_ad}, new long[] {well.interval}, 1), writer);
        int count = samples.length;
        long end = first.time_from + (count - 1) * well.interval;
        check(VX.vx_writer_write(writer, well.well, first.time_from, end, well.interval, samples, count), writer);
        check(VX.vx_writer_finish(writer), writer);

        // Compare.
        Pointer copy = open(out -> VX.vx_raw_open(out, arguments[1]));
        Pointer copied = open(out -> VX.vx_recording_open(out, copy, 0, null));
        if (!Arrays.equals(read(copied, well.well), samples)) throw new RuntimeException("the copy differs");
        System.out.println("the copy is the same");
        for (Pointer handle : new Pointer[] {recording, copied, writer, copy, raw}) VX.vx_close(handle);
    }
}
