#include <gtest/gtest.h>
#include <vxfileio/frame/VXFileIO.h>

#include <algorithm>
#include <filesystem>
#include <limits>
#include <set>
#include <string>

#include "tests/export/WorkbookReader.h"
#include "tests/support/TempFolder.h"
#if defined(__linux__)
#include "tests/support/FullDisk.h"
#endif

namespace {

/// A plate of three wells at two doses. The last well has its own workbook.
class ResultsExportTest : public testing::Test {
 protected:
    ResultsExportTest() {
        m_plate.Data.Series = {1500, 1000000};
        for (const std::int32_t id : {9, 4, 5})
            m_plate.Data.AddWell(id, 0, 0, id, "B" + std::to_string(id));
        m_plate.SetWellState(9, PlateWell::kActive);
        m_plate.SetWellState(4, PlateWell::kInactive);
        m_analyzer.InitTask(enTask::Series, 2, {4, 5, 9});
        m_results.SetFPAverage(2, 10, 25);
        m_results.Init(1, enTask::Series, "Series", {1500, 1000000}, {4, 5, 9}, {"", "", ""});
    }

    CResultsWell& Well(std::int32_t recording, std::int32_t id) {
        return *m_results.GetWellResults(enTask::Series, recording, id);
    }
    void SetAll(double value) {
        for (const std::int32_t recording : {0, 1}) {
            for (const std::int32_t id : {4, 5, 9}) {
                for (const enResponseType type : AllResponseTypes())
                    Well(recording, id).SetResults(type, enValueType::Plain, value);
            }
        }
    }

    void Export(const std::string& name = "run.xls") {
        CIResultsExport& exporter = *m_io.GetResultsExport();
        exporter.SetResults(&m_results);
        exporter.SetPropertyAnalyzer(&m_analyzer);
        exporter.SetPropertyRecordPlate(&m_plate);
        exporter.ExportExcel(m_folder.Path(name));
    }
    WorkbookCells Cells(const std::string& name) { return WorkbookOf(ReadAll(m_folder.Path(name))).cells; }
    WorkbookSizes Sizes(const std::string& name) { return WorkbookOf(ReadAll(m_folder.Path(name))).sizes; }

    std::ptrdiff_t CountLines() {
        const std::string text = m_io.GetResultsExport()->GetWriteError();
        return text.empty() ? 0 : std::count(text.begin(), text.end(), '\n') + 1;
    }

    /// Returns the names of all files in the temporary folder.
    std::set<std::string> Files() {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(m_folder.Path("")))
            names.insert(entry.path().filename().string());
        return names;
    }

    CTempFolder m_folder;
    CVXFileIO m_io;
    CPropRecordPlate m_plate;
    CPropAnalyzer m_analyzer;
    CResults m_results;
};

TEST_F(ResultsExportTest, ResultsHaveABlockForEachResponse) {
    SetAll(0.5);
    Well(0, 9).SetResults(enResponseType::NaAmplitude, enValueType::Plain, 0.000123456789);
    Well(0, 9).SetResults(enResponseType::NaSlope, enValueType::Normalized, 77);
    auto& marks = m_analyzer.AnalyzeSettings[enTask::Series];
    marks[0][4].Responses[enResponseType::NaSlope] = enAnalysisMark::Deselected;
    marks[0][4].Responses[enResponseType::QTInterval] = enAnalysisMark::Undefined;
    marks[1][5].Analyze = false;
    Well(1, 9).Responses.erase(enResponseType::QTInterval);
    marks[1].erase(4);
    Export();
    const WorkbookCells expected = {
        {"Results 2 0", "QT-Interval"}, {"Results 2 4", "Na-Amplitude"}, {"Results 2 8", "Na-Slope"},
        {"Results 3 1", "1500pM"},      {"Results 3 2", "1\xB5M"},       {"Results 3 5", "1500pM"},
        {"Results 3 6", "1\xB5M"},      {"Results 3 9", "1500pM"},       {"Results 3 10", "1\xB5M"},
        {"Results 4 0", "B9"},          {"Results 4 4", "B9"},           {"Results 4 8", "B9"},
        {"Results 5 0", "B4"},          {"Results 5 4", "B4"},           {"Results 5 8", "B4"},
        {"Results 6 0", "B5"},          {"Results 6 4", "B5"},           {"Results 6 8", "B5"},
        {"Results 4 1", "0.5"},         {"Results 4 5", "123.456789"},   {"Results 4 9", "0.5"},
        {"Results 4 6", "500000"},      {"Results 4 10", "0.5"},         {"Results 5 1", "0.5"},
        {"Results 5 5", "500000"},      {"Results 6 1", "0.5"},          {"Results 6 5", "500000"},
        {"Results 6 9", "0.5"}};
    EXPECT_EQ(Cells("run.xls"), expected);
}

