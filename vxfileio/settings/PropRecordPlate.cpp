#include "vxfileio/settings/PropRecordPlate.h"

#include <algorithm>
#include <array>

#include "vxfileio/base/ExcVXReader.h"
#include "vxfileio/base/VXExceptions.h"
#include "vxfileio/helpers/DeepCopy.h"
#include "vxfileio/settings/WellIndex.h"
#include "vxfileio/settings/forms/RecordPlateForm.h"

using vxfileio::base::CExcConversion;

namespace vxfileio::settings {

namespace {

bool IsActive(std::int32_t state) { return state == PlateWell::kActive || state == PlateWell::kNew; }

/// Returns the first record whose `key` is `id`, or null.
template <class Record>
Record* FindRecord(const std::vector<std::unique_ptr<Record>>& records, std::int32_t Record::*key, std::int32_t id) {
    for (const auto& record : records) {
        if (record && (*record).*key == id) return record.get();
    }
    return nullptr;
}

/// Returns the `key` of each record for which `wanted` holds.
template <class Record, class Wanted>
std::vector<std::int32_t> KeysOf(const std::vector<std::unique_ptr<Record>>& records, std::int32_t Record::*key,
                                 Wanted wanted) {
    std::vector<std::int32_t> keys;
    for (const auto& record : records) {
        if (record && wanted(*record)) keys.push_back((*record).*key);
    }
    return keys;
}

constexpr auto kAny = [](const auto& /*record*/) { return true; };

/// Returns the compound of a short form; null if the plate has none there.
const PlateCompound* CompoundAt(const PlateData& data, std::int32_t index) {
    if (index == CPropRecordPlate::kFirstCompound) {
        const auto isThere = [](const auto& compound) { return compound != nullptr; };
        const auto first = std::find_if(data.Compounds.begin(), data.Compounds.end(), isThere);
        return first == data.Compounds.end() ? nullptr : first->get();
    }
    const auto place = static_cast<std::size_t>(index);
    return index >= 0 && place < data.Compounds.size() ? data.Compounds[place].get() : nullptr;
}

// ---- Plate maps -----------------------------------------------------------------------------------------------------

constexpr std::size_t kRows8x12 = 8;
constexpr std::size_t kColumns8x12 = 12;
constexpr std::size_t kRows6x9 = 6;
constexpr std::size_t kColumns6x9 = 9;

/// The wells of the 6x9 plate lie in six blocks of nine around its middle, and its channels by its wiring.
constexpr std::array<std::array<const char*, kColumns6x9>, kRows6x9> kLabels6x9{{
    {"F1", "F2", "F3", "A1", "A2", "A3", "B1", "B2", "B3"},
    {"F4", "F5", "F6", "A4", "A5", "A6", "B4", "B5", "B6"},
    {"F7", "F8", "F9", "A7", "A8", "A9", "B7", "B8", "B9"},
    {"E9", "E8", "E7", "D9", "D8", "D7", "C9", "C8", "C7"},
    {"E6", "E5", "E4", "D6", "D5", "D4", "C6", "C5", "C4"},
    {"E3", "E2", "E1", "D3", "D2", "D1", "C3", "C2", "C1"},
}};
constexpr std::array<std::array<std::int32_t, kColumns6x9>, kRows6x9> kChannels6x9{{
    {17, 19, 21, 27, 29, 31, 37, 39, 41},
    {16, 20, 22, 26, 30, 32, 36, 40, 42},
    {15, 18, 23, 25, 28, 33, 35, 38, 43},
    {13, 8, 5, 3, 58, 55, 53, 48, 45},
    {12, 10, 6, 2, 0, 56, 52, 50, 46},
    {11, 9, 7, 1, 59, 57, 51, 49, 47},
}};

/// The channels of the 8x12 plate run down and up its columns in two halves: from 64 on above, from 0 on below.
constexpr std::int32_t ChannelOf8x12(std::size_t row, std::size_t column) {
    const auto r = static_cast<std::int32_t>(row);
    const auto c = static_cast<std::int32_t>(column);
    return r < 4 ? 64 + 4 * c + r : 4 * c + 7 - r;
}

/// Builds a map from `labelOf(row, column)` and `channelOf(row, column)`.
template <class LabelOf, class ChannelOf>
void FillPositions(PlateMap& map, std::size_t rows, std::size_t columns, LabelOf labelOf, ChannelOf channelOf) {
    map.Labels.assign(rows, std::vector<std::string>(columns));
    map.ChIDs.assign(rows, std::vector<std::int32_t>(columns));
    for (std::size_t row = 0; row < rows; ++row) {
        for (std::size_t column = 0; column < columns; ++column) {
            map.Labels[row][column] = labelOf(row, column);
            map.ChIDs[row][column] = channelOf(row, column);
        }
    }
}

void Build8x12(PlateMap& map) {
    map.RowLabels.clear();
    for (std::size_t row = 0; row < kRows8x12; ++row)
        map.RowLabels.emplace_back(1, static_cast<char>('A' + row));
    map.ColumnLabels.clear();
    for (std::size_t column = 1; column <= kColumns8x12; ++column)
        map.ColumnLabels.push_back(std::to_string(column));
    const auto labelOf = [&](std::size_t row, std::size_t column) {
        return map.RowLabels[row] + map.ColumnLabels[column];
    };
    FillPositions(map, kRows8x12, kColumns8x12, labelOf, ChannelOf8x12);
}

void Build6x9(PlateMap& map) {
    map.RowLabels.assign(kRows6x9, std::string());
    map.ColumnLabels.assign(kColumns6x9, std::string());
    FillPositions(
        map, kRows6x9, kColumns6x9, [](std::size_t row, std::size_t column) { return kLabels6x9[row][column]; },
        [](std::size_t row, std::size_t column) { return kChannels6x9[row][column]; });
}

/// The units of doses, from picomolar on, each a thousand times the one before. The micro sign is Latin-1's.
constexpr std::array<std::string_view, 4> kDoseUnitsInFiles{"pM", "nM", "\xB5M", "mM"};

}  // namespace

}  // namespace vxfileio::settings

