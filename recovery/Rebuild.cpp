#include "recovery/Rebuild.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "recovery/LostPages.h"
#include "vxfileio/base/ExcVXReader.h"
#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/rawdata/CellCodec.h"
#include "vxfileio/rawdata/HeaderCodec.h"

namespace vxfileio::recovery {

using namespace rawdata;

namespace {

/// The name of a recording whose own name is lost.
constexpr const char* kLostName = "Recovered";

/// Returns a header of the input in the form of the new file: whole and legible cells unchanged, the others with only
/// their keys. A cell that the old form doesn't have is lost, but not damaged. If `from` is null, all are both.
CHdrCells OldHdr(CWindow& window, const CForm* from, const CForm& to, const CHdrPlace& place) {
    static const CForm kNone;
    if (from == nullptr) from = &kNone;
    const CHdrCells input = CellsAt(window, *from, place);
    CHdrCells old{.form = &to, .bytes = std::string(static_cast<std::size_t>(to.size), '\0')};
    auto next = from->cells.begin();  // both forms have their common cells in the same order; some keys occur twice
    for (std::size_t row = 0; row < to.cells.size(); ++row) {
        const auto same = std::ranges::find(next, from->cells.end(), to.cells[row].key, &CFormCell::key);
        const auto index = static_cast<std::size_t>(same - from->cells.begin());
        const bool isThere = same != from->cells.end();
        old.damaged[row] = isThere ? input.damaged[index] : from == &kNone;
        old.lost[row] = !isThere || input.lost[index];
        old.odd[row] = isThere && input.odd[index];
        old.SetText(row, old.lost[row] ? to.cells[row].key : CellText(input.Cell(index)));
        if (isThere) next = same + 1;
    }
    return old;
}

/// Returns a new header that keeps the cells of the old one whose values are the same in `was` and `now`.
std::string Merged(const CHdrCells& old, const std::string& was, std::string now) {
    for (std::size_t row = 0; row < old.form->cells.size(); ++row) {
        const CFormCell& cell = old.form->cells[row];
        if (!old.lost[row] && CellIn(cell, was) == CellIn(cell, now))
            now.replace(cell.offset, cell.width, old.Cell(row));
    }
    return now;
}

template <class Header>
std::string Encoded(const CLayout& layout, const Header& header, std::size_t size) {
    std::string bytes(size, '\0');
    Encode(layout, header, std::span(bytes));
    return bytes;
}

void SetPosition(const auto& layout, std::string_view key, std::int64_t position, std::string& header) {
    const auto& cell = layout[key];
    EncodePosition(key, position, std::span(header).subspan(cell.offset, cell.width));
}

void AppendKey(std::string& list, std::string_view key) { list.append(list.empty() ? "" : ", ").append(key); }

/// Adds a note for each kind of damage.
void NoteDamage(const CHdrCells& cells, std::vector<CNote>& notes) {
    std::map<CNote::EKind, std::string> keys;
    for (std::size_t row = 0; row < cells.form->cells.size(); ++row) {
        if (!cells.damaged[row] && !cells.odd[row]) continue;
        const auto& [key, offset, width, role, rule] = cells.form->cells[row];
        const bool isRestored = role != ERole::Value || key == "NumberOfWells";
        const auto kind = cells.odd[row]     ? CNote::EKind::Odd
                          : !cells.lost[row] ? CNote::EKind::Legible
                          : isRestored       ? CNote::EKind::Restored
                                             : CNote::EKind::Lost;
        AppendKey(keys[kind], key.empty() ? "the mark" : key);
    }
    for (auto& [kind, list] : keys)
        notes.push_back({.kind = kind, .keys = std::move(list)});
}

// ---- Lists of channels ----------------------------------------------------------------------------------------------

/// The lists for one kind of channels. All should have the same length.
struct CLists {
    std::size_t length = 0;  ///< The length that most of them have.
    CRows rows;              ///< The rows of the lists and of their number.
    CRows wrong;             ///< The rows that are lost or have another length.
};

/// Returns the number of channels in a cell, if the cell is about this kind of channels.
std::optional<std::size_t> ChannelsIn(const CRecordingCell& cell, CChannels channels, std::string_view bytes) {
    const auto* const list = std::get_if<CChannelList>(&cell.member);
    const auto* const count = std::get_if<CChannelCount>(&cell.member);
    if (count != nullptr && count->channels == channels)
        return static_cast<std::size_t>(std::max(helpers::ParseInt32(CellValue(bytes)), 0));
    if (list == nullptr || list->channels != channels) return std::nullopt;
    std::size_t items = 0;
    for (CCellItems all(bytes); all.Next();)
        ++items;
    return items;
}

/// The length is found by vote: IDs count most, the number of channels least.
CLists ListsOf(const CLayout& layout, const CHdrCells& old, CChannels channels) {
    const auto& cells = layout.recording.cells;
    std::map<std::size_t, int> votes;
    const auto forEach = [&](auto act) {
        for (std::size_t row = 0; row < cells.size(); ++row) {
            if (const auto length = ChannelsIn(cells[row], channels, old.Cell(row))) act(row, *length);
        }
    };
    forEach([&](std::size_t row, std::size_t length) {
        const bool isCount = std::holds_alternative<CChannelCount>(cells[row].member);
        if (!old.lost[row]) votes[length] += isCount ? 1 : cells[row].key == "WellIDs" ? 3 : 2;
    });
    CLists lists;
    const auto most = std::ranges::max_element(votes, {}, [](const auto& vote) { return vote.second; });
    if (most != votes.end()) lists.length = most->first;
    forEach([&](std::size_t row, std::size_t length) {
        lists.rows[row] = true;
        lists.wrong[row] = old.lost[row] || length != lists.length;
    });
    return lists;
}

/// Clears the unusable lists of wells, and sets the number of wells.
void LoseWrongLists(const CLayout& layout, CHdrCells& old) {
    const CLists lists = ListsOf(layout, old, kWells);
    for (std::size_t row = 0; row < old.form->cells.size(); ++row) {
        if (!lists.wrong[row]) continue;
        old.Lose(row);
        const auto& cell = layout.recording.cells[row];
        const bool isCount = std::holds_alternative<CChannelCount>(cell.member);
        old.SetText(row, std::string(cell.key) + (isCount ? "=" + std::to_string(lists.length) : ""));
    }
}

/// Returns the values that all wells have in common.
CRawDataChannelInfo CommonOf(const std::vector<CRawDataChannelInfo>& wells) {
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

/// Adds a note about a well, or adds the well to one that differs in nothing else.
void NoteWell(std::int32_t well, CNote note, std::vector<CNote>& notes) {
    const auto isSame = [&](const CNote& other) {
        return other.kind == note.kind && other.from == note.from && other.to == note.to;
    };
    auto same = std::ranges::find_if(notes, isSame);
    if (same == notes.end()) same = notes.insert(same, std::move(note));
    same->wells.push_back(well);
}

/// Lists each well once, and adds wells that have segments, up to `most`. If an ID is listed twice, the second one was
/// damaged; the first is kept.
void MendWells(const CFoundRecording& recording, bool hasIDs, std::size_t most, std::vector<CRawDataChannelInfo>& wells,
               std::vector<CNote>& notes) {
    CRawDataChannelInfo model = CommonOf(wells);
    if (!hasIDs) wells.clear();
    if (!hasIDs) notes.push_back({.kind = CNote::EKind::WellsOfSegments});
    std::set<std::int32_t> listed;
    std::erase_if(wells, [&](const auto& well) {
        if (listed.insert(well.ID).second) return false;
        NoteWell(well.ID, {.kind = CNote::EKind::ListedTwice}, notes);
        return true;
    });
    std::vector<std::int32_t> added;
    for (const auto& entry : recording.wells) {
        if (wells.size() == most || !listed.insert(entry.first).second) continue;
        model.ID = entry.first;
        wells.push_back(model);
        added.push_back(entry.first);
    }
    if (hasIDs && !added.empty()) notes.push_back({.kind = CNote::EKind::ListedNow, .wells = std::move(added)});
}

/// Sets each well's interval to that of its segments. A well without segments keeps its own, or gets 1.
void MendTicks(const CFoundRecording& recording, std::vector<CRawDataChannelInfo>& wells, std::vector<CNote>& notes) {
    for (auto& well : wells) {
        const auto found = recording.wells.find(well.ID);
        const CWellInterval interval = found != recording.wells.end() ? found->second
                                       : well.Ticks > 0               ? CWellInterval{well.Ticks, true}
                                                                      : CWellInterval{1, false};
        if (well.Ticks == interval.ticks) continue;
        NoteWell(well.ID,
                 {.kind = interval.isKnown ? CNote::EKind::Interval : CNote::EKind::NoInterval,
                  .from = std::max<std::int64_t>(well.Ticks, 0),
                  .to = interval.ticks},
                 notes);
        well.Ticks = interval.ticks;
    }
}

/// Encodes a header, with as many wells as fit into its cells.
std::string EncodedWithRoom(const CLayout& layout, CRawDataRecordingHdr header, std::vector<CNote>& notes) {
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

/// Returns the layout of the new file: that of the input, or the oldest one that is still written.
const CLayout& LayoutForRebuilding(CWindow& window, const CFound& found) {
    std::int32_t version = 0;
    if (found.file.form != nullptr) {
        const CHdrCells old = CellsAt(window, *found.file.form, found.file.Place());
        if (!old.IsLost("FileVersion")) version = LayoutOf(helpers::ParseInt32(old.Value("FileVersion"))).version;
    }
    for (const CFoundRecording& recording : found.recordings) {
        if (recording.header.form != nullptr)
            version = std::max(version, Layouts()[recording.header.form->layout].version);
    }
    return version == 0 ? Layouts().back() : LayoutForWriting(version);
}

/// Returns the keys of the cells that recording headers of older versions get in the layout of the new file.
std::string AddedCells(const CFound& found, const CLayout& layout) {
    std::string keys;
    for (const CRecordingCell& cell : layout.recording.cells) {
        const auto lacksCell = [&](const CFoundRecording& recording) {
            const CForm* const form = recording.header.form;
            return form != nullptr && Layouts()[form->layout].recording.Find(cell.key) == nullptr;
        };
        if (std::ranges::any_of(found.recordings, lacksCell)) AppendKey(keys, cell.key);
    }
    return keys;
}

/// Returns the file header of the new file. Its position isn't set yet.
std::string RebuildFileHdr(CWindow& window, const CFound& found, const CLayout& layout, std::vector<CNote>& notes) {
    const CHdrCells old = OldHdr(window, found.file.form, FormOf(EKind::File, layout), found.file.Place());
    NoteDamage(old, notes);
    CRawDataFileHdr was;
    Decode(layout, old.bytes, was);
    CRawDataFileHdr now = was;
    if (now.HeaderID.empty()) now.HeaderID = kFileTypeText;
    const bool isChanged =
        now.FileVersion < kOldestWrittenVersion || LayoutOf(now.FileVersion).version != layout.version;
    const std::string added = AddedCells(found, layout);
    if (!added.empty() || (isChanged && !old.IsLost("FileVersion")))
        notes.push_back({.kind = CNote::EKind::NewVersion, .keys = added, .to = layout.version});
    if (isChanged) now.FileVersion = layout.version;
    return Merged(old, Encoded(layout, was, layout.file.size), Encoded(layout, now, layout.file.size));
}

/// Returns a recording header of the new file. Its positions aren't set yet. `report.number` is the recording's number
/// if its own is lost.
std::string RebuildRecordingHdr(CWindow& window, const CFoundRecording& recording, const CLayout& layout,
                                CReportedRecording& report) {
    CHdrCells old = OldHdr(window, recording.header.form, FormOf(EKind::Recording, layout), recording.header.Place());
    LoseWrongLists(layout, old);
    if (recording.header.form == nullptr) {
        report.notes.push_back({.kind = CNote::EKind::MadeUp});
    } else {
        NoteDamage(old, report.notes);
    }
    CRawDataRecordingHdr was;
    if (!Decode(layout, old.bytes, was)) was.WellChannels.clear();
    CRawDataRecordingHdr now = was;
    if (old.IsLost("TaskName")) now.TaskName = kLostName;
    if (old.IsLost("Recording")) now.Recording = report.number;
    MendWells(recording, !old.IsLost("WellIDs"), layout.mostChannels, now.WellChannels, report.notes);
    MendTicks(recording, now.WellChannels, report.notes);
    if (const CLists aux = ListsOf(layout, old, kAux); aux.wrong.any()) {
        now.AuxChannels.clear();
        old.lost |= aux.rows;
        if (recording.header.form != nullptr) report.notes.push_back({.kind = CNote::EKind::NoAuxChannels});
    }
    std::vector<CNote> unused;
    report.task = now.TaskName;
    report.number = now.Recording;
    report.dose = now.Dose;
    return Merged(old, EncodedWithRoom(layout, was, unused), EncodedWithRoom(layout, now, report.notes));
}

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
        std::string file = RebuildFileHdr(m_window, m_found, m_layout, m_report.notes);
        SetPosition(m_layout.file, "FPosFirstRecordingHdr",
                    m_found.recordings.empty() ? kUnset : static_cast<std::int64_t>(file.size()), file);
        Put(file);
        for (std::uint32_t i = 0; i < m_found.recordings.size(); ++i)
            PutRecording(i);
    }

 private:
    void PutRecording(std::uint32_t index) {
        const CFoundRecording& recording = m_found.recordings[index];
        CReportedRecording report{.number = static_cast<std::int32_t>(index + 1),
                                  .position = recording.header.begin,
                                  .unfinished = recording.IsUnfinished()};
        std::string hdr = RebuildRecordingHdr(m_window, recording, m_layout, report);
        const std::int64_t data = m_report.bytes + static_cast<std::int64_t>(hdr.size());
        const auto end = std::find_if(m_segment, m_found.segments.end(),
                                      [&](const auto& segment) { return segment.recording != index; });
        std::int64_t next = data;
        for (auto segment = m_segment; segment != end; ++segment)
            next += BytesOf(*segment);
        const bool isLast = index + 1 == m_found.recordings.size();
        SetPosition(m_layout.recording, "FPosRecordingData", data, hdr);
        SetPosition(m_layout.recording, "FPosRecordingTrailer", kUnset, hdr);
        SetPosition(m_layout.recording, "FPosNextRecordingHdr", isLast ? kUnset : next, hdr);
        Put(hdr);
        m_report.recordings.push_back(std::move(report));
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
        ForLostPages(m_window, segment.data, segment.End(), [&](std::int64_t from, std::int64_t to) {
            m_report.doubts.Add({.reason = EReason::LostPages,
                                 .from = from,
                                 .to = to,
                                 .recording = segment.recording,
                                 .wellID = segment.wellID});
        });
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
