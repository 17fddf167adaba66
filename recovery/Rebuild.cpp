#include "recovery/Rebuild.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string_view>
#include <utility>
#include <variant>

#include "vxfileio/base/ExcVXReader.h"
#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/rawdata/CellCodec.h"
#include "vxfileio/rawdata/HeaderCodec.h"

namespace vxfileio::recovery {

using namespace rawdata;
using helpers::CNumberText;

namespace {

/// The name of a recording whose own name is lost.
constexpr const char* kLostName = "Recovered";

/// A header in the layout of the new file.
struct COldHdr {
    std::string bytes;  ///< Undamaged cells as they are, the others with their keys alone.
    CDamage damage;     ///< Rows of the new layout.
    CRows foreign;      ///< Rows that the old layout lacks.
};

/// Returns the row of an older layout that has the same cell as `row` of a newer one. Some keys occur twice.
template <class Layout>
std::optional<std::size_t> SameRow(const Layout& from, const Layout& to, std::size_t row) {
    const auto& key = to.cells[row].key;
    auto nth = std::ranges::count(to.cells.first(row), key, [](const auto& cell) { return cell.key; });
    for (std::size_t i = 0; i < from.cells.size(); ++i) {
        if (from.cells[i].key == key && nth-- == 0) return i;
    }
    return std::nullopt;
}

/// Translates a header from one layout to another. `bytes` is empty if the header is lost.
template <class Layout>
COldHdr Translated(const Layout& from, const Layout& to, std::string_view bytes, const CDamage& damage) {
    COldHdr old{.bytes = std::string(to.size, '\0'), .damage = {}, .foreign = {}};
    for (std::size_t row = 0; row < to.cells.size(); ++row) {
        const auto& cell = to.cells[row];
        const auto same = SameRow(from, to, row);
        old.foreign[row] = !same;
        if (same) {
            old.damage.damaged[row] = damage.damaged[*same];
            old.damage.lost[row] = damage.lost[*same];
            old.damage.odd[row] = damage.odd[*same];
        }
        const bool hasText = same && !damage.lost[*same];
        CCellWriter(std::span(old.bytes).subspan(cell.offset, cell.width),
                    hasText ? CellText(CellIn(from.cells[*same], bytes)) : cell.key);
    }
    return old;
}

/// Returns a header that is lost altogether.
CDamage AllLost() {
    CDamage damage;
    damage.damaged.set();
    damage.lost.set();
    return damage;
}

/// Copies the cells that aren't `made` from one header to another.
void KeepCells(const auto& layout, const std::string& from, const CRows& made, std::string& to) {
    for (std::size_t row = 0; row < layout.cells.size(); ++row) {
        const auto& cell = layout.cells[row];
        if (!made[row]) to.replace(cell.offset, cell.width, from, cell.offset, cell.width);
    }
}

void SetPosition(const auto& layout, std::string_view key, std::int64_t position, std::string& header) {
    const auto& cell = layout[key];
    EncodePosition(key, position, std::span(header).subspan(cell.offset, cell.width));
}

template <class Header>
std::string Encoded(const CLayout& layout, const Header& header, std::size_t size) {
    std::string bytes(size, '\0');
    Encode(layout, header, std::span(bytes));
    return bytes;
}

std::size_t ItemsIn(const CRecordingCell& cell, std::string_view header) {
    CCellItems items(CellIn(cell, header));
    std::size_t count = 0;
    while (items.Next())
        ++count;
    return count;
}

/// Adds a note for each kind of damage; `lost` are the cells that had to be made up.
void NoteDamage(const auto& layout, const CDamage& damage, const CRows& lost, std::vector<CNote>& notes) {
    std::map<CNote::EKind, std::string> keys;
    for (std::size_t row = 0; row < layout.cells.size(); ++row) {
        if (!damage.damaged[row] && !lost[row] && !damage.odd[row]) continue;
        const auto& cell = layout.cells[row];
        bool isTold = cell.traits.role != ERole::Value;
        if constexpr (std::is_same_v<std::remove_cvref_t<decltype(cell)>, CRecordingCell>)
            isTold = isTold || cell.key == "NumberOfWells";
        const auto kind = damage.odd[row] ? CNote::EKind::Odd
                          : !lost[row]    ? CNote::EKind::Legible
                          : isTold        ? CNote::EKind::Told
                                          : CNote::EKind::Lost;
        std::string& list = keys[kind];
        list.append(list.empty() ? "" : ", ").append(cell.key.empty() ? "the mark" : cell.key);
    }
    std::size_t at = 0;
    for (auto& [kind, list] : keys)
        notes.insert(notes.begin() + static_cast<std::ptrdiff_t>(at++), CNote{.kind = kind, .keys = std::move(list)});
}

bool IsListOf(const CRecordingCell& cell, CChannels channels) {
    const auto* const list = std::get_if<CChannelList>(&cell.member);
    return list != nullptr && list->channels == channels;
}

bool IsCountOf(const CRecordingCell& cell, CChannels channels) {
    const auto* const count = std::get_if<CChannelCount>(&cell.member);
    return count != nullptr && count->channels == channels;
}

/// Brings the lists of the wells of one recording in order.
class CWellLists {
 public:
    CWellLists(const CFoundRecording& recording, const CLayout& layout, const COldHdr& old,
               CRawDataRecordingHdr& header, std::vector<CNote>& notes)
        : m_recording(recording), m_layout(layout), m_old(old), m_header(header), m_notes(notes) {
        const auto& cells = layout.recording.cells;
        for (std::size_t row = 0; row < cells.size(); ++row) {
            if (IsListOf(cells[row], kWells)) m_lists.push_back(row);
            if (IsCountOf(cells[row], kWells)) m_count = row;
        }
        m_ids = layout.recording.RowOf(layout.recording["WellIDs"]);
    }