TEST_F(ResultsExportTest, AWellWorkbookHasBeatsAndAverages) {
    m_analyzer.AnalyzeSettings.clear();  // has no effect here
    m_plate.SetWellState(9, PlateWell::kNew);
    Well(0, 9).FPfastDetectionTimes = {1, 2, 3};  // exported first; must not be in the next workbook
    m_plate.SetWellState(4, PlateWell::kNew + 1);
    Well(0, 5).FPfastDetectionTimes = {-5, 1234567890123};
    Well(1, 5).FPfastDetectionTimes = {7};
    Well(0, 5).Average = {9, 9, 9};  // ignored without a count
    Well(1, 5).Average = {0.5, -0.000125, 0.25};
    Well(1, 5).AverageCount = 1;
    Export();
    EXPECT_EQ(Files(), (std::set<std::string>{"run.xls", "run-B9.xls", "run-B5.xls"}));
    const WorkbookCells expected = {
        {"HB Time Stamps 0 0", "1500pM"}, {"HB Time Stamps 1 0", "-5"}, {"HB Time Stamps 2 0", "1.23456789012e+12"},
        {"HB Time Stamps 0 1", "1\xB5M"}, {"HB Time Stamps 1 1", "7"},  {"Averages 0 0", "Time"},
        {"Averages 0 1", "1500pM"},       {"Averages 0 2", "1\xB5M"},   {"Averages 1 0", "-25"},
        {"Averages 2 0", "-15"},          {"Averages 3 0", "-5"},       {"Averages 1 2", "500000"},
        {"Averages 2 2", "-125"},         {"Averages 3 2", "250000"}};
    EXPECT_EQ(Cells("run-B5.xls"), expected);

    m_results.Init(1, enTask::Series, "Series", {1500, 1000000}, {5}, {""});
    Export("empty");
    EXPECT_EQ(Cells("empty-B5"), (WorkbookCells{{"HB Time Stamps 0 0", "1500pM"},
                                                {"HB Time Stamps 0 1", "1\xB5M"},
                                                {"Averages 0 1", "1500pM"},
                                                {"Averages 0 2", "1\xB5M"}}));
}

TEST_F(ResultsExportTest, BlocksWithoutRecordingsOrWellsAreEmpty) {
    m_results.Clear();
    Export();
    EXPECT_EQ(Cells("run.xls"), (WorkbookCells{{"Results 2 0", "QT-Interval"},
                                               {"Results 2 2", "Na-Amplitude"},
                                               {"Results 2 4", "Na-Slope"},
                                               {"Results 4 0", "B9"},
                                               {"Results 5 0", "B4"},
                                               {"Results 6 0", "B5"},
                                               {"Results 4 2", "B9"},
                                               {"Results 5 2", "B4"},
                                               {"Results 6 2", "B5"},
                                               {"Results 4 4", "B9"},
                                               {"Results 5 4", "B4"},
                                               {"Results 6 4", "B5"}}));
    EXPECT_TRUE(Cells("run-B5.xls").empty());
    m_plate.Data.ClearWells();
    Export("no wells.xls");
    EXPECT_EQ(Cells("no wells.xls").size(), 3U);
    EXPECT_EQ(Files().size(), 3U);
}

