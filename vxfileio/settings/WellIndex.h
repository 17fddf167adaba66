#pragma once

#include <cstdint>
#include <unordered_map>

#include "vxfileio/settings/PropRecordPlate.h"

namespace vxfileio::settings {

/// The first well of each ID. A plate is a list, and asking it for every well in turn would take its square. It points
/// at the plate's wells, which must stay.
class CWellIndex {
 public:
    explicit CWellIndex(const PlateData& data) {
        m_wells.reserve(data.Wells.size());
        for (const auto& well : data.Wells) {
            if (well) Add(*well);
        }
    }

    /// Adds a well, unless its ID is there already. Returns the one that is there.
    PlateWell& Add(PlateWell& well) { return *m_wells.try_emplace(well.WellID, &well).first->second; }

    /// Returns the well with this ID, or null.
    const PlateWell* Find(std::int32_t wellID) const {
        const auto place = m_wells.find(wellID);
        return place == m_wells.end() ? nullptr : place->second;
    }

 private:
    std::unordered_map<std::int32_t, PlateWell*> m_wells;
};

}  // namespace vxfileio::settings
