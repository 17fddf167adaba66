#include <vxfileio/frame/VXFileIO.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <set>
#include <span>
#include <string>

#include "fuzz/Fuzz.h"
#include "recovery/Recover.h"
#include "tests/rawdata/SegmentsOf.h"
#include "verify/raw/RawVerify.h"

namespace {

/// Reads a recovered file to its end. Only a recording without segments may end in a failure.
void ReadBack(const std::string& path) {
    CIRawDataReader reader;
    reader.Open(path);
    for (std::int32_t i = 0; i < reader.GetIndex()->GetCount(); ++i) {
        const CIndexEntry& entry = *reader.GetIndex()->GetEntry(i);
        if (!reader.JumpToData(entry.TaskName, entry.Recording)) std::abort();
        auto [well, from, to, size, samples] = CNextSegment();
        bool any = false;
        try {
            while (reader.ReadSegment(well, from, to, size, samples))
                any = true;
        } catch (const CExcVXReader&) {
            if (any) std::abort();
        }
    }
}

bool HasUnlistedWells(const vxfileio::recovery::CReport& report) {
    using vxfileio::recovery::CNote;
    return std::ranges::any_of(report.recordings, [](const auto& recording) {
        return std::ranges::count(recording.notes, CNote::EKind::TooManyWells, &CNote::kind) > 0;
    });
}

/// Verifies a recovered file. Recovery doesn't repair texts, times and samples, and reports wells that don't fit into
/// their header.
void Verify(const std::string& path, const vxfileio::recovery::CReport& report) {
    std::set<std::string> kept = {"no-separator", "no-controls", "no-overlap"};
    if (HasUnlistedWells(report)) kept.insert("well-listed");
    const vxfile::CFindings findings = vxfile::VerifyRawData(path);
    for (const auto& finding : findings.Kept()) {
        if (!kept.contains(finding.rule) && !finding.where.ends_with(" > samples")) std::abort();
    }
}

}  // namespace

/// Recovers any bytes. The result must be a sound file that the library reads to its end.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string in = CFuzzFolder::Path("in.vxd");
    static const std::string out = CFuzzFolder::Path("out.vxd");
    WriteBytes(in, Input(data, size));
    vxfileio::helpers::CFile file;
    if (!file.OpenForReading(in)) std::abort();
    std::string saved;
    const auto report = vxfileio::recovery::Recover(
        vxfileio::recovery::CFileInput(file), {.keepCut = size % 2 == 1}, [&](std::span<const std::byte> part) {
            saved.append(reinterpret_cast<const char*>(part.data()), part.size());
        });
    if (saved.empty()) return 0;  // there was nothing to save
    WriteBytes(out, saved);
    ReadBack(out);
    Verify(out, report);
    return 0;
}
