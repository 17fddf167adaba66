#include "tools/vxfile/page/PlateGrid.h"

#include <algorithm>
#include <array>
#include <limits>
#include <set>
#include <tuple>

#include "tools/vxfile/plate/PlatePlace.h"
#include "tools/vxfile/report/Text.h"

namespace vxfile::page {

namespace {

struct CSize {
    std::int64_t rows = 0;
    std::int64_t columns = 0;

    bool Holds(const CPlatePlace& place) const { return place.IsKnown() && place.row < rows && place.column < columns; }
};

/// No plate is larger. A place beyond is damage.
constexpr CSize kLargest = {64, 64};

/// Returns the sizes that a layout can have. Programs number the wells of a plate of 16x6 in one way or the other.
std::vector<CSize> SizesOf(enPlateLayout layout) {
    switch (layout) {
        case enPlateLayout::L8x12:
            return {{8, 12}};
        case enPlateLayout::L16x6:
            return {{16, 6}, {8, 12}};
        case enPlateLayout::Ostrel6x9:
            return {{6, 9}};
        default:
            return {};
    }
}

using CPlaces = std::map<std::int32_t, CPlatePlace>;  // by well ID

CPlaces PlacesOf(const std::map<std::int32_t, std::string>& labels, const CPropRecordPlate* plate) {
    CPlaces places;
    for (const auto& [id, label] : labels) {
        const PlateWell* well = plate == nullptr ? nullptr : plate->FindWell(id);
        places[id] = well == nullptr ? PlaceOf(label) : CPlatePlace{well->PlateRow, well->PlateColumn};
    }
    return places;
}

/// Returns the first size of the layout that holds all wells, or else the smallest that holds those on a plate.
CSize SizeFor(const CPlaces& places, enPlateLayout layout) {
    CSize least;
    for (const auto& [id, place] : places) {
        if (!kLargest.Holds(place)) continue;
        least.rows = std::max(least.rows, place.row + 1);
        least.columns = std::max(least.columns, place.column + 1);
    }
    for (const CSize& size : SizesOf(layout)) {
        if (size.rows >= least.rows && size.columns >= least.columns) return size;
    }
    return least;
}

/// Returns "A" to "Z", then "AA" and so on.
std::string RowLabel(std::int64_t row) {
    const std::string last(1, static_cast<char>('A' + row % 26));
    return row < 26 ? last : RowLabel(row / 26 - 1) + last;
}

}  // namespace

void ArrangeWells(CPlateValues& values, const std::map<std::int32_t, std::string>& labels,
                  const CPropRecordPlate* plate) {
    const CPlaces places = PlacesOf(labels, plate);
    const CSize size = SizeFor(places, plate == nullptr ? enPlateLayout::NotDefined : plate->Data.Layout);
    std::set<std::pair<std::int64_t, std::int64_t>> taken;
    for (const auto& [id, label] : labels) {
        CWellPlace& well = values.wells.emplace_back();
        well.id = id;
        well.label = label.empty() ? "well " + std::to_string(id) : Readable(label);
        const CPlatePlace& place = places.at(id);
        if (size.Holds(place) && taken.emplace(place.row, place.column).second) {
            well.row = static_cast<std::size_t>(place.row);
            well.column = static_cast<std::size_t>(place.column);
        }
        if (plate != nullptr) {
            const std::int32_t state = plate->GetWellState(id);
            well.isInactive = state != PlateWell::kActive && state != PlateWell::kNew;
        }
    }
    const auto order = [](const CWellPlace& well) {
        return std::tuple(well.row.value_or(std::numeric_limits<std::size_t>::max()), well.column, well.id);
    };
    std::ranges::sort(values.wells, {}, order);
    for (std::int64_t row = 0; row < size.rows; ++row)
        values.rowLabels.push_back(RowLabel(row));
    for (std::int64_t column = 0; column < size.columns; ++column)
        values.columnLabels.push_back(std::to_string(column + 1));
}

}  // namespace vxfile::page