    /// Sets the wells of the header. Returns the cells that don't hold what they should, and those that are made up.
    std::pair<CRows, CRows> Mend() {
        m_made = m_old.damage.lost;
        JudgeCounts();
        const CRows lost = m_made;
        if (m_made[m_ids]) {
            m_model = CommonOf(std::exchange(m_header.WellChannels, {}));
            MakeAll();
            Note({.kind = CNote::EKind::WellsOfSegments});
        } else {
            TakeLists();
            DropTwins();
        }
        AddUnlisted();
        MendTicks();
        return {lost, m_made};
    }

 private:
    /// All lists have the same length. What most of them say is believed; the others are damaged.
    void JudgeCounts() {
        std::map<std::size_t, int> votes;
        for (const std::size_t row : m_lists) {
            if (!m_made[row]) votes[Items(row)] += row == m_ids ? 3 : 2;
        }
        const auto told = m_header.WellChannels.size();
        if (!m_made[m_count]) ++votes[told];
        const auto most = std::ranges::max_element(votes, {}, [](const auto& vote) { return vote.second; });
        m_items = most == votes.end() ? 0 : most->first;
        for (const std::size_t row : m_lists)
            m_made[row] = m_made[row] || Items(row) != m_items;
        m_made[m_count] = m_made[m_count] || told != m_items;
    }

    std::size_t Items(std::size_t row) const { return ItemsIn(m_layout.recording.cells[row], m_old.bytes); }

    /// Takes the lists that can be used, with the length that most of them have.
    void TakeLists() {
        std::string bytes = m_old.bytes;
        const auto put = [&](std::size_t row, std::string_view value) {
            const auto& cell = m_layout.recording.cells[row];
            EncodeCell(cell.key, value, std::span(bytes).subspan(cell.offset, cell.width));
        };
        put(m_count, CNumberText(m_items).View());
        for (const std::size_t row : m_lists) {
            if (m_made[row]) put(row, "");
        }
        CRawDataRecordingHdr lists;
        if (Decode(m_layout, bytes, lists)) m_header.WellChannels = std::move(lists.WellChannels);
    }

    /// A well that is listed twice has lost the other's ID; the first one stays.
    void DropTwins() {
        auto& wells = m_header.WellChannels;
        m_model = CommonOf(wells);
        for (auto well = wells.begin(); well != wells.end();) {
            const bool isTwin =
                std::find_if(wells.begin(), well, [&](const auto& other) { return other.ID == well->ID; }) != well;
            if (isTwin) {
                Note({.kind = CNote::EKind::ListedTwice, .wells = {well->ID}});
                MakeAll();
            }
            well = isTwin ? wells.erase(well) : std::next(well);
        }
    }