TEST_F(ResultsExportTest, SheetsIncludeCellsThatStayEmpty) {
    SetAll(1);
    Export();
    EXPECT_EQ(Sizes("run.xls"), (WorkbookSizes{{"Results", {7, 11}}}));
    EXPECT_EQ(Sizes("run-B5.xls"), (WorkbookSizes{{"HB Time Stamps", {1, 2}}, {"Averages", {1, 3}}}));

    m_plate.Data.Series.clear();  // fewer doses than recordings
    m_plate.Data.ClearWells();
    m_plate.Data.AddWell(7, 0, 0, 7, "");
    Export();
    EXPECT_EQ(Cells("run.xls").size(), 3U);
    EXPECT_EQ(Sizes("run.xls"), (WorkbookSizes{{"Results", {5, 11}}}));
    EXPECT_TRUE(Cells("run-.xls").empty());
    EXPECT_EQ(Sizes("run-.xls"), (WorkbookSizes{{"HB Time Stamps", {1, 2}}, {"Averages", {1, 3}}}));
}

TEST_F(ResultsExportTest, ALabelNeverPointsOutsideTheFolder) {
    std::filesystem::create_directory(m_folder.Path("run-"));
    std::filesystem::create_directory(m_folder.Path("sub"));
    m_plate.SetWellState(5, PlateWell::kActive);
    const std::string labels[] = {"/../../out", "\\..\\out", "/out", "a/b", std::string("nul\0x", 5), "ok", ""};
    std::int32_t id = 100;
    for (const std::string& label : labels)
        m_plate.Data.AddWell(id++, 0, 0, 0, label);
    Export("sub/run.xls");
    EXPECT_EQ(CountLines(), 5) << "one for each label that can't be in a file name";
    EXPECT_EQ(Files(), (std::set<std::string>{"run-", "sub", "run.xls", "run-ok.xls", "run-.xls"}));
    Export("no such folder/run.xls");  // failure shows only in GetWriteError
    EXPECT_TRUE(m_io.GetResultsExport()->GetWriteError().starts_with("No such file or directory, opening " +
                                                                     m_folder.Path("no such folder/run.xls") + "\n"));
    EXPECT_EQ(CountLines(), 8) << "all workbooks";
    const std::string folder = std::filesystem::path(m_folder.Path("no such folder/")).make_preferred().string();
    for (const std::string& line : {"No such file or directory, opening " + folder + "run-ok.xls",
                                    "Not the name of a file: " + folder + "run-\\..\\out.xls"})
        EXPECT_NE(m_io.GetResultsExport()->GetWriteError().find("\n" + line + "\n"), std::string::npos) << line;
    Export(std::string("cut\0.xls", 8));
    EXPECT_EQ(CountLines(), 8);
    EXPECT_EQ(Files().size(), 5U);
}

TEST_F(ResultsExportTest, EverySheetHasASectionInTheDocs) {
    const std::string page = ReadAll(VXFILEIO_REFERENCE_DIR "/../../docs/workbook.md");
    Export("run.xls");
    for (const auto& [workbook, path] : {std::pair("`run.xls`", "run.xls"), {"`run-A1.xls`", "run-B5.xls"}}) {
        const std::size_t row = page.find(std::string("\n| ") + workbook);
        ASSERT_NE(row, std::string::npos) << workbook;
        const std::string line = page.substr(row + 1, page.find('\n', row + 1) - row - 1);
        for (const auto& [sheet, size] : Sizes(path)) {
            EXPECT_NE(line.find('`' + sheet + '`'), std::string::npos) << sheet << " in " << line;
            EXPECT_NE(page.find("\n### " + sheet + '\n'), std::string::npos) << sheet;
        }
    }
}

