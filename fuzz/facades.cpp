// Makes a list of calls on the facades of raw data, in any order and with any values. Everything that the raw data
// writer accepted must be in the file once it is closed; finished recordings must be there while it is still being
// written.
#include <tuple>
#include <vector>

#include "fuzz/Fuzz.h"
#include "fuzz/Segments.h"
#include "vxfileio/frame/VXFileIO.h"

namespace {

struct CRecording {
    CRawDataRecordingHdr header;
    std::vector<CSegment> segments;
};

bool IsSame(const CRawDataChannelInfo& a, const CRawDataChannelInfo& b) {
    return std::tie(a.ID, a.ADZero, a.UnitsPerAD, a.Ticks) == std::tie(b.ID, b.ADZero, b.UnitsPerAD, b.Ticks);
}

/// Returns samples that depend only on their position.
std::vector<std::uint16_t> SamplesOf(std::size_t count, std::uint8_t seed) {
    std::vector<std::uint16_t> samples(count);
    for (std::size_t i = 0; i < count; ++i)
        samples[i] = static_cast<std::uint16_t>(257 * (i + seed));
    return samples;
}

/// Returns whether the call was accepted. The library refuses calls only with its own exceptions.
template <class Function>
bool Takes(Function function) try {
    function();
    return true;
} catch (const CExcVXReader& failure) {
    Require(failure.GetCode() == -1 && !failure.GetMsg().empty(), "a failure has a text");
    return false;
}

class CSession {
 public:
    CSession() { std::remove(m_raw.c_str()); }

    void Call(CCalls& calls) {
        static constexpr void (CSession::*kCalls[])(CCalls&) = {
            &CSession::OpenWriter,  &CSession::WriteFileHdr, &CSession::WriteRecordingHdr,
            &CSession::WriteData,   &CSession::WriteData,    &CSession::UpdateHdr,
            &CSession::CloseWriter, &CSession::OpenReader,   &CSession::ReadData};
        (this->*kCalls[calls.Byte() % std::size(kCalls)])(calls);
    }

    void Check() {
        m_writer.Close();
        if (!m_hasHdr) return;
        Require(Takes([&] { m_reader.Open(m_raw); }) == !m_recordings.empty(), "a file with recordings opens");
        if (!m_recordings.empty()) CheckRecordings(m_recordings.size());
    }

 private:
    void OpenWriter(CCalls&) {
        m_writer.Open(m_raw);
        m_hasHdr = false;
        m_isOpen = true;
        m_recordings.clear();
    }

    void WriteFileHdr(CCalls& calls) {
        const CRawDataFileHdr header{.HeaderID = "OVL Vexaprobe", .FileVersion = 2, .PlateID = calls.Text()};
        const bool taken = Takes([&] { m_writer.WriteFileHdr(header); });
        Require(!taken || (m_isOpen && !m_hasHdr), "one file header");
        m_hasHdr = m_hasHdr || taken;
    }

    /// Numbers are unique, so that every recording can be found.
    void WriteRecordingHdr(CCalls& calls) {
        CRawDataRecordingHdr header{.TaskName = "Series", .Recording = static_cast<std::int32_t>(m_recordings.size())};
        header.Dose = calls.Signed(8);
        header.RecordingStartTime = static_cast<std::uint64_t>(header.Dose);
        header.RecordingTime = header.Dose / 2;
        for (int i = calls.Byte() % 40; i > 0; --i)
            header.WellChannels.push_back({i, 32768, 0.5, static_cast<std::int64_t>(calls.Number(1))});
        const bool taken = Takes([&] { m_writer.WriteRecordingHdr(header); });
        Require(!taken || m_hasHdr, "no recording without a file header");
        if (taken) m_recordings.push_back({header, {}});
    }