    /// Lists the wells that have segments and aren't listed yet.
    void AddUnlisted() {
        auto& wells = m_header.WellChannels;
        std::vector<std::int32_t> added;
        for (const auto& [wellID, interval] : m_recording.wells) {
            if (wells.size() == m_layout.mostChannels) break;
            if (std::ranges::find(wells, wellID, &CRawDataChannelInfo::ID) != wells.end()) continue;
            m_model.ID = wellID;
            wells.push_back(m_model);
            added.push_back(wellID);
        }
        if (added.empty()) return;
        if (!m_made[m_ids]) Note({.kind = CNote::EKind::ListedNow, .wells = added});
        MakeAll();
    }

    /// Returns what the lists say of all wells in the same way.
    static CRawDataChannelInfo CommonOf(const std::vector<CRawDataChannelInfo>& wells) {
        CRawDataChannelInfo common;
        const auto take = [&](auto field) {
            const auto differs = [&](const auto& well) { return well.*field != wells.front().*field; };
            if (!wells.empty() && std::ranges::none_of(wells, differs)) common.*field = wells.front().*field;
        };
        take(&CRawDataChannelInfo::ADZero);
        take(&CRawDataChannelInfo::UnitsPerAD);
        take(&CRawDataChannelInfo::Ticks);
        return common;
    }

    void MakeAll() {
        m_made[m_count] = true;
        for (const std::size_t row : m_lists)
            m_made[row] = true;
    }

    /// Gives each well the interval of its segments. One without segments may have any.
    void MendTicks() {
        const auto& cells = m_layout.recording;
        for (auto& well : m_header.WellChannels) {
            const auto found = m_recording.wells.find(well.ID);
            const CWellInterval interval = found != m_recording.wells.end() ? found->second
                                           : well.Ticks > 0                 ? CWellInterval{well.Ticks, true}
                                                                            : CWellInterval{1, false};
            if (well.Ticks == interval.ticks) continue;
            Note({.kind = interval.isTold ? CNote::EKind::Interval : CNote::EKind::NoInterval,
                  .wells = {well.ID},
                  .from = std::max<std::int64_t>(well.Ticks, 0),
                  .to = interval.ticks});
            well.Ticks = interval.ticks;
            m_made[cells.RowOf(cells["Ticks"])] = true;
        }
    }

    void Note(CNote note) { m_notes.push_back(std::move(note)); }

