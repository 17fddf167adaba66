// Copies a well of a raw data file by the C interface and compares: Client.exe SOURCE COPY (needs VxFileIO.cs)
using System;
using System.Linq;
using static Vx;

static class Client {
    static ushort[] Read(VxHandle recording, int well) {
        return Get(recording, (ushort[] samples, ref long count) =>
            vx_recording_read(recording, well, VX_TIME_FIRST, VX_TIME_LAST, samples, ref count));
    }

    static void Main(string[] arguments) {
        VxHandle raw, recording, writer, copy, copied;

        // List what the file has.
        Check(vx_raw_open(out raw, arguments[0]), raw);
        var info = new vx_raw_info();
        Check(vx_raw_get_info(raw, info), raw);
        var about = new vx_recording_info();
        Check(vx_raw_get_recording(raw, 0, about), raw);
        string plate = GetText(raw, (byte[] to, ref long size) => vx_raw_get_text(raw, VX_RAW_PLATE_ID, to, ref size));
        string task = GetText(raw, (byte[] to, ref long size) => vx_raw_get_task(raw, 0, to, ref size));
        Console.WriteLine("plate {0}, {1} recordings, the first: {2} {3}", plate, info.recordings, task, about.number);

        // Read the well of the first segment.
        Check(vx_recording_open(out recording, raw, 0, null), recording);
        var first = new vx_segment_info();
        Check(vx_recording_get_segment(recording, 0, first), recording);
        var well = new vx_well_info();
        Check(vx_recording_get_well(recording, first.well, well), recording);
        ushort[] samples = Read(recording, well.well);
        Console.WriteLine("well {0}: {1} samples", well.well, samples.Length);

        // Write a copy.
        Check(vx_writer_create(out writer, arguments[1], VX_CREATE_REPLACE), writer);
        Check(vx_writer_write_file_header(writer, new vx_file_header { plate_id = plate }), writer);
        var header = new vx_recording_header { task = task, number = about.number, dose = about.dose };
        Check(vx_writer_begin_recording(writer, header, new[] { well.well }, new[] { well.ad_zero },
            new[] { well.units_per_ad }, new[] { well.interval }, 1), writer);
        long end = first.time_from + (samples.Length - 1) * well.interval;
        Check(vx_writer_write(writer, well.well, first.time_from, end, well.interval, samples, samples.Length), writer);
        Check(vx_writer_finish(writer), writer);

        // Compare.
        Check(vx_raw_open(out copy, arguments[1]), copy);
        Check(vx_recording_open(out copied, copy, 0, null), copied);
        if (!Read(copied, well.well).SequenceEqual(samples)) throw new Exception("the copy differs");
        Console.WriteLine("the copy is the same");
        foreach (var handle in new[] { recording, copied, writer, copy, raw }) handle.Dispose();
    }
}