#if defined(__linux__)
TEST_F(ResultsExportTest, OnlyWellsWhoseLabelCannotBeInAFileNameAreLeftOut) {
    m_plate.SetWellState(5, PlateWell::kActive);
    const std::string labels[] = {"two\nlines", "\x1B[31mred", std::string(248, 'n'), std::string(247, 'y')};
    std::int32_t id = 100;
    for (const std::string& label : labels)
        m_plate.Data.AddWell(id++, 0, 0, 0, label);
    Export("run.xls");
    EXPECT_EQ(Files(), (std::set<std::string>{"run.xls", "run-" + labels[3] + ".xls"}));
    EXPECT_EQ(m_io.GetResultsExport()->GetWriteError(),
              "Not the name of a file: " + m_folder.Path("run-two?lines.xls") + "\n" +  //
                  "Not the name of a file: " + m_folder.Path("run-?[31mred.xls") + "\n" +
                  "Not the name of a file: " + m_folder.Path("run-" + labels[2] + ".xls"));
}

TEST_F(ResultsExportTest, AFailedWriteKeepsTheOldWorkbook) {
    Export("run.xls");
    const std::string old = ReadAll(m_folder.Path("run.xls"));
    std::filesystem::create_directory(m_folder.Path("run-B5.xls.part1"));  // that name is taken
    m_results.Clear();
    {
        const CFullDisk disk(1000);
        Export("run.xls");
    }
    EXPECT_EQ(CountLines(), 2);
    EXPECT_TRUE(m_io.GetResultsExport()->GetWriteError().starts_with("File too large, writing "));
    EXPECT_EQ(ReadAll(m_folder.Path("run.xls")), old);
    EXPECT_EQ(Files(), (std::set<std::string>{"run.xls", "run-B5.xls", "run-B5.xls.part1"}));
}
#endif

TEST_F(ResultsExportTest, MissingInputIsReportedBeforeAnythingIsWritten) {
    CIResultsExport& exporter = *m_io.GetResultsExport();
    EXPECT_THROW(exporter.ExportExcel(m_folder.Path("run.xls")), CExcVXReader);
    Export("first.xls");
    exporter.SetPropertyAnalyzer(nullptr);
    EXPECT_THROW(exporter.ExportExcel(m_folder.Path("run.xls")), CExcVXReader);
    EXPECT_EQ(exporter.GetWriteError(), "") << "the error of the last export";
    m_plate.Data.Series.push_back(1'000'000'000'000);  // has no recording
    EXPECT_ANY_THROW(Export("run.xls"));
    EXPECT_EQ(Files(), (std::set<std::string>{"first.xls", "first-B5.xls"}));
}

TEST_F(ResultsExportTest, CellsBeyondTheLimitsOfASheetAreLeftOut) {
    m_plate.Data.Series = {1};
    m_results.Init(1, enTask::Series, "Series", std::vector<std::uint64_t>(300, 1), {5}, {""});
    for (const std::int32_t recording : {0, 254, 255, 299}) {
        Well(recording, 5).FPfastDetectionTimes.assign(70000, 1);
        Well(recording, 5).AverageCount = 1;
        Well(recording, 5).AverageTick = std::numeric_limits<std::int64_t>::max();
    }
    Well(255, 5).AverageTick = 1;  // the axis uses the tick of the first average
    Export();
    const WorkbookCells cells = Cells("run-B5.xls");
    EXPECT_EQ(cells.at("HB Time Stamps 65535 0") + cells.at("HB Time Stamps 65535 255"), "11");
    EXPECT_EQ(cells.size(), 1U + 3 * 65535 + 1 + 1 + 2 + 2 * 2);
    EXPECT_EQ(cells.at("Averages 2 0"), "9.22337203685e+18") << "25 less, but a double has only 53 bits";
    EXPECT_EQ(Cells("run.xls").at("Results 2 0"), "QT-Interval");
}

}  // namespace