    void WriteData(CCalls& calls) {
        constexpr std::int64_t kMostSpan = 4096;
        const auto well = static_cast<std::int32_t>(calls.Signed(1));
        const std::int64_t from = calls.Signed(8);
        const std::uint64_t span = calls.Number(2);
        const std::int64_t tick = calls.Signed(1);
        const auto to = static_cast<std::int64_t>(static_cast<std::uint64_t>(from) + span);
        const bool isSmall = to >= from && tick > 0 && to - from <= kMostSpan;
        const auto samples = SamplesOf(isSmall ? static_cast<std::size_t>((to - from) / tick) + 1 : 1, calls.Byte());
        if (to >= from && tick > 0 && !isSmall) return;  // it would read beyond the samples
        const bool taken = Takes([&] { m_writer.WriteData(well, from, to, tick, samples.data()); });
        Require(taken == (isSmall && !m_recordings.empty() && m_isOpen), "data when it can be, and only then");
        if (taken) m_recordings.back().segments.push_back({well, from, to, samples});
    }

    void UpdateHdr(CCalls& calls) {
        std::vector<std::string> values;
        for (int i = calls.Byte() % 32; i > 0; --i)
            values.push_back(std::to_string(calls.Signed(2)));
        Takes([&] { m_writer.UpdateFileHdr(calls.Byte() % 2 == 0 ? "PreQC" : "CompoundTest", values); });
    }

    void CloseWriter(CCalls&) {
        m_writer.Close();
        m_isOpen = false;
    }

    /// While the writer is open, all recordings except the last are finished.
    void OpenReader(CCalls&) {
        if (!Takes([&] { m_reader.Open(m_raw); })) {
            Require(m_recordings.empty(), "a file with a recording opens");
            return;
        }
        CheckRecordings(m_recordings.size() - (m_isOpen && !m_recordings.empty() ? 1 : 0));
    }

    void ReadData(CCalls& calls) {
        m_reader.SelectWellID(static_cast<std::int32_t>(calls.Signed(1)));
        Takes([&] { m_reader.JumpToData("Series", calls.Byte()); });
        for (int i = 0; i < 3; ++i)
            Takes([&] { ReadOne(); });
    }

    bool ReadOne() { return ReadNext(m_reader, m_segment); }

    void CheckRecordings(std::size_t finished) {
        m_reader.SelectWellID(-1);
        for (std::size_t i = 0; i < finished; ++i) {
            const CRecording& recording = m_recordings[i];
            const CRawDataRecordingHdr& wanted = recording.header;
            const CRawDataRecordingHdr& found = *m_reader.GetRecordingHdr(wanted.TaskName, wanted.Recording);
            Require(std::tie(found.Dose, found.RecordingStartTime, found.RecordingTime) ==
                        std::tie(wanted.Dose, wanted.RecordingStartTime, wanted.RecordingTime),
                    "a header is as it was given");
            Require(std::ranges::equal(found.WellChannels, wanted.WellChannels, IsSame), "and its channels");
            Require(m_reader.JumpToData(wanted.TaskName, wanted.Recording), "a finished recording is there");
            for (const CSegment& segment : recording.segments) {
                Require(Takes([&] { Require(ReadOne(), "a segment is there"); }), "a segment can be read");
                Require(m_segment == segment, "a segment is as it was given");
            }
            if (!recording.segments.empty()) Require(Takes([&] { Require(!ReadOne(), "the end"); }), "no further one");
        }
    }

    std::string m_raw = CFuzzFolder::Path("run.vxd");
    CIRawDataWriter m_writer;
    CIRawDataReader m_reader;
    std::vector<CRecording> m_recordings;  ///< Everything that was written to the file.
    bool m_isOpen = false;
    bool m_hasHdr = false;
    CSegment m_segment;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr int kMostCalls = 60;
    CCalls calls(Input(data, size));
    CSession session;
    for (int i = 0; i < kMostCalls && !calls.AtEnd(); ++i)
        session.Call(calls);
    session.Check();
    return 0;
}
