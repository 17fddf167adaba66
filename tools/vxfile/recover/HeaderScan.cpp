#include "tools/vxfile/recover/HeaderScan.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace vxfile {

using namespace vxfileio::rawdata;

namespace {

/// Blocks grow: most often the next header is near.
constexpr std::size_t kFirstBlockSize = std::size_t{4} << 10;
constexpr std::size_t kMostBlockSize = std::size_t{1} << 20;

/// How headers begin.
constexpr std::array<std::string_view, 3> kBeginnings = {"Type=Well", "TaskName", kFileTypeText};

/// So much of one block is seen again in the next one, so that no beginning is cut in two.
constexpr std::size_t kOverlap = kFileTypeText.size();

constexpr std::size_t kDataRow = RowOf(kRecordingCells, "FPosRecordingData");

/// Returns where the first beginning stands in the text.
std::size_t FirstBeginning(std::string_view text) {
    std::size_t first = text.size();
    for (const auto beginning : kBeginnings)
        first = std::min(first, text.substr(0, std::min(first + beginning.size(), text.size())).find(beginning));
    return first;
}

}  // namespace

std::int64_t CHeaderScan::Next(std::int64_t from) const {
    for (auto at = NextBeginning(from); at < m_probe.Size();) {
        m_reach(at);
        if (IsHeader(at)) return at;
        at = NextBeginning(EndOfFileWithin(at).value_or(at + 1));
    }
    return m_probe.Size();
}

std::optional<std::int64_t> CHeaderScan::NextAhead(std::int64_t from, std::int64_t end, std::int64_t shift) const {
    for (auto at = NextBeginning(from); at < end; at = NextBeginning(at + 1)) {
        m_reach(at);
        if (IsAhead(at, shift + end - at)) return at;
    }
    return std::nullopt;
}

/// It leads further still if whole things were taken out with the rest, and so does the one behind it. The last segment
/// of a recording leads nowhere, so its well and what follows have to speak for it.
bool CHeaderScan::IsAhead(std::int64_t position, std::int64_t shift) const {
    const CSegmentProbe probe = m_probe.Segment(position);
    if (!probe.IsWhole() || !IsConsistent(probe.header)) return m_probe.Recording(position, m_version).Shift() == shift;
    if (const auto told = probe.Shift()) return *told == shift || (*told > shift && IsShifted(probe));
    return m_evidence.IsExpected(probe.header) && m_probe.LooksLikeEnd(probe.EndOf(probe.header.Size));
}

std::int64_t CHeaderScan::FirstFile() const {
    const std::int64_t first = Next(1);
    for (auto at = NextBeginning(1); at < first; at = NextBeginning(at + 1)) {
        if (IsFileHdr(at)) return at;
    }
    return 0;
}

bool CHeaderScan::IsFileHdr(std::int64_t position) const {
    const std::string header = m_probe.Read(position, kFileHdrSize);
    return header.starts_with(kFileTypeText) && DamageOfFileHdr(header).damaged.count() <= kFileCells.size() / 2;
}

std::int64_t CHeaderScan::NextBeginning(std::int64_t from) const {
    for (auto size = kFirstBlockSize; from < m_probe.Size(); size = std::min(2 * size, kMostBlockSize)) {
        const std::string block = m_probe.Read(from, size);
        const std::size_t at = FirstBeginning(block);
        if (at < block.size()) return from + static_cast<std::int64_t>(at);
        if (block.size() < size) break;
        from += static_cast<std::int64_t>(block.size() - kOverlap);
        m_reach(from);
    }
    return m_probe.Size();
}

bool CHeaderScan::IsHeader(std::int64_t position) const { return IsSegmentHdr(position) || IsRecordingHdr(position); }

bool CHeaderScan::IsSegmentHdr(std::int64_t position) const {
    const CSegmentProbe probe = m_probe.Segment(position);
    if (!probe.IsWhole() || !IsConsistent(probe.header)) return false;
    const std::int64_t end = probe.EndOf(probe.header.Size);
    if (end > m_probe.Size()) return false;
    if (probe.header.FPosNextSegmentHdr == end || m_evidence.IsPromised(position)) return true;
    const bool isLast = probe.header.FPosNextSegmentHdr == kUnset;
    const bool isExpected = m_evidence.IsExpected(probe.header);
    return (isLast && (isExpected || m_evidence.IsPromised(end))) ||
           ((isLast || isExpected) && m_probe.LooksLikeEnd(end)) || IsShifted(probe);
}

/// Tells whether a segment and the one right behind it lead as far beside their ends: bytes were put in or taken out
/// somewhere ahead of them.
bool CHeaderScan::IsShifted(const CSegmentProbe& probe) const {
    const CSegmentProbe next = m_probe.Segment(probe.EndOf(probe.header.Size));
    if (!next.IsWhole() || !IsConsistent(next.header)) return false;
    return next.header.FPosNextSegmentHdr == kUnset || next.Shift() == probe.Shift();
}

bool CHeaderScan::IsRecordingHdr(std::int64_t position) const {
    const CRecordingProbe probe = m_probe.Recording(position, m_version);
    if (!probe.IsCredible()) return false;
    return probe.KnowsItsPlace() || probe.cells.lost[kDataRow] || probe.Position(kDataRow) == kUnset ||
           m_evidence.IsPromised(position) || (probe.IsWhole() && m_probe.LooksLikeEnd(probe.End()));
}

/// Returns where a raw data file that begins at `position` ends, as far as its headers follow one another.
std::optional<std::int64_t> CHeaderScan::EndOfFileWithin(std::int64_t position) const {
    if (!IsFileHdr(position)) return std::nullopt;
    auto end = std::min(position + static_cast<std::int64_t>(kFileHdrSize), m_probe.Size());
    for (bool ended = false; end < m_probe.Size();) {
        m_reach(end);
        const CSegmentProbe segment = m_probe.Segment(end);
        const CRecordingProbe recording = m_probe.Recording(end, m_version);
        if (!ended && segment.IsWhole() && IsConsistent(segment.header)) {
            const std::int64_t behind = segment.EndOf(segment.header.Size);
            // One that knows its place in the file around it belongs to that. What isn't followed may be cut.
            if (segment.header.FPosNextSegmentHdr == behind) break;
            if (!m_probe.LooksLikeHeader(behind)) return segment.Data();
            ended = segment.header.FPosNextSegmentHdr == kUnset;
            end = behind;
        } else if (recording.IsWhole() && recording.Position(kDataRow) != recording.End()) {
            ended = false;
            end = recording.End();
        } else {
            break;
        }
    }
    return end;
}

}  // namespace vxfile
