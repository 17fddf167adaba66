#include "vxfileio/export/ResultsExport.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <span>
#include <string_view>
#include <utility>

#include "vxfileio/base/ExcVXReader.h"
#include "vxfileio/helpers/File.h"
#include "vxfileio/helpers/Path.h"
#include "vxfileio/settings/WellIndex.h"

namespace vxfileio::workbook {

namespace {

constexpr enTask kTask = enTask::Series;

/// The row and column where the blocks of responses begin.
constexpr std::uint32_t kFirstRow = 2;
constexpr std::uint32_t kFirstColumn = 0;

constexpr const char* kTime = "Time";

/// Amplitudes are stored in volts and exported in microvolts.
constexpr double kMicrovolts = 1'000'000.0;

/// A block of the results: a response, and the factor for its values.
struct CResponseBlock {
    enResponseType response;
    double factor;
};

/// The blocks, from left to right.
constexpr CResponseBlock kBlocks[] = {
    {enResponseType::QTInterval, 1.0}, {enResponseType::NaAmplitude, kMicrovolts}, {enResponseType::NaSlope, 1.0}};

/// Returns the plate's wells in order. Wells with the same ID are represented by the first one.
std::vector<const PlateWell*> WellsOf(const CPropRecordPlate& plate) {
    const settings::CWellIndex index(plate.Data);
    std::vector<const PlateWell*> wells;
    for (const std::int32_t wellID : plate.GetAllWellIDs())
        wells.push_back(index.Find(wellID));
    return wells;
}

/// The input of all workbooks.
struct CSource {
    const CResults& results;
    const CPropAnalyzer& analyzer;
    const CPropRecordPlate& plate;
    std::vector<std::string> doses = {};  ///< By recording.
    std::vector<const PlateWell*> wells = WellsOf(plate);
    std::uint32_t recordings = static_cast<std::uint32_t>(results.GetRecordingCount(kTask));
    std::uint32_t shown = std::min(recordings, YExcel::Sheet::kMostColumns);  ///< Recordings that fit on a sheet.

