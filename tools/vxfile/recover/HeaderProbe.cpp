#include "tools/vxfile/recover/HeaderProbe.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <optional>
#include <span>

#include "tools/vxfile/system/Failure.h"
#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/rawdata/CellCodec.h"
#include "vxfileio/rawdata/HeaderCodec.h"

namespace vxfile {

using namespace vxfileio::rawdata;

namespace {

/// What a lost position is told as: no whole cell has it.
constexpr std::int64_t kNoPosition = -2;

constexpr std::int32_t kVersionWithoutStartTime = 1;

constexpr std::size_t kTaskRow = RowOf(kRecordingCells, "TaskName");
constexpr std::size_t kDataRow = RowOf(kRecordingCells, "FPosRecordingData");

std::size_t CellsOf(const auto& cells, std::int32_t version, std::size_t bytes) {
    std::size_t count = 0;
    for (const auto& cell : cells) {
        if (!HasCell(cell, version)) continue;
        if (cell.width > bytes) break;
        bytes -= cell.width;
        ++count;
    }
    return count;
}

/// Tells whether at least half of the cells that are there are whole.
bool MostAreWhole(const auto& cells, std::int32_t version, const CDamagedCells& damaged, std::size_t bytes) {
    const std::size_t there = CellsOf(cells, version, bytes);
    const std::size_t missing = CellsOf(cells, version, kRecordingHdrSize) - there;
    return there > 0 && 2 * (damaged.count() - std::min(damaged.count(), missing)) <= there;
}

/// Returns how far a position leads behind an end; nothing if it leads nowhere, or where no file ever is.
std::optional<std::int64_t> Beyond(std::int64_t position, std::int64_t end) {
    constexpr std::int64_t kFarthest = std::numeric_limits<std::int64_t>::max() / 4;  // so that sums stay in range
    if (position < 0 || position > kFarthest) return std::nullopt;
    return position - end;
}

bool BeginsLike(std::string_view bytes, std::string_view text) {
    return !bytes.empty() && bytes.starts_with(text.substr(0, bytes.size()));
}

}  // namespace

std::int64_t CSegmentProbe::EndOf(std::int64_t samples) const {
    return Data() + samples * static_cast<std::int64_t>(sizeof(std::uint16_t));
}

std::optional<std::int64_t> CSegmentProbe::Shift() const {
    if (cells.lost[RowOf(kSegmentCells, "FPosNextSegmentHdr")]) return std::nullopt;
    return Beyond(header.FPosNextSegmentHdr, EndOf(header.Size));
}

std::size_t CRecordingProbe::Size() const { return SizeOf(kRecordingCells, version); }

bool CRecordingProbe::IsCredible() const {
    if (bytes.size() != Size()) return false;
    return (!cells.lost[kTaskRow] && KnowsItsPlace()) ||
           MostAreWhole(kRecordingCells, version, cells.damaged, bytes.size());
}

bool CRecordingProbe::KnowsItsPlace() const { return bytes.size() == Size() && Position(kDataRow) == End(); }

std::optional<std::int64_t> CRecordingProbe::Shift() const {
    if (!IsCredible()) return std::nullopt;
    return Beyond(Position(kDataRow), End());
}

std::int64_t CRecordingProbe::Position(std::size_t row) const {
    if (cells.lost[row] || bytes.size() != Size()) return kNoPosition;
    std::size_t offset = 0;
    for (std::size_t i = 0; i < row; ++i)
        offset += kRecordingCells[i].width;  // the positions stand ahead of the cell that not every version has
    const auto cell = std::string_view(bytes).substr(offset, kRecordingCells[row].width);
    return vxfileio::helpers::ParseInt64(CellValue(cell));
}

std::string CHeaderProbe::Read(std::int64_t position, std::size_t size) const {
    const std::int64_t left = std::max<std::int64_t>(m_size - position, 0);
    std::string bytes(static_cast<std::size_t>(std::min(left, static_cast<std::int64_t>(size))), '\0');
    const std::size_t read = m_file.ReadUpTo(position, std::as_writable_bytes(std::span(bytes)));
    if (read < bytes.size()) {
        const std::int64_t where = position + static_cast<std::int64_t>(read);
        throw CFailure("Can't read " + m_path + " at byte " + std::to_string(where) +
                       "; copy it with a program that passes over bad places of a disk, and recover the copy.");
    }
    return bytes;
}

CSegmentProbe CHeaderProbe::Segment(std::int64_t position) const {
    std::string bytes = Read(position, kSegmentHdrSize);
    CSegmentProbe probe{.position = position, .cells = DamageOfSegmentHdr(bytes), .header = {}};
    bytes.resize(kSegmentHdrSize);
    Decode(RecoveredLayout(), bytes, probe.header);
    // A size that can't be held is as good as none.
    if (probe.header.Size < 1 || probe.header.Size > kMostSamples) probe.cells.Lose(RowOf(kSegmentCells, "Size"));
    return probe;
}

CRecordingProbe CHeaderProbe::Recording(std::int64_t position, std::int32_t version) const {
    const std::string bytes = Read(position, kRecordingHdrSize);
    const auto layout = [&](std::int32_t candidate) {
        CRecordingProbe probe{.position = position, .version = candidate, .bytes = bytes, .cells = {}};
        probe.bytes.resize(std::min(bytes.size(), SizeOf(kRecordingCells, candidate)));
        probe.cells = DamageOfRecordingHdr(probe.bytes, candidate);
        return probe;
    };
    const bool hasStartTime = version >= kNewestVersion;
    auto told = layout(hasStartTime ? kNewestVersion : kVersionWithoutStartTime);
    if (told.IsWhole() || told.KnowsItsPlace()) return told;
    auto other = layout(hasStartTime ? kVersionWithoutStartTime : kNewestVersion);
    if (other.KnowsItsPlace()) return other;
    return other.cells.damaged.count() < told.cells.damaged.count() ? other : told;
}

bool CHeaderProbe::LooksLikeHeader(std::int64_t position) const {
    const std::string bytes = Read(position, kSegmentCells.front().width);
    if (bytes.size() < kSegmentCells.front().width)
        return BeginsLike(bytes, "Type=Well") || BeginsLike(bytes, kRecordingCells.front().key);
    const CSegmentProbe segment = Segment(position);
    const auto left = static_cast<std::size_t>(std::min<std::int64_t>(m_size - position, kRecordingHdrSize));
    const std::size_t there = std::min(left, kSegmentHdrSize);
    const std::size_t missing = kSegmentCells.size() - there / kSegmentCells.front().width;
    if (2 * (segment.cells.damaged.count() - missing) <= kSegmentCells.size() - missing) return true;
    const CRecordingProbe recording = Recording(position, kNewestVersion);
    return recording.IsCredible() ||
           MostAreWhole(kRecordingCells, recording.version, recording.cells.damaged, recording.bytes.size());
}

bool CHeaderProbe::LooksLikeEnd(std::int64_t position) const {
    const auto isEnd = [&](std::size_t lost) {
        const std::int64_t behind = position + static_cast<std::int64_t>(lost);
        return behind == m_size || LooksLikeHeader(behind);
    };
    return isEnd(0) || isEnd(SizeOf(kRecordingCells)) || isEnd(SizeOf(kRecordingCells, kVersionWithoutStartTime));
}

std::optional<std::uint64_t> SpanOf(const CSegmentHdr& header) {
    if (header.TimeTo < header.TimeFrom) return std::nullopt;
    const auto span = static_cast<std::uint64_t>(header.TimeTo) - static_cast<std::uint64_t>(header.TimeFrom);
    if (span >= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) return std::nullopt;
    return span;
}

std::optional<std::int64_t> TimeBehind(std::int64_t time, std::int64_t intervals, std::int64_t tick) {
    using CLimits = std::numeric_limits<std::int64_t>;
    if (intervals == 0) return time;
    if (tick <= 0 || tick > CLimits::max() / std::abs(intervals)) return std::nullopt;
    const std::int64_t length = tick * intervals;
    if (length > 0 ? time > CLimits::max() - length : time < CLimits::min() - length) return std::nullopt;
    return time + length;
}

bool GoesWith(const CSegmentHdr& header, std::int64_t tick) {
    const auto span = SpanOf(header);
    return span && tick > 0 && static_cast<std::int64_t>(*span) / tick + 1 == header.Size;
}

bool IsConsistent(const CSegmentHdr& header) {
    const auto span = SpanOf(header);
    if (!span || header.Size < 1) return false;
    // The largest interval that gives so many samples.
    return header.Size == 1 || GoesWith(header, static_cast<std::int64_t>(*span) / (header.Size - 1));
}

}  // namespace vxfile
