// Reads any bytes as a raw data file, completely, and each well of a recording once more alone.
#include <set>
#include <utility>
#include <vector>

#include "fuzz/Fuzz.h"
#include "fuzz/Segments.h"
#include "vxfileio/frame/VXFileIO.h"

namespace {

/// A walk stops after this many samples, since segments that claim many samples beyond the end would only take time.
constexpr std::size_t kMostSamples = 1 << 20;

/// Reads from the current position. Returns false if the end of the chain wasn't reached.
bool ReadSegments(CIRawDataReader& reader, std::vector<CSegment>& segments) try {
    std::size_t sum = 0;
    for (CSegment segment; ReadNext(reader, segment);) {
        segments.push_back(segment);
        sum += segment.samples.size();
        if (sum > kMostSamples) return false;
    }
    return true;
} catch (const CExcVXReader& failure) {
    Require(failure.GetCode() == -1 && !failure.GetMsg().empty(), "a failure has a text");
    return false;
}

/// Checks that reading a well alone delivers the same segments as reading all wells together.
void CheckSelection(CIRawDataReader& reader, const CIndexEntry& entry, std::vector<CSegment> expected) {
    if (expected.empty()) return;
    const std::int32_t well = expected.front().well;
    std::erase_if(expected, [&](const CSegment& segment) { return well != -1 && segment.well != well; });
    std::vector<CSegment> selected;
    reader.SelectWellID(well);
    Require(reader.JumpToData(entry.TaskName, entry.Recording), "the recording is still there");
    Require(ReadSegments(reader, selected) && selected == expected, "the segments of one well");
    reader.SelectWellID(-1);
}

/// If several recordings have the same task and number, the header comes from the first and the segments from the last.
void ReadContent(const std::string& path) try {
    CIRawDataReader reader;
    reader.Open(path);
    std::set<std::pair<std::string, std::int32_t>> taken;
    for (std::int32_t i = 0; i < reader.GetIndex()->GetCount(); ++i) {
        const CIndexEntry& entry = *reader.GetIndex()->GetEntry(i);
        if (!taken.insert({entry.TaskName, entry.Recording}).second) continue;
        const CRawDataRecordingHdr* const header = reader.GetRecordingHdr(entry.TaskName, entry.Recording);
        Require(header != nullptr, "the index names what is there");
        Require(reader.GetWellIDs(entry.TaskName, entry.Recording).size() >= header->WellChannels.size(), "its wells");
        for (const auto& channel : header->WellChannels)
            Require(!reader.GetDoses(entry.TaskName, channel.ID).empty(), "each well has its doses");
        if (!reader.JumpToData(entry.TaskName, entry.Recording)) continue;
        std::vector<CSegment> segments;
        if (ReadSegments(reader, segments)) CheckSelection(reader, entry, segments);
    }
    Require(reader.GetTasks().size() <= taken.size(), "each task once");
} catch (const CExcVXReader& failure) {
    Require(failure.GetCode() == -1 && !failure.GetMsg().empty(), "a failure has a text");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string path = CFuzzFolder::Path("read.vxd");
    WriteBytes(path, Input(data, size));
    ReadContent(path);
    return 0;
}