    const CFoundRecording& m_recording;
    const CLayout& m_layout;
    const COldHdr& m_old;
    CRawDataRecordingHdr& m_header;
    std::vector<CNote>& m_notes;
    std::vector<std::size_t> m_lists;  ///< Rows.
    std::size_t m_count = 0;
    std::size_t m_ids = 0;
    CRows m_made;
    std::size_t m_items = 0;
    CRawDataChannelInfo m_model;  ///< What is known of a well that isn't listed.
};

/// Encodes a header whose lists may be too long for their cells: as many wells as fit.
std::string EncodedWithRoom(const CLayout& layout, CRawDataRecordingHdr& header, std::vector<CNote>& notes) {
    for (bool left = false;; left = true) {
        try {
            auto bytes = Encoded(layout, header, layout.recording.size);
            if (left) notes.push_back({.kind = CNote::EKind::TooManyWells});
            return bytes;
        } catch (const CExcVXReader&) {
            if (header.WellChannels.empty()) throw;
            header.WellChannels.pop_back();
        }
    }
}

/// Auxiliary channels stay if all cells about them are whole and agree. Returns the rows to be made up.
CRows MadeAuxRows(const CLayout& layout, const COldHdr& old, std::size_t channels) {
    CRows rows;
    bool agrees = true;
    for (std::size_t row = 0; row < layout.recording.cells.size(); ++row) {
        const auto& cell = layout.recording.cells[row];
        const bool isList = IsListOf(cell, kAux);
        if (!isList && !IsCountOf(cell, kAux)) continue;
        rows[row] = true;
        agrees = agrees && !old.damage.lost[row] && (!isList || ItemsIn(cell, old.bytes) == channels);
    }
    return agrees ? CRows() : rows;
}

COldHdr OldHdrOf(CWindow& window, const CFoundRecording& recording, const CLayout& layout) {
    if (recording.layout < 0) return Translated(layout.recording, layout.recording, {}, AllLost());
    const auto& from = Layouts()[static_cast<std::size_t>(recording.layout)].recording;
    const std::string bytes = HdrBytes(window, from, recording.place);
    CDamage damage = DamageOf(from, bytes);
    for (std::size_t row = 0; row < from.cells.size(); ++row) {
        const std::int64_t end = recording.place.OffsetOf(from, row) + static_cast<std::int64_t>(from.cells[row].width);
        if (end > recording.cutAt) damage.Lose(row);
    }
    return Translated(from, layout.recording, bytes, damage);
}

}  // namespace

const CLayout& LayoutForRebuilding(CWindow& window, const CFound& found) {
    std::int32_t version = 0;
    if (found.fileLayout >= 0) {
        const auto& cells = Layouts()[static_cast<std::size_t>(found.fileLayout)].file;
        const std::string bytes = HdrBytes(window, cells, found.file);
        const auto& cell = cells["FileVersion"];
        if (!DamageOf(cells, bytes).lost[cells.RowOf(cell)])
            version = LayoutOf(helpers::ParseInt32(CellValue(CellIn(cell, bytes)))).version;
    }
    for (const CFoundRecording& recording : found.recordings) {
        if (recording.layout >= 0)
            version = std::max(version, Layouts()[static_cast<std::size_t>(recording.layout)].version);
    }
    return version == 0 ? Layouts().back() : LayoutForWriting(version);
}

CRebuiltFileHdr RebuildFileHdr(CWindow& window, const CFound& found, const CLayout& layout) {
    COldHdr old;
    if (found.fileLayout < 0) {
        old = Translated(layout.file, layout.file, {}, AllLost());
    } else {
        const auto& from = Layouts()[static_cast<std::size_t>(found.fileLayout)].file;
        const std::string bytes = HdrBytes(window, from, found.file);
        old = Translated(from, layout.file, bytes, DamageOf(from, bytes));
    }
    CRawDataFileHdr header;
    Decode(layout, old.bytes, header);
    CRebuiltFileHdr rebuilt;
    CRows made = old.damage.lost | old.foreign;
    NoteDamage(layout.file, old.damage, old.damage.lost, rebuilt.notes);
    if (header.HeaderID.empty()) header.HeaderID = kFileTypeText;
    if (header.FileVersion < kOldestWrittenVersion || LayoutOf(header.FileVersion).version != layout.version) {
        const std::size_t row = layout.file.RowOf(layout.file["FileVersion"]);
        const auto lacksStart = [&](const CFoundRecording& recording) {
            return recording.layout >= 0 &&
                   Layouts()[static_cast<std::size_t>(recording.layout)].version < layout.version;
        };
        if (!made[row])
            rebuilt.notes.push_back({.kind = std::ranges::any_of(found.recordings, lacksStart)
                                                 ? CNote::EKind::NewVersionWithoutStart
                                                 : CNote::EKind::NewVersion,
                                     .to = layout.version});
        header.FileVersion = layout.version;
        made[row] = true;
    }
    rebuilt.bytes = Encoded(layout, header, layout.file.size);
    KeepCells(layout.file, old.bytes, made, rebuilt.bytes);
    return rebuilt;
}

CRebuiltRecordingHdr RebuildRecordingHdr(CWindow& window, const CFoundRecording& recording, std::int32_t number,
                                         const CLayout& layout) {
    const COldHdr old = OldHdrOf(window, recording, layout);
    const auto& cells = layout.recording;
    CRebuiltRecordingHdr rebuilt;
    CRawDataRecordingHdr header;
    if (!Decode(layout, old.bytes, header)) header.WellChannels.clear();
    if (old.damage.lost[cells.RowOf(cells["TaskName"])]) header.TaskName = kLostName;
    if (old.damage.lost[cells.RowOf(cells["Recording"])]) header.Recording = number;
    auto [lost, made] = CWellLists(recording, layout, old, header, rebuilt.notes).Mend();
    made |= old.foreign;
    const CRows aux = MadeAuxRows(layout, old, header.AuxChannels.size());
    if (aux.any()) {
        header.AuxChannels.clear();
        if (recording.layout >= 0) rebuilt.notes.push_back({.kind = CNote::EKind::NoAuxChannels});
    }
    rebuilt.bytes = EncodedWithRoom(layout, header, rebuilt.notes);
    KeepCells(cells, old.bytes, made | aux, rebuilt.bytes);
    if (recording.layout < 0) {
        rebuilt.notes.insert(rebuilt.notes.begin(), CNote{.kind = CNote::EKind::MadeUp});
    } else {
        NoteDamage(cells, old.damage, lost, rebuilt.notes);
    }
    rebuilt.task = header.TaskName;
    rebuilt.number = header.Recording;
    return rebuilt;
}

namespace {

/// Writes the new file, and counts what it writes.
class CCopy {
 public:
    CCopy(CWindow& window, const CFound& found, const CSink& sink, const CReach& reach, CReport& report)
        : m_window(window),
          m_found(found),
          m_layout(LayoutForRebuilding(window, found)),
          m_sink(sink),
          m_reach(reach),
          m_report(report),
          m_segment(found.segments.begin()) {}

