#pragma once

// The wells, doses and marks of a settings file as stored by the programs that don't use the library. Everything else
// in the file has its default. Shares no code with the library.

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

struct CSettings {
    struct CWell {
        int id = 0, channel = 0;
        std::string label;
        int column = 0, row = 0, state = 0;
        bool operator==(const CWell&) const = default;
    };
    struct CMarks {
        int analyze = 1;
        int marks[3] = {};  // indices into kMarks
        bool operator==(const CMarks&) const = default;
    };
    using CRecording = std::map<int, CMarks>;

    std::vector<CWell> wells;
    std::vector<std::uint64_t> doses;
    std::vector<std::vector<CRecording>> tasks;  // in the order of kTasks
    bool operator==(const CSettings&) const = default;
};

inline constexpr int kPlateWells = 54;
inline constexpr int kSeries = 1;  // the task with one recording per dose
inline constexpr std::string_view kTasks[] = {"CompoundTest", "Series", "PreQC", "PostQC"};
inline constexpr std::string_view kMarks[] = {"Undefined", "Automatic", "Manually", "Deselected"};
inline constexpr std::string_view kMarkedResponses[] = {"Na-Amplitude", "Na-Slope", "QT-Interval"};

/// Returns the index of a mark's word in the list.
inline int MarkOf(std::string_view word) {
    int mark = 3;
    while (mark > 0 && kMarks[mark] != word)
        --mark;
    return mark;
}

/// Makes the plate's wells, 11 doses times `scale`, and marks in all four tasks.
inline CSettings MakeSettings(int scale) {
    CSettings settings;
    for (int i = 0; i < kPlateWells; ++i)
        settings.wells.push_back({10 + i, i, "W" + std::to_string(i), i % 9, i / 9, 2});
    for (int dose = 0; dose < 11 * scale; ++dose)
        settings.doses.push_back(1000U * static_cast<unsigned>(dose + 1));
    for (int task = 0; task < 4; ++task) {
        auto& recordings = settings.tasks.emplace_back(task == kSeries ? settings.doses.size() : 1);
        for (int recording = 0; auto& wells : recordings) {
            for (const CSettings::CWell& well : settings.wells)
                wells[well.id] = {(well.id + recording) % 7 != 0,
                                  {(well.id + task) % 4, (well.id + recording) % 4, recording % 4}};
            ++recording;
        }
    }
    return settings;
}

/// Returns the path of a numbered file. Each one is new, since a file system may wait for the disk when a file is
/// replaced. The first has `path` itself.
inline std::string FileOf(const char* path, int number) {
    return number == 0 ? path : path + ("." + std::to_string(number));
}