using namespace vxfileio::settings;

PlateRecords::PlateRecords(const PlateRecords& other)
    : Compounds(vxfileio::helpers::DeepCopy(other.Compounds)), Wells(vxfileio::helpers::DeepCopy(other.Wells)) {}

PlateRecords& PlateRecords::operator=(const PlateRecords& other) { return *this = PlateRecords(other); }

void PlateData::AddWell(std::int32_t wellID, std::int32_t row, std::int32_t column, std::int32_t channel,
                        const std::string& label) {
    Wells.push_back(std::make_unique<PlateWell>(PlateWell{wellID, label, channel, column, row, PlateWell::kNew}));
}

void PlateData::ClearWells() { Wells.clear(); }

void PlateData::ResetCompounds(std::size_t count) {
    Compounds.clear();
    Compounds.resize(count);
}

void CPropRecordPlate::Save(CXmlFileArchive& archive) { vxfileio::xmlarchive::SaveElement(archive, *this); }
void CPropRecordPlate::Load(CXmlFileArchive& archive) { vxfileio::xmlarchive::LoadElement(archive, *this); }

void CPropRecordPlate::RequireCompound(std::int32_t index) const {
    if (index == kFirstCompound || CompoundAt(Data, index) != nullptr) return;
    throw CExcVXReader("The record plate has no compound at index " + std::to_string(index));
}

void CPropRecordPlate::SaveShort(CXmlFileArchive& archive, std::int32_t index) const {
    RequireCompound(index);
    const PlateCompound none;
    const PlateCompound* const found = CompoundAt(Data, index);
    const PlateCompound& compound = found == nullptr ? none : *found;
    SaveForm<CShortPlateForm>(archive, *this, compound, CCompoundToSave{compound, CWellIndex(Data)});
}

