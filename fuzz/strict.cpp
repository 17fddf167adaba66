// Makes calls on a strict writer, many of them mistakes. Verify must find the file sound, and a lenient writer must
// write the same bytes from the calls that the strict one accepted.
#include <functional>
#include <vector>

#include "fuzz/Fuzz.h"
#include "verify/raw/RawVerify.h"
#include "vxfileio/frame/VXFileIO.h"

namespace {

class CSession {
 public:
    CSession() {
        m_strict.SetStrict(true);
        m_strict.Open(m_strictPath);
        m_plain.Open(m_plainPath);
    }

    void Run(CCalls& calls) {
        CRawDataFileHdr file = MakeFileHdr({.FileType = calls.Text(), .PlateID = calls.Text()});
        if (calls.Byte() % 8 == 0) file.HeaderID = calls.Text();
        if (calls.Byte() % 8 == 0) file.FileVersion = static_cast<std::int32_t>(calls.Signed(4));
        if (!BothTake([&](auto& writer) { writer.WriteFileHdr(file); })) return;
        while (!calls.AtEnd())
            Call(calls);
        m_strict.Close();
        m_plain.Close();
        Require(ReadBytes(m_strictPath) == ReadBytes(m_plainPath), "the bytes don't depend on strictness");
        if (m_hasRecording) Require(vxfile::VerifyRawData(m_strictPath).Count() == 0, "the file is sound");
    }

 private:
    void Call(CCalls& calls) {
        constexpr void (CSession::*kCalls[])(CCalls&) = {&CSession::WriteRecordingHdr, &CSession::UpdateHdr,
                                                         &CSession::WriteData, &CSession::WriteData};
        (this->*kCalls[calls.Byte() % std::size(kCalls)])(calls);
    }

    void WriteRecordingHdr(CCalls& calls) {
        CRawDataRecordingHdr header{.TaskName = calls.Text(), .Dose = calls.Signed(8)};
        for (int i = calls.Byte() % 8; i > 0; --i)
            header.WellChannels.push_back({static_cast<std::int32_t>(calls.Signed(1)), 32768,
                                           static_cast<double>(calls.Signed(2)) / 256, calls.Signed(1)});
        const bool taken = BothTake([&](auto& writer) { writer.WriteRecordingHdr(header); });
        m_hasRecording = m_hasRecording || taken;
        if (taken) m_wells = header.WellChannels;
    }

    /// Mostly writes a listed well with its interval, after its previous segment.
    void WriteData(CCalls& calls) {
        const std::uint8_t choice = calls.Byte();
        std::int32_t well = static_cast<std::int32_t>(calls.Signed(1));
        std::int64_t tick = calls.Signed(1);
        if (choice % 8 != 0 && !m_wells.empty()) {
            const auto& listed = m_wells[choice % m_wells.size()];
            well = listed.ID;
            if (choice % 7 != 0) tick = listed.Ticks;
        }
        const std::int64_t from = choice % 5 == 0 ? calls.Signed(8) : m_time;
        const std::uint8_t span = calls.Byte();
        if (from > INT64_MAX - span) return;
        const std::vector<std::uint16_t> samples(256, choice);
        if (BothTake([&](auto& writer) { writer.WriteData(well, from, from + span, tick, samples.data()); }))
            m_time = from + span + (choice % 3 == 0 || from + span == INT64_MAX ? 0 : 1);
    }

    void UpdateHdr(CCalls& calls) {
        static const char* const kTasks[] = {"PreQC", "CompoundTest", "PostQC", "Series"};
        std::vector<std::string> values;
        for (int i = calls.Byte() % 4; i > 0; --i)
            values.push_back(calls.Byte() % 2 == 0 ? calls.Text() : std::to_string(calls.Signed(8)));
        const char* const task = kTasks[calls.Byte() % std::size(kTasks)];
        BothTake([&](auto& writer) { writer.UpdateFileHdr(task, values); });
    }

    /// Makes a call on the strict writer. If it accepts the call, the other one must, too.
    bool BothTake(const std::function<void(CIRawDataWriter&)>& call) {
        try {
            call(m_strict);
        } catch (const CExcVXReader& failure) {
            Require(failure.GetCode() == -1 && !failure.GetMsg().empty(), "a failure has a text");
            return false;
        }
        call(m_plain);
        return true;
    }

    const std::string m_strictPath = CFuzzFolder::Path("strict.vxd");
    const std::string m_plainPath = CFuzzFolder::Path("plain.vxd");
    CIRawDataWriter m_strict;
    CIRawDataWriter m_plain;
    std::vector<CRawDataChannelInfo> m_wells;
    std::int64_t m_time = 0;
    bool m_hasRecording = false;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    CCalls calls(Input(data, size));
    CSession().Run(calls);
    return 0;
}
