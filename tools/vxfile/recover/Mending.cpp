#include "tools/vxfile/recover/Mending.h"

#include <algorithm>
#include <array>
#include <map>
#include <span>
#include <string_view>
#include <utility>

#include "tools/vxfile/report/Text.h"
#include "vxfileio/base/ExcVXReader.h"
#include "vxfileio/helpers/NumberText.h"
#include "vxfileio/rawdata/CellCodec.h"
#include "vxfileio/rawdata/HeaderCodec.h"

namespace vxfile {

using namespace vxfileio::rawdata;
using vxfileio::helpers::CNumberText;

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

/// Returns the header in the newest layout with nothing but keys in cells that are lost.
std::string WithoutDamage(const auto& cells, std::int32_t version, std::string_view bytes, const CDamagedCells& lost) {
    std::string whole(SizeOf(cells), '\0');
    std::size_t offset = 0;
    for (std::size_t row = 0; row < cells.size(); ++row) {
        const bool hasText = !lost[row] && HasCell(cells[row], version);
        CCellWriter(std::span(whole).subspan(offset, cells[row].width),
                    hasText ? CellText(CellAt(cells, version, bytes, row)) : cells[row].key);
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
    Encode(RecoveredLayout(), header, bytes);
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

/// Brings the lists of the wells of one recording in order.
class CWellLists {
 public:
    CWellLists(const CFoundRecording& recording, const std::string& whole, CMendedRecording& mended)
        : m_recording(recording), m_whole(whole), m_mended(mended), m_damaged(recording.cells.lost) {}

    /// Returns the cells that have been made up.
    CDamagedCells Mend() {
        JudgeCounts();
        m_mended.lost = m_damaged;
        if (m_damaged[kIDsRow]) {
            MakeUpWells();
        } else {
            TakeLists();
            DropTwins();
        }
        AddUnlisted();
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
            EncodeCell(cell.key, value, CellAt(kRecordingCells, kNewestVersion, std::span(bytes), row));
        };
        put(kCountRow, CNumberText(m_count).View());
        for (auto row = kFirstListRow; row < kEndOfListRows; ++row) {
            if (m_damaged[row]) put(row, "");
        }
        CRawDataRecordingHdr lists;
        if (Decode(RecoveredLayout(), bytes, lists)) m_mended.header.WellChannels = lists.WellChannels;
    }

    /// The wells are those that have segments.
    void MakeUpWells() {
        m_model = CommonOf(std::exchange(m_mended.header.WellChannels, {}));
        MarkLists();
        m_mended.notes.emplace_back("the wells are those of its segments");
    }

    /// A well that is listed twice has lost the other's name; the first one stays.
    void DropTwins() {
        auto& wells = m_mended.header.WellChannels;
        m_model = CommonOf(wells);
        for (auto well = wells.begin(); well != wells.end();) {
            const bool isTwin =
                std::find_if(wells.begin(), well, [&](const auto& other) { return other.ID == well->ID; }) != well;
            if (isTwin) {
                m_mended.notes.push_back("well " + std::to_string(well->ID) + " was listed twice");
                MarkLists();
            }
            well = isTwin ? wells.erase(well) : std::next(well);
        }
    }

    /// Lists the wells that have segments and aren't listed yet.
    void AddUnlisted() {
        auto& wells = m_mended.header.WellChannels;
        std::vector<std::int32_t> added;
        for (const auto& [wellID, interval] : m_recording.wells) {
            if (wells.size() == kMostChannels) break;
            if (std::ranges::find(wells, wellID, &CRawDataChannelInfo::ID) != wells.end()) continue;
            m_model.ID = wellID;
            wells.push_back(m_model);
            added.push_back(wellID);
        }
        if (added.empty()) return;
        if (!m_damaged[kIDsRow])
            m_mended.notes.push_back((added.size() == 1 ? "listed now, as it has segments: well "
                                                        : "listed now, as they have segments: wells ") +
                                     ListText(added));
        MarkLists();
    }

    /// Returns what the lists say of all wells in the same way; what they differ in is left out.
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

    void MarkLists() {
        for (auto row = kCountRow; row < kEndOfListRows; ++row)
            m_damaged[row] = true;
    }

    /// Gives a well the interval that its segments were recorded with, where the header has none or a wrong one. One
    /// without segments may have any.
    void MendTicks() {
        for (auto& well : m_mended.header.WellChannels) {
            const auto found = m_recording.wells.find(well.ID);
            const CWellInterval interval = found != m_recording.wells.end() ? found->second
                                           : well.Ticks > 0                 ? CWellInterval{well.Ticks, true}
                                                                            : CWellInterval{1, false};
            if (well.Ticks == interval.ticks) continue;
            m_mended.notes.push_back("the interval of well " + std::to_string(well.ID) +
                                     (interval.isTold
                                          ? " is " + std::to_string(interval.ticks) + ", as its segments tell"
                                          : " isn't known") +
                                     (well.Ticks > 0 ? "; the header said " + std::to_string(well.Ticks) : ""));
            well.Ticks = interval.ticks;
            m_damaged[kTicksRow] = true;
        }
    }

    const CFoundRecording& m_recording;
    const std::string& m_whole;
    CMendedRecording& m_mended;
    CDamagedCells m_damaged;
    std::size_t m_count = 0;
    CRawDataChannelInfo m_model;  ///< What is known of a well that isn't listed.
};

/// Returns a note for each kind of damage that cells of a header have; `lost` are those that had to be made up.
std::vector<std::string> NotesOn(const auto& cells, const CDamage& damage, const CDamagedCells& lost,
                                 const std::string& header) {
    std::string gone;
    std::string mended;
    std::string legible;
    std::string odd;
    for (std::size_t row = 0; row < cells.size(); ++row) {
        if (!damage.damaged[row] && !lost[row] && !damage.odd[row]) continue;
        const std::string_view key = cells[row].key.empty() ? "the mark" : cells[row].key;  // the first one of a file
        const bool isTold = key.starts_with("FPos") || key == "NumberOfWells";
        std::string& keys = damage.odd[row] ? odd : !lost[row] ? legible : isTold ? mended : gone;
        keys.append(keys.empty() ? "" : ", ").append(key);
    }
    std::vector<std::string> notes;
    if (!gone.empty()) notes.push_back("lost from " + header + ": " + gone);
    if (!mended.empty()) notes.push_back("damaged in " + header + ", but told by the rest of the file: " + mended);
    if (!legible.empty()) notes.push_back("damaged in " + header + ", but legible: " + legible);
    if (!odd.empty()) notes.push_back("with a separator in " + header + ", damaged or from another program: " + odd);
    return notes;
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

CMendedRecording Mend(const CFoundRecording& recording, std::int32_t number) {
    CMendedRecording mended;
    const std::string whole = WithoutDamage(kRecordingCells, recording.version, recording.bytes, recording.cells.lost);
    if (!Decode(RecoveredLayout(), whole, mended.header)) mended.header.WellChannels.clear();
    if (recording.cells.lost[kTaskRow]) mended.header.TaskName = kLostName;
    if (recording.cells.lost[kRecordingRow]) mended.header.Recording = number;
    CDamagedCells made = CWellLists(recording, whole, mended).Mend();
    if (!HasCell(kRecordingCells[kStartRow], recording.version)) made[kStartRow] = true;

    // Auxiliary channels stay if all that tells of them is whole.
    bool auxDamaged = false;
    for (auto row = kAuxRow; row < kRecordingCells.size(); ++row)
        auxDamaged = auxDamaged || recording.cells.lost[row] ||
                     (row > kAuxRow && ItemsIn(whole, row) != mended.header.AuxChannels.size());
    for (auto row = kAuxRow; row < kRecordingCells.size(); ++row)
        made[row] = auxDamaged;
    if (auxDamaged && !recording.bytes.empty())
        mended.notes.emplace_back("auxiliary channels are left out: their cells don't agree");

    mended.bytes = EncodedWithRoom(mended);
    Keep(kRecordingCells, whole, made, mended.bytes);
    if (recording.bytes.empty()) {
        mended.notes.insert(mended.notes.begin(), "its header is lost, this one is made up");
    } else {
        const auto notes = NotesOn(kRecordingCells, recording.cells, mended.lost, "its header");
        mended.notes.insert(mended.notes.begin(), notes.begin(), notes.end());
    }
    return mended;
}

CMendedFileHdr MendFileHdr(const CInventory& inventory) {
    const std::string whole = WithoutDamage(kFileCells, kNewestVersion, inventory.fileHdr, inventory.fileCells.lost);
    CRawDataFileHdr header;
    Decode(RecoveredLayout(), whole, header);
    CMendedFileHdr mended;
    CDamagedCells made = inventory.fileCells.lost;
    mended.notes = NotesOn(kFileCells, inventory.fileCells, made, "the file header");
    if (header.HeaderID.empty()) header.HeaderID = kFileTypeText;
    if (header.FileVersion < kNewestVersion) {
        constexpr std::size_t kVersionRow = RowOf(kFileCells, "FileVersion");
        const auto lacksStart = [](const CFoundRecording& recording) { return recording.version < kNewestVersion; };
        if (!made[kVersionRow])
            mended.notes.push_back(
                std::string("the file is of version 2 now") +
                (std::ranges::any_of(inventory.recordings, lacksStart) ? ", with start times of 0" : ""));
        header.FileVersion = kNewestVersion;
        made[kVersionRow] = true;
    }
    mended.bytes = Encoded<CRawDataFileHdr, kFileHdrSize>(header);
    Keep(kFileCells, whole, made, mended.bytes);
    return mended;
}

}  // namespace vxfile
