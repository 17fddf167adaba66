// Reads any bytes as a raw data file, completely. What can be read is written again and must read the same.
#include <cmath>
#include <limits>
#include <optional>
#include <set>
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

struct CContent {
    CRawDataFileHdr header;
    std::vector<CRecording> recordings;
};

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

/// Checks that reading each well alone delivers the same segments as reading all wells together.
void CheckSelection(CIRawDataReader& reader, const CRecording& recording) {
    if (recording.segments.empty()) return;
    const std::int32_t well = recording.segments.front().well;
    std::vector<CSegment> expected;
    for (const CSegment& segment : recording.segments)
        if (well == -1 || segment.well == well) expected.push_back(segment);
    std::vector<CSegment> selected;
    reader.SelectWellID(well);
    Require(reader.JumpToData(recording.header.TaskName, recording.header.Recording), "the recording is still there");
    Require(ReadSegments(reader, selected) && selected == expected, "the segments of one well");
    reader.SelectWellID(-1);
}

/// If several recordings have the same task and number, the header comes from the first and the segments from the last.
std::optional<CContent> ReadContent(const std::string& path) try {
    CIRawDataReader reader;
    reader.Open(path);
    CContent content{*reader.GetFileHdr(), {}};
    std::set<std::pair<std::string, std::int32_t>> taken;
    for (std::int32_t i = 0; i < reader.GetIndex()->GetCount(); ++i) {
        const CIndexEntry& entry = *reader.GetIndex()->GetEntry(i);
        if (!taken.insert({entry.TaskName, entry.Recording}).second) continue;
        const CRawDataRecordingHdr* const header = reader.GetRecordingHdr(entry.TaskName, entry.Recording);
        Require(header != nullptr, "the index names what is there");
        Require(reader.GetWellIDs(entry.TaskName, entry.Recording).size() >= header->WellChannels.size(), "its wells");
        for (const auto& channel : header->WellChannels)
            Require(!reader.GetDoses(entry.TaskName, channel.ID).empty(), "each well has its doses");
        CRecording& recording = content.recordings.emplace_back(CRecording{*header, {}});
        if (!reader.JumpToData(entry.TaskName, entry.Recording)) continue;
        if (ReadSegments(reader, recording.segments)) CheckSelection(reader, recording);
    }
    Require(reader.GetTasks().size() <= taken.size(), "each task once");
    return content;
} catch (const CExcVXReader& failure) {
    Require(failure.GetCode() == -1 && !failure.GetMsg().empty(), "a failure has a text");
    return std::nullopt;
}

std::vector<std::string> TextsOf(const std::vector<std::int64_t>& numbers) {
    std::vector<std::string> texts;
    for (const std::int64_t number : numbers)
        texts.push_back(std::to_string(number));
    return texts;
}

/// Corrects what a reader accepts but a writer would reject: the version, times that don't match the size, and numbers
/// that are too long for their cells.
void MakeWritable(CContent& content) {
    content.header.FileVersion = std::max(content.header.FileVersion, 2);
    for (CRecording& recording : content.recordings) {
        std::erase_if(recording.segments, [](const CSegment& segment) { return segment.samples.empty(); });
        for (CSegment& segment : recording.segments) {
            const auto last = static_cast<std::int64_t>(segment.samples.size()) - 1;
            segment.from = std::min(segment.from, std::numeric_limits<std::int64_t>::max() - last);
            segment.to = segment.from + last;
        }
        for (auto& channel : recording.header.WellChannels) {
            char text[40];
            std::snprintf(text, sizeof text, "%g", channel.UnitsPerAD);
            channel.UnitsPerAD = std::strtod(text, nullptr);
        }
    }
}

/// Returns false if a value doesn't fit its cell; the file is then incomplete.
bool WriteContent(const std::string& path, const CContent& content) try {
    CIRawDataWriter writer;
    writer.Open(path);
    writer.WriteFileHdr(content.header);
    writer.UpdateFileHdr("PreQC", TextsOf(content.header.PreQC));
    writer.UpdateFileHdr("CompoundTest", TextsOf(content.header.CompoundTest));
    writer.UpdateFileHdr("PostQC", TextsOf(content.header.PostQC));
    for (const CRecording& recording : content.recordings) {
        writer.WriteRecordingHdr(recording.header);
        for (const CSegment& segment : recording.segments)
            writer.WriteData(segment.well, segment.from, segment.to, 1, segment.samples.data());
    }
    return true;
} catch (const CExcVXReader& failure) {
    Require(failure.GetMsg().starts_with("Value does not fit its cell: "), "nothing else is refused");
    return false;
}

/// The names here are all members of the class. One that is missing doesn't compile.
auto Values(const CRawDataFileHdr& header) {
    const auto& [id, first, type, program, version, guid, plate, compoundID, compound, pre, test, post, sum, reserved] =
        header;
    return std::tie(id, type, program, version, guid, plate, compoundID, compound, pre, test, post);
}
auto Values(const CRawDataRecordingHdr& header) {
    const auto& [task, number, dose, data, trailer, next, start, length, wells, aux] = header;
    return std::tie(task, number, dose, start, length);
}
auto Values(const CRawDataChannelInfo& c) { return std::tie(c.ID, c.ADZero, c.Ticks); }

bool IsSame(const CRawDataChannelInfo& a, const CRawDataChannelInfo& b) {
    const bool sameUnits = a.UnitsPerAD == b.UnitsPerAD || (std::isnan(a.UnitsPerAD) && std::isnan(b.UnitsPerAD));
    return Values(a) == Values(b) && sameUnits;
}

void RequireSame(const CContent& a, const CContent& b) {
    Require(Values(a.header) == Values(b.header), "the same file header");
    Require(a.recordings.size() == b.recordings.size(), "as many recordings");
    for (std::size_t i = 0; i < a.recordings.size(); ++i) {
        const CRawDataRecordingHdr& x = a.recordings[i].header;
        const CRawDataRecordingHdr& y = b.recordings[i].header;
        Require(Values(x) == Values(y), "the same recording header");
        Require(std::ranges::equal(x.WellChannels, y.WellChannels, IsSame), "the same channels");
        Require(a.recordings[i].segments == b.recordings[i].segments, "the same segments");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string read = CFuzzFolder::Path("read.vxd");
    static const std::string written = CFuzzFolder::Path("written.vxd");
    WriteBytes(read, Input(data, size));
    std::optional<CContent> content = ReadContent(read);
    if (!content || content->recordings.empty()) return 0;
    MakeWritable(*content);
    if (!WriteContent(written, *content)) return 0;
    const std::optional<CContent> again = ReadContent(written);
    Require(again.has_value(), "what was written opens");
    RequireSame(*content, *again);
    return 0;
}
