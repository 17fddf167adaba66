#include "tools/vxfile/recover/Mending.h"

#include <algorithm>
#include <array>
#include <map>
#include <span>
#include <string_view>
#include <utility>

#include "vxfileio/frame/ExcVXReader.h"
#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/rawdata/CellCodec.h"
#include "vxfileio/rawdata/HeaderCodec.h"

namespace vxfile {

using namespace vxfileio::rawdata;
using vxfileio::CNumberText;

namespace {

constexpr std::size_t kTaskRow = RowOf(kRecordingCells, "TaskName");
constexpr std::size_t kRecordingRow = RowOf(kRecordingCells, "Recording");
constexpr std::size_t kStartRow = RowOf(kRecordingCells, "RecordingStartTime");
constexpr std::size_t kCountRow = RowOf(kRecordingCells, "NumberOfWells");
constexpr std::size_t kAuxRow = RowOf(kRecordingCells, "NumberOfAuxCh");
constexpr std::size_t kIDsRow = RowOf(kRecordingCells, "WellIDs");
constexpr std::size_t kTicksRow = RowOf(kRecordingCells, "Ticks");

/// The lists of the wells lie between these rows.
constexpr std::size_t kFirstListRow = kCountRow + 1;
constexpr std::size_t kEndOfListRows = kAuxRow;

/// What a recording is called whose name is lost.
constexpr const char* kLostName = "Recovered";

/// Returns the bytes of one cell; they point into the header.
template <class Bytes>
Bytes CellAt(const auto& cells, std::int32_t version, Bytes bytes, std::size_t row) {
    std::size_t offset = 0;
    for (std::size_t i = 0; i < row; ++i)
        offset += HasCell(cells[i], version) ? cells[i].width : 0;
    if constexpr (std::is_same_v<Bytes, std::string_view>) {
        return bytes.substr(offset, cells[row].width);
    } else {
        return bytes.subspan(offset, cells[row].width);
    }
}

/// Returns the header in the newest layout with nothing but keys in cells that are damaged.
std::string WithoutDamage(const auto& cells, std::int32_t version, std::string_view bytes,
                          const CDamagedCells& damaged) {
    std::string whole(SizeOf(cells), '\0');
    std::size_t offset = 0;
    for (std::size_t row = 0; row < cells.size(); ++row) {
        const std::span room = std::span(whole).subspan(offset, cells[row].width);
        if (damaged[row] || !HasCell(cells[row], version)) {
            EncodeCell({cells[row].key, offset, cells[row].width}, "", room);
        } else {
            std::ranges::copy(CellAt(cells, version, bytes, row), room.begin());
        }
        offset += cells[row].width;
    }
    return whole;
}

/// Copies the cells that aren't `made` from one header to another of the newest layout.
void Keep(const auto& cells, const std::string& from, const CDamagedCells& made, std::string& to) {
    for (std::size_t row = 0; row < cells.size(); ++row) {
        if (made[row]) continue;
        std::ranges::copy(CellAt(cells, kNewestVersion, std::string_view(from), row),
                          CellAt(cells, kNewestVersion, std::span(to), row).begin());
    }
}

template <class Header, std::size_t Size>
std::string Encoded(const Header& header) {
    std::string bytes(Size, '\0');
    Encode(header, std::span<char, Size>(bytes));
    return bytes;
}

/// Returns the length of a list in a recording header of the newest layout.
std::size_t ItemsIn(const std::string& whole, std::size_t row) {
    CCellItems items(CellAt(kRecordingCells, kNewestVersion, std::string_view(whole), row));
    std::size_t count = 0;
    while (items.Next())
        ++count;
    return count;
}

/// Returns the interval that the segments of a well agree on, or 0.
std::int64_t TickFrom(const CTickBounds& bounds) {
    if (bounds.atLeast > bounds.atMost) return 0;
    return static_cast<std::int64_t>(bounds.atMost == CTickBounds::kNoMost ? bounds.atLeast : bounds.atMost);
}

/// Brings the lists of the wells of one recording in order.
class CWellLists {
 public:
    CWellLists(const CFoundRecording& recording, const std::string& whole, CMendedRecording& mended)
        : m_recording(recording), m_whole(whole), m_mended(mended), m_damaged(recording.damaged) {}