    const CResultsWell* Well(std::uint32_t recording, std::int32_t wellID) const {
        return results.GetWellResults(kTask, static_cast<std::int32_t>(recording), wellID);
    }
};

// Cells beyond the limits of a sheet are left out. An empty text leaves its cell empty, but the sheet grows to include
// it.

void PutText(YExcel::Sheet& sheet, std::uint32_t row, std::uint32_t column, const std::string& text) {
    if (YExcel::Cell* const cell = sheet.At(row, column)) cell->SetText(text);
}

void PutNumber(YExcel::Sheet& sheet, std::uint32_t row, std::uint32_t column, double number) {
    if (YExcel::Cell* const cell = sheet.At(row, column)) cell->SetDouble(number);
}

void PutDose(const CSource& source, YExcel::Sheet& sheet, std::uint32_t row, std::uint32_t column,
             std::uint32_t recording) {
    PutText(sheet, row, column, recording < source.doses.size() ? source.doses[recording] : std::string());
}

/// Returns the well of a recording if it has this response and it isn't deselected, otherwise null.
const CResultsWell* CountingWell(const CSource& source, std::uint32_t recording, std::int32_t wellID,
                                 enResponseType response) {
    const CResultsWell* const well = source.Well(recording, wellID);
    const auto number = static_cast<std::int32_t>(recording);
    const bool counts =
        well != nullptr && source.analyzer.IsWellAnalyzed(kTask, number, wellID) &&
        source.analyzer.GetResponseMark(kTask, number, wellID, response) != enAnalysisMark::Deselected &&
        well->ResultsExist(response, enValueType::Plain);
    return counts ? well : nullptr;
}

void PutBlock(const CSource& source, YExcel::Sheet& sheet, const CResponseBlock& block, std::uint32_t left) {
    PutText(sheet, kFirstRow, left, ResponseTypeToString(block.response));
    for (std::uint32_t recording = 0; recording < source.shown; ++recording)
        PutDose(source, sheet, kFirstRow + 1, left + 1 + recording, recording);
    std::uint32_t row = kFirstRow + 2;
    for (const PlateWell* const place : source.wells) {
        PutText(sheet, row, left, place->Label);
        for (std::uint32_t recording = 0; recording < source.shown; ++recording) {
            const CResultsWell* const well = CountingWell(source, recording, place->WellID, block.response);
            if (well == nullptr) continue;
            const double value = well->GetResults(block.response, enValueType::Plain);
            PutNumber(sheet, row, left + 1 + recording, value * block.factor);
        }
        ++row;
    }
}

void PutResults(const CSource& source, std::int32_t /*wellID*/, YExcel::Sheet& sheet) {
    std::uint32_t left = kFirstColumn;
    for (const CResponseBlock& block : kBlocks) {
        PutBlock(source, sheet, block, left);
        left += source.recordings + 2;  // the well labels and a gap
    }
}

/// Stores one column per recording: its dose, then the times of the beats.
void PutBeats(const CSource& source, std::int32_t wellID, YExcel::Sheet& sheet) {
    for (std::uint32_t recording = 0; recording < source.shown; ++recording) {
        PutDose(source, sheet, 0, recording, recording);
        const CResultsWell* const well = source.Well(recording, wellID);
        if (well == nullptr) continue;
        std::uint32_t row = 1;
        for (const std::int64_t time : well->FPfastDetectionTimes)
            PutNumber(sheet, row++, recording, static_cast<double>(time));
    }
}

/// Returns the time of a sample of the average. (In workbooks the axis begins one tick before that of
/// `GetAveTimeStamp`, for compatibility with existing files.)
double TimeOfSample(const CResultsWell& well, std::uint64_t sample) {
    const std::uint64_t time =
        sample * static_cast<std::uint64_t>(well.AverageTick) - static_cast<std::uint64_t>(well.AveragePreFPfastTime);
    return static_cast<double>(static_cast<std::int64_t>(time));
}

void PutTimeAxis(const CResultsWell& well, YExcel::Sheet& sheet) {
    PutText(sheet, 0, 0, kTime);
    for (std::uint32_t sample = 0; sample < well.GetAveSamples(); ++sample)
        PutNumber(sheet, sample + 1, 0, TimeOfSample(well, sample));
}

/// Stores the time axis of the first recording with an average, then one column per recording: its dose, then the
/// samples of the average.
void PutAverages(const CSource& source, std::int32_t wellID, YExcel::Sheet& sheet) {
    bool hasAxis = false;
    for (std::uint32_t recording = 0; recording < source.shown; ++recording) {
        PutDose(source, sheet, 0, recording + 1, recording);
        const CResultsWell* const well = source.Well(recording, wellID);
        if (well == nullptr || !well->AverageExist()) continue;
        if (!hasAxis) PutTimeAxis(*well, sheet);
        hasAxis = true;
        std::uint32_t row = 1;
        for (const double voltage : well->Average)
            PutNumber(sheet, row++, recording + 1, voltage * kMicrovolts);
    }
}

/// The name of a sheet, and the function that fills it.
struct CSheetPlan {
    const char* name;
    void (*put)(const CSource& source, std::int32_t wellID, YExcel::Sheet& sheet);
};

/// The sheets of the workbook of all wells, from left to right.
constexpr CSheetPlan kResultsSheets[] = {{"Results", PutResults}};

/// The sheets of the workbook of one well.
constexpr CSheetPlan kWellSheets[] = {{"HB Time Stamps", PutBeats}, {"Averages", PutAverages}};

/// Returns whether a workbook can have these sheets: each name is unique and short enough for spreadsheet programs.
constexpr bool AreNamesAccepted(std::span<const CSheetPlan> plans) {
    constexpr std::size_t kMostBytes = 31;
    for (std::size_t i = 0; i < plans.size(); ++i) {
        const std::string_view name = plans[i].name;
        if (name.empty() || name.size() > kMostBytes) return false;
        for (const CSheetPlan& other : plans.first(i))
            if (name == other.name) return false;
    }
    return true;
}
static_assert(AreNamesAccepted(kResultsSheets) && AreNamesAccepted(kWellSheets), "rename the new sheet");

void MakeSheets(const CSource& source, std::span<const CSheetPlan> plans, std::int32_t wellID,
                YExcel::Document& document) {
    document.CreateSheets(static_cast<std::int32_t>(plans.size()));
    for (std::size_t i = 0; i < plans.size(); ++i) {
        document.RenameSheet("Sheet" + std::to_string(i + 1), plans[i].name);
        plans[i].put(source, wellID, *document.FindSheet(plans[i].name));
    }
}

std::optional<CWorkbookFailure> SaveAtOnce(YExcel::Document& document, const std::string& path) {
    helpers::CReplacingFile file;
    if (file.Create(path) && document.WriteTo(file) && file.Commit()) return std::nullopt;
    const auto kind = file.Failure() ? CWorkbookFailure::EKind::Refused : CWorkbookFailure::EKind::TooLarge;
    return CWorkbookFailure{.kind = kind, .path = helpers::NativePath(path), .refusal = file.Failure()};
}

/// Saves workbooks and collects failures.
struct CSaving {
    const CResultsExport::CSave& save;
    std::vector<CWorkbookFailure> failures = {};

