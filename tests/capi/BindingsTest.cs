// Tests what the clients don't use of the declarations for C#: BindingsTest.exe settings.vxs
using System;
using System.Linq;
using static Vx;

static class BindingsTest {
    static void Expect(object expected, object found) {
        if (!Equals(expected, found)) throw new Exception("expected " + expected + ", found " + found);
    }

    static VxException FailureOf(Action call) {
        try { call(); } catch (VxException failure) { return failure; }
        throw new Exception("nothing failed");
    }

    static void Main(string[] arguments) {
        VxHandle settings;
        Check(vx_document_open(out settings, VX_SETTINGS, arguments[0]), settings);
        long count = 0;
        Check(vx_document_get_count(settings, "PropertyRecording", ref count), settings);
        var names = from i in Enumerable.Range(0, (int)count)
                    select GetText(settings, (byte[] to, ref long size) =>
                        vx_document_get_name(settings, "PropertyRecording", i, to, ref size));
        Expect("DataFormat ADMax ADMin ADZero Gain RecordingTime Tick VoltageRange VoltPerADStep", string.Join(" ", names));

        // The document has it in Latin-1.
        Expect("\u00b1 10 \u00b1", GetText(settings, (byte[] to, ref long size) =>
            vx_document_get_text(settings, "PropertyRecording/VoltageRange", to, ref size)));

        // A failure's text is kept even if it is longer than the buffer.
        string path = string.Concat(Enumerable.Repeat("./", 600)) + "missing.vxs";
        VxHandle missing;
        int code = vx_document_open(out missing, VX_SETTINGS, path);
        string text = FailureOf(() => Check(code, missing)).Message;
        Expect("Could not open settings file: " + path.Substring(0, 900), text.PadRight(930).Substring(0, 930));

        // A call without a handle has no text of its own.
        Expect(VX_ERROR_NOT_FOUND, FailureOf(() => Check(vx_code_text(99, null, ref count), null)).Code);
    }
}