    /// Returns the cells that have been made up.
    CDamagedCells Mend() {
        JudgeCounts();
        if (m_damaged[kIDsRow]) {
            MakeUpWells();
        } else {
            TakeLists();
        }
        MendTicks();
        return m_damaged;
    }

 private:
    /// The lists of a recording are equally long. What most of them say is believed; the others are damaged.
    void JudgeCounts() {
        std::map<std::size_t, int> votes;
        for (auto row = kFirstListRow; row < kEndOfListRows; ++row) {
            if (!m_damaged[row]) votes[Items(row)] += row == kIDsRow ? 3 : 2;
        }
        const auto told = m_recording.header.WellChannels.size();
        if (!m_damaged[kCountRow]) ++votes[told];
        const auto most = std::ranges::max_element(votes, {}, [](const auto& vote) { return vote.second; });
        m_count = most == votes.end() ? 0 : most->first;
        for (auto row = kFirstListRow; row < kEndOfListRows; ++row)
            m_damaged[row] = m_damaged[row] || Items(row) != m_count;
        m_damaged[kCountRow] = m_damaged[kCountRow] || told != m_count;
    }

    std::size_t Items(std::size_t row) const { return ItemsIn(m_whole, row); }

    /// The wells are those that the list tells; what lists that can't be used should tell of them isn't known.
    void TakeLists() {
        std::string bytes = m_whole;
        const auto put = [&](std::size_t row, std::string_view value) {
            const auto& cell = kRecordingCells[row];
            EncodeCell({cell.key, 0, cell.width}, value,
                       CellAt(kRecordingCells, kNewestVersion, std::span(bytes), row));
        };
        put(kCountRow, CNumberText(m_count).View());
        for (auto row = kFirstListRow; row < kEndOfListRows; ++row) {
            if (m_damaged[row]) put(row, "");
        }
        CRawDataRecordingHdr lists;
        Decode(bytes, kNewestVersion, lists);
        m_mended.header.WellChannels = lists.WellChannels;
    }

    /// The wells are those that have segments. What the lists say of them can only be used if it is the same for all.
    void MakeUpWells() {
        const auto told = std::exchange(m_mended.header.WellChannels, {});
        CRawDataChannelInfo common;
        const auto take = [&](auto field) {
            const auto differs = [&](const auto& well) { return well.*field != told.front().*field; };
            if (!told.empty() && std::ranges::none_of(told, differs)) common.*field = told.front().*field;
        };
        take(&CRawDataChannelInfo::ADZero);
        take(&CRawDataChannelInfo::UnitsPerAD);
        take(&CRawDataChannelInfo::Ticks);
        for (const auto& [wellID, bounds] : m_recording.ticks) {
            if (m_mended.header.WellChannels.size() == kMostChannels) break;
            common.ID = wellID;
            m_mended.header.WellChannels.push_back(common);
        }
        for (auto row = kCountRow; row < kEndOfListRows; ++row)
            m_damaged[row] = true;
        m_mended.notes.emplace_back("the wells are those of its segments");
    }

    /// Gives a well the interval that its segments were recorded with, where the header has none or a wrong one. One
    /// without segments may have any.
    void MendTicks() {
        for (auto& well : m_mended.header.WellChannels) {
            const auto found = m_recording.ticks.find(well.ID);
            const CTickBounds bounds = found == m_recording.ticks.end() ? CTickBounds() : found->second;
            if (bounds.disagreeing == 0 && well.Ticks > 0) continue;
            const std::int64_t tick = TickFrom(bounds);
            if (tick == 0 || tick > INT32_MAX) continue;
            well.Ticks = tick;
            m_damaged[kTicksRow] = true;
            const bool told = bounds.atMost != CTickBounds::kNoMost;
            m_mended.notes.push_back("the interval of well " + std::to_string(well.ID) +
                                     (told ? " is told by its segments" : " isn't known"));
        }
    }