    void Write() {
        CRebuiltFileHdr file = RebuildFileHdr(m_window, m_found, m_layout);
        m_report.notes = std::move(file.notes);
        SetPosition(m_layout.file, "FPosFirstRecordingHdr",
                    m_found.recordings.empty() ? kUnset : static_cast<std::int64_t>(file.bytes.size()), file.bytes);
        Put(file.bytes);
        for (std::uint32_t i = 0; i < m_found.recordings.size(); ++i)
            PutRecording(i);
    }

 private:
    void PutRecording(std::uint32_t index) {
        const CFoundRecording& recording = m_found.recordings[index];
        CRebuiltRecordingHdr hdr =
            RebuildRecordingHdr(m_window, recording, static_cast<std::int32_t>(index + 1), m_layout);
        const std::int64_t data = m_report.bytes + static_cast<std::int64_t>(hdr.bytes.size());
        const auto end = std::find_if(m_segment, m_found.segments.end(),
                                      [&](const auto& segment) { return segment.recording != index; });
        std::int64_t next = data;
        for (auto segment = m_segment; segment != end; ++segment)
            next += BytesOf(*segment);
        const bool isLast = index + 1 == m_found.recordings.size();
        SetPosition(m_layout.recording, "FPosRecordingData", data, hdr.bytes);
        SetPosition(m_layout.recording, "FPosRecordingTrailer", kUnset, hdr.bytes);
        SetPosition(m_layout.recording, "FPosNextRecordingHdr", isLast ? kUnset : next, hdr.bytes);
        Put(hdr.bytes);
        m_report.recordings.push_back({.task = std::move(hdr.task),
                                       .number = hdr.number,
                                       .position = recording.position,
                                       .unfinished = recording.unfinished,
                                       .notes = std::move(hdr.notes),
                                       .wells = {}});
        for (; m_segment != end; ++m_segment)
            PutSegment(*m_segment, m_segment + 1 == end);
    }

    void PutSegment(const CFoundSegment& segment, bool isLast) {
        const CSegmentHdr header{.ID = segment.wellID,
                                 .FPosNextSegmentHdr = isLast ? kUnset : m_report.bytes + BytesOf(segment),
                                 .TimeFrom = segment.from,
                                 .TimeTo = segment.to,
                                 .Size = segment.samples};
        Put(Encoded(m_layout, header, m_layout.segment.size));
        constexpr std::int64_t kBlock = std::int64_t{1} << 20;
        for (std::int64_t from = segment.data; from < segment.End(); from += kBlock)
            Put(m_window.At(from, static_cast<std::size_t>(std::min(kBlock, segment.End() - from))));
        CKeptWell& well = m_report.recordings.back().wells[segment.wellID];
        well.from = well.segments == 0 ? segment.from : std::min(well.from, segment.from);
        well.to = well.segments == 0 ? segment.to : std::max(well.to, segment.to);
        well.samples += segment.samples;
        ++well.segments;
        m_reach(m_report.bytes);
    }

    std::int64_t BytesOf(const CFoundSegment& segment) const {
        return static_cast<std::int64_t>(m_layout.segment.size) + 2 * std::int64_t{segment.samples};
    }

    void Put(std::string_view bytes) {
        m_sink(std::as_bytes(std::span(bytes)));
        m_report.bytes += static_cast<std::int64_t>(bytes.size());
    }

    CWindow& m_window;
    const CFound& m_found;
    const CLayout& m_layout;
    const CSink& m_sink;
    const CReach& m_reach;
    CReport& m_report;
    std::vector<CFoundSegment>::const_iterator m_segment;  ///< The next one to be written.
};

}  // namespace

void Rebuild(CWindow& window, const CFound& found, const CSink& sink, const CReach& reach, CReport& report) {
    CCopy(window, found, sink, reach, report).Write();
}

}  // namespace vxfileio::recovery