void CPropRecordPlate::LoadShort(CXmlFileArchive& archive) {
    Data.ClearWells();
    Data.ResetCompounds(1);
    Data.Compounds.front() = std::make_unique<PlateCompound>();
    PlateCompound& compound = *Data.Compounds.front();
    CCompoundToLoad wells{compound, Data};
    LoadForm<CShortPlateForm>(archive, *this, compound, wells);
}

void CPropRecordPlate::BuildPlateMap(enPlateLayout layout) {
    if (layout == enPlateLayout::L8x12 || layout == enPlateLayout::L16x6) Build8x12(Map);
    if (layout == enPlateLayout::Ostrel6x9) Build6x9(Map);
}

std::vector<std::int32_t> CPropRecordPlate::GetAllWellIDs() const {
    return KeysOf(Data.Wells, &PlateWell::WellID, kAny);
}

std::vector<std::int32_t> CPropRecordPlate::GetActiveWellIDs() const {
    return KeysOf(Data.Wells, &PlateWell::WellID, [](const PlateWell& well) { return IsActive(well.State); });
}

std::vector<std::int32_t> CPropRecordPlate::GetCompoundIDs() const {
    return KeysOf(Data.Compounds, &PlateCompound::CompoundID, kAny);
}

std::vector<std::int32_t> CPropRecordPlate::GetCompoundWellIDs(std::int32_t compoundID) const {
    const PlateCompound* const compound = FindCompound(compoundID);
    return compound == nullptr ? std::vector<std::int32_t>() : compound->Wells;
}

std::vector<std::int32_t> CPropRecordPlate::GetActiveCompoundWellIDs(std::int32_t compoundID) const {
    const CWellIndex index(Data);
    std::vector<std::int32_t> wells = GetCompoundWellIDs(compoundID);
    std::erase_if(wells, [&](std::int32_t wellID) {
        const PlateWell* const well = index.Find(wellID);
        return well != nullptr && !IsActive(well->State);
    });
    return wells;
}

PlateCompound* CPropRecordPlate::FindCompound(std::int32_t compoundID) {
    return FindRecord(Data.Compounds, &PlateCompound::CompoundID, compoundID);
}

const PlateCompound* CPropRecordPlate::FindCompound(std::int32_t compoundID) const {
    return FindRecord(Data.Compounds, &PlateCompound::CompoundID, compoundID);
}

PlateWell* CPropRecordPlate::FindWell(std::int32_t wellID) {
    return FindRecord(Data.Wells, &PlateWell::WellID, wellID);
}

const PlateWell* CPropRecordPlate::FindWell(std::int32_t wellID) const {
    return FindRecord(Data.Wells, &PlateWell::WellID, wellID);
}

std::int32_t CPropRecordPlate::GetWellState(std::int32_t wellID) const {
    const PlateWell* const well = FindWell(wellID);
    return well == nullptr ? PlateWell::kActive : well->State;
}

void CPropRecordPlate::SetWellState(std::int32_t wellID, std::int32_t state) {
    if (PlateWell* const well = FindWell(wellID)) well->State = state;
}

std::string CPropRecordPlate::GetWellLabel(std::int32_t wellID) const {
    const PlateWell* const well = FindWell(wellID);
    return well == nullptr ? std::string() : well->Label;
}

std::vector<std::string> CPropRecordPlate::GetSeriesLabels() const {
    std::vector<std::string> labels;
    labels.reserve(Data.Series.size());
    for (const std::uint64_t dose : Data.Series)
        labels.push_back(DoseToText(dose));
    return labels;
}

std::string DoseToText(std::uint64_t dose) {
    std::size_t unit = 0;
    for (; dose >= 10'000 || (dose >= 1'000 && dose % 1'000 == 0); dose /= 1'000)
        ++unit;
    if (unit >= kDoseUnitsInFiles.size()) throw CExcConversion(CExcConversion::kDoseOutOfRange);
    return std::to_string(dose).append(kDoseUnitsInFiles[unit]);
}