    const CFoundRecording& m_recording;
    const std::string& m_whole;
    CMendedRecording& m_mended;
    CDamagedCells m_damaged;
    std::size_t m_count = 0;
};

std::vector<std::string> KeysOf(const auto& cells, const CDamagedCells& damaged) {
    std::vector<std::string> keys;
    for (std::size_t row = 0; row < cells.size(); ++row) {
        if (damaged[row] && !cells[row].key.starts_with("FPos")) keys.emplace_back(cells[row].key);
    }
    return keys;
}

std::string Join(const std::vector<std::string>& words) {
    std::string joined;
    for (const auto& word : words)
        joined.append(joined.empty() ? "" : ", ").append(word);
    return joined;
}

/// Encodes a header whose lists may be too long for their cells: as many wells as fit.
std::string EncodedWithRoom(CMendedRecording& mended) {
    for (bool left = false;; left = true) {
        try {
            auto bytes = Encoded<CRawDataRecordingHdr, kRecordingHdrSize>(mended.header);
            if (left) mended.notes.emplace_back("not all of its wells fit into the header");
            return bytes;
        } catch (const CExcVXReader&) {
            if (mended.header.WellChannels.empty()) throw;
            mended.header.WellChannels.pop_back();
        }
    }
}

}  // namespace

void SettleDisagreements(CInventory& inventory) {
    const auto isWrong = [&](const CFoundSegment& segment) {
        if (!segment.disagrees) return false;
        if (TickFrom(inventory.recordings[segment.recording].ticks[segment.wellID]) > 0) return false;
        const auto bytes = static_cast<std::int64_t>(kSegmentHdrSize) + 2 * std::int64_t{segment.samples};
        inventory.Lose({.from = segment.position,
                        .to = segment.position + bytes,
                        .recording = segment.recording,
                        .wellID = segment.wellID,
                        .why = "its times don't go with the interval of its well: the well ID or a time is damaged"});
        return true;
    };
    std::erase_if(inventory.segments, isWrong);
}

CMendedRecording Mend(const CFoundRecording& recording, std::int32_t number) {
    CMendedRecording mended;
    const std::string whole = WithoutDamage(kRecordingCells, recording.version, recording.bytes, recording.damaged);
    Decode(whole, kNewestVersion, mended.header);
    if (recording.damaged[kTaskRow]) mended.header.TaskName = kLostName;
    if (recording.damaged[kRecordingRow]) mended.header.Recording = number;
    CDamagedCells made = CWellLists(recording, whole, mended).Mend();
    if (!HasCell(kRecordingCells[kStartRow], recording.version)) made[kStartRow] = true;

    // Auxiliary channels stay if all that tells of them is whole.
    bool auxDamaged = false;
    for (auto row = kAuxRow; row < kRecordingCells.size(); ++row)
        auxDamaged = auxDamaged || recording.damaged[row] ||
                     (row > kAuxRow && ItemsIn(whole, row) != mended.header.AuxChannels.size());
    for (auto row = kAuxRow; row < kRecordingCells.size(); ++row)
        made[row] = auxDamaged;

    mended.bytes = EncodedWithRoom(mended);
    Keep(kRecordingCells, whole, made, mended.bytes);
    if (recording.bytes.empty()) {
        mended.notes.insert(mended.notes.begin(), "its header is lost, this one is made up");
    } else if (const auto keys = KeysOf(kRecordingCells, recording.damaged); !keys.empty()) {
        mended.notes.insert(mended.notes.begin(), "lost from its header: " + Join(keys));
    }
    return mended;
}

CMendedFileHdr MendFileHdr(const CInventory& inventory) {
    const std::string whole = WithoutDamage(kFileCells, kNewestVersion, inventory.fileHdr, inventory.fileDamage);
    CRawDataFileHdr header;
    Decode(whole, header);
    CMendedFileHdr mended;
    CDamagedCells made = inventory.fileDamage;
    if (const auto keys = KeysOf(kFileCells, made); !keys.empty())
        mended.notes.push_back("lost from the file header: " + Join(keys));
    if (header.HeaderID.empty()) header.HeaderID = kFileTypeText;
    if (header.FileVersion < kNewestVersion) {
        constexpr std::size_t kVersionRow = RowOf(kFileCells, "FileVersion");
        if (!made[kVersionRow]) mended.notes.emplace_back("the file is of version 2 now, with start times of 0");
        header.FileVersion = kNewestVersion;
        made[kVersionRow] = true;
    }
    mended.bytes = Encoded<CRawDataFileHdr, kFileHdrSize>(header);
    Keep(kFileCells, whole, made, mended.bytes);
    return mended;
}

}  // namespace vxfile
