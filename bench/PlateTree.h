#pragma once

// The results of a plate for the export of workbooks, as stored by the programs that don't use the library.

#include "ResultsTree.h"

inline constexpr int kExportDoses = 8;
inline constexpr double kExportTick = 10;
inline constexpr double kExportPre = 25;

inline CTree MakePlate(int samples) {
    CTree plate;
    plate.recordings.resize(kExportDoses);
    for (int dose = 0; dose < kExportDoses; ++dose) {
        for (int id = 0; id < kWells; ++id) {
            CTree::CWell& well = plate.recordings[static_cast<std::size_t>(dose)].wells[kFirstWell + id];
            well.label = "W" + std::to_string(id);
            for (int i = 0; i < kTimes; ++i)
                well.times.push_back(TimeOf(dose, id, i));
            for (int i = 0; i < samples; ++i)
                well.average.push_back(SampleOf(dose, id, i));
            for (int type = 1; type < 4; ++type)
                well.responses[type] = ResponseOf(dose, id, type);
        }
    }
    return plate;
}