    void operator()(YExcel::Document& document, const std::string& path) {
        if (auto failure = save(document, path)) failures.push_back(std::move(*failure));
    }
};

/// Exports the wells that have their own workbook.
void ExportWells(const CSource& source, const std::string& path, CSaving& saving) {
    YExcel::Document document;
    for (const CWellWorkbook& workbook : WellWorkbooksOf(source.plate, path)) {
        if (workbook.isFileName) {
            MakeSheets(source, kWellSheets, workbook.wellID, document);
            saving(document, workbook.path);
        } else {
            saving.failures.push_back({.kind = CWorkbookFailure::EKind::NoFileName, .path = workbook.path});
        }
    }
}

template <class Object>
const Object& Required(const Object* object, const char* what) {
    if (object == nullptr) throw CExcVXReader(std::string("The export has no ") + what);
    return *object;
}

}  // namespace

std::string CWorkbookFailure::Text() const {
    switch (kind) {
        case EKind::NotFinished:
            return "Not finished: " + path;
        case EKind::NoFileName:
            return "Not the name of a file: " + helpers::WithoutControls(path);
        case EKind::TooLarge:
            return "File too large, writing " + path;
        case EKind::Refused:
            break;
    }
    return refusal.Text(path);
}

std::vector<CWellWorkbook> WellWorkbooksOf(const CPropRecordPlate& plate, const std::string& wholePath) {
    std::vector<CWellWorkbook> workbooks;
    const helpers::CPath path(wholePath.c_str());
    for (const PlateWell* const well : WellsOf(plate)) {
        if (well->State != PlateWell::kNew) continue;
        const std::string name = path.GetTitle().Text() + "-" + well->Label + path.GetExtension().Text();
        workbooks.push_back({.wellID = well->WellID,
                             .path = helpers::NativePath(path.GetDriveDirectory().Text()) + name,
                             .isFileName = helpers::IsWholePath(wholePath) && helpers::IsFileName(name)});
    }
    return workbooks;
}

void CResultsExport::ExportExcel(const std::string& path) { Export(path, SaveAtOnce); }

void CResultsExport::Export(const std::string& path, const CSave& save) {
    CSource source{.results = Required(m_results, "results"),
                   .analyzer = Required(m_analyzer, "analyzer property"),
                   .plate = Required(m_plate, "record plate")};
    std::ranges::transform(source.plate.Data.Series, std::back_inserter(source.doses), m_doseText);
    m_failures = {{.kind = CWorkbookFailure::EKind::NotFinished, .path = helpers::NativePath(path)}};  // until it is
    CSaving saving{save};
    {
        YExcel::Document document;
        MakeSheets(source, kResultsSheets, 0, document);
        saving(document, path);
    }
    ExportWells(source, path, saving);
    m_failures = std::move(saving.failures);
}

std::string CResultsExport::GetWriteError() const {
    std::string lines;
    for (const CWorkbookFailure& failure : m_failures)
        lines.append(lines.empty() ? "" : "\n").append(failure.Text());
    return lines;
}

}  // namespace vxfileio::workbook
