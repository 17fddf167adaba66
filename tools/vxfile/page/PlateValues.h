#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/vxfile/page/Trace.h"
#include "vxfileio/frame/VXFileIO.h"

/// @file
/// What a page about a plate shows, as values. All texts are UTF-8 without control characters.

namespace vxfile::page {

/// One file that the page was made from.
struct CFileLine {
    std::string name;   ///< Without folder.
    std::string kind;   ///< Such as "results file".
    std::string size;   ///< Such as "1.1 MiB".
    std::string state;  ///< Such as "sound" or "2 findings: ...".
    bool isSound = true;
};

/// What a page is made from. Everything must outlive the values.
struct CPlateSource {
    const CXmlFileHeader* header = nullptr;      ///< Of the results; never null.
    const CResults* results = nullptr;           ///< Never null.
    const CISettingsReader* settings = nullptr;  ///< Null without a settings file.
    std::vector<CFileLine> files = {};
    std::vector<std::string> notes = {};  ///< What the reader of the page should know, a sentence each.
};

/// A well, and its place on the plate.
struct CWellPlace {
    std::int32_t id = 0;
    std::string label;
    std::optional<std::size_t> row;  ///< Nothing if the well isn't on the plate.
    std::size_t column = 0;
    bool isInactive = false;  ///< The settings exclude the well.
};

/// One recording of the results.
struct CRecordingLine {
    std::string task;
    std::uint64_t dose = 0;  ///< In picomolar.
    std::string doseText;    ///< "Control" for dose 0.
    std::string name;        ///< The dose, after the name of the task if there are several tasks.
    bool IsControl() const { return dose == 0; }
};

/// Why a value counts or doesn't.
enum class EState { Counted, Deselected, NotAnalysed, Inactive };

/// One value of one well.
struct CWellValue {
    std::optional<double> value;  ///< Nothing if the file has none.
    EState state = EState::Counted;

    /// Returns whether the value goes into means, charts and the range of colours.
    bool Counts() const;
};

/// Mean and standard deviation of the wells of one recording.
struct CMean {
    double mean = 0.0;
    std::optional<double> deviation;  ///< Nothing if it was computed from one well.
    std::uint64_t wells = 0;
};

/// The values of one response, as measured or normalised.
struct CMeasure {
    std::string response;  ///< Such as "QT-Interval".
    std::string unit;      ///< Such as "ticks"; empty if the files name none.
    bool isNormalized = false;
    std::vector<std::vector<CWellValue>> values;  ///< By recording, then by well.
    std::vector<std::optional<CMean>> means;      ///< By recording.
    bool hasStoredMeans = false;                  ///< The means are those of the file, not computed from the values.
    double least = 0.0;                           ///< The range of the values that count.
    double greatest = 0.0;

    /// Returns the response and the kind of value, such as "QT-Interval, normalised".
    std::string Name() const;
};

/// The plate, with all that the page shows of it.
struct CPlateValues {
    std::string compound;  ///< "Unnamed compound" if the file has no name.
    std::string plate;     ///< Such as "plate P"; empty if unknown.
    std::vector<std::pair<std::string, std::string>> facts;
    std::vector<std::string> notes;
    std::string layout;                     ///< Such as "8x12", or how the wells are arranged without settings.
    std::vector<std::string> rowLabels;     ///< Of the plate.
    std::vector<std::string> columnLabels;  ///< Of the plate.
    std::vector<CWellPlace> wells;          ///< By rows, then by columns; those that aren't on the plate come last.
    std::vector<CRecordingLine> recordings;
    std::vector<CMeasure> measures;
    std::vector<std::vector<const CResultsWell*>> details;  ///< By recording, then by well; null if it isn't there.
    std::vector<std::vector<CTrace>> traces;                ///< Likewise; empty without a recording.
    std::vector<CFileLine> files;

    /// Returns the well at a place of the plate, or nothing.
    std::optional<std::size_t> WellAt(std::size_t row, std::size_t column) const;
};

/// Collects the values. Throws `CFailure` if there are more wells and recordings than a page can show. Reads the whole
/// recording, if there is one; what can't be read of it becomes a note.
CPlateValues MakePlateValues(const CPlateSource& source);

}  // namespace vxfile::page
