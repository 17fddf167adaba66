#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <sstream>

#include "tests/support/TempFolder.h"
#include "tests/tools/RawBytes.h"
#include "tools/vxfile/page/Assets.h"
#include "tools/vxfile/page/Chart.h"
#include "tools/vxfile/page/Colours.h"
#include "tools/vxfile/page/Html.h"
#include "tools/vxfile/page/IndexPage.h"
#include "tools/vxfile/page/Numbers.h"
#include "tools/vxfile/page/PackedCurves.h"
#include "tools/vxfile/page/PlateGrid.h"
#include "tools/vxfile/page/PlatePage.h"
#include "tools/vxfile/page/PlateValues.h"
#include "tools/vxfile/page/Trace.h"
#include "tools/vxfile/page/TraceReader.h"
#include "verify/Failure.h"
#include "verify/raw/RawVerify.h"

namespace vxfile::page {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(Html, EscapesTextsAndAttributes) {
    EXPECT_EQ(EscapedText("<b> & \"x\""), "&lt;b&gt; &amp; \"x\"");
    EXPECT_EQ(EscapedAttribute("<b> & \"x\" 'y'"), "&lt;b&gt; &amp; &quot;x&quot; &#39;y&#39;");
    CHtml html;
    html.Element("td", {{"title", "\"><script>"}}, "</td><script>");
    EXPECT_NE(html.Bytes().find("<td title=\"&quot;&gt;&lt;script&gt;\">&lt;/td&gt;&lt;script&gt;</td>"),
              std::string::npos);
}

TEST(Html, WritesDataThatCannotEndItsElement) {
    CHtml html;
    html.Data("d", {{"label", "</script><!--\xE2\x80\xA8"}});
    const std::string& page = html.Bytes();
    const std::size_t begin = page.find('{');
    const std::size_t end = page.rfind('}') + 1;
    EXPECT_EQ(page.substr(begin, end - begin).find('<'), std::string::npos);
    EXPECT_EQ(CJson::parse(page.substr(begin, end - begin))["label"], "</script><!--\xE2\x80\xA8");
}

TEST(Assets, HaveTheHashForAContentSecurityPolicy) {
    // The SHA-256 of nothing, in Base64 as other programs print it.
    const CAsset nothing = {"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"};
    EXPECT_EQ(PolicyNameOf(nothing), "'sha256-47DEQpj8HBSa+/TImW+5JCeuQeRkm5NMpJWZG3hSuFU='");
    EXPECT_EQ(kDygraphsScript.text.find("sourceMappingURL"), std::string_view::npos);
    EXPECT_NE(kDygraphsLicence.text.find("Permission is hereby granted"), std::string_view::npos);
}

std::string StepsOf(const CTrace& trace) {
    std::ostringstream text;
    for (const CTrace::CStep& step : trace.Steps()) {
        if (step.IsGap()) {
            text << "- ";
        } else {
            text << step.least << ".." << step.greatest << ' ';
        }
    }
    return text.str();
}

TEST(Trace, KeepsEachPeakWhenStepsBecomeLonger) {
    CTrace trace(4, 0, {});
    trace.Add(100, 10, std::array<std::uint16_t, 3>{5, 9, 1});
    EXPECT_EQ(StepsOf(trace), "5..5 9..9 1..1 ");
    trace.Add(130, 10, std::array<std::uint16_t, 5>{2, 3, 4, 7, 6});
    EXPECT_EQ(StepsOf(trace), "5..9 1..2 3..4 6..7 ");
    EXPECT_EQ(trace.Begin(), 100);
    EXPECT_EQ(trace.StepTime(), 20);
    CTrace odd(4, 0, {});
    odd.Add(0, 10, std::array<std::uint16_t, 3>{5, 9, 1});
    odd.Add(40, 10, std::array<std::uint16_t, 1>{2});
    EXPECT_EQ(StepsOf(odd), "5..9 1..1 2..2 ");
}

TEST(Trace, HasGapsWithoutSamplesAndIgnoresSamplesThatAreTooEarly) {
    CTrace trace(8, 0, {});
    trace.Add(0, 10, std::array<std::uint16_t, 1>{5});
    trace.Add(30, 10, std::array<std::uint16_t, 1>{6});
    trace.Add(-10, 10, std::array<std::uint16_t, 1>{99});
    trace.Add(40, 0, std::array<std::uint16_t, 1>{99});
    EXPECT_EQ(StepsOf(trace), "5..5 - - 6..6 ");
    trace.Add(400, 10, std::array<std::uint16_t, 2>{7, 8});
    EXPECT_EQ(StepsOf(trace), "5..6 - - - - 7..8 ") << "after a long pause";
}

TEST(Trace, StaysSmallForAnyTimes) {
    constexpr std::int64_t kFirst = std::numeric_limits<std::int64_t>::min();
    constexpr std::int64_t kLast = std::numeric_limits<std::int64_t>::max();
    CTrace trace(8, kLast, {});
    trace.Add(kFirst, 1, std::array<std::uint16_t, 2>{1, 2});
    trace.Add(kLast - 1, kLast, std::array<std::uint16_t, 3>{3, 4, 5});
    EXPECT_LE(trace.Steps().size(), 8U);
    EXPECT_EQ(trace.Steps().front().greatest, 2);
    EXPECT_EQ(trace.Steps().back().greatest, 3);
}

/// Returns the characters of a packed curve.
std::string TextOf(const CPackedCurves& curves, const CJson& curve) {
    return curves.Text().substr(curve["at"], curve["n"]);
}

/// Returns the level of the packed number at an index.
int LevelAt(const std::string& text, std::size_t place) {
    const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    return static_cast<int>(64 * alphabet.find(text[2 * place]) + alphabet.find(text[2 * place + 1]));
}

TEST(PackedCurves, HaveACurveScaledFromItsLeastToItsGreatestNumber) {
    CPackedCurves curves;
    const CJson packed = curves.Add(std::array{-1.0, kNaN, 3.0, 1.0});
    const std::string text = TextOf(curves, packed);
    EXPECT_EQ(packed["lo"], -1.0);
    EXPECT_EQ(packed["hi"], 3.0);
    EXPECT_EQ(text.substr(0, 6), "AA--//");
    EXPECT_NEAR(LevelAt(text, 3), 2047.5, 0.5);
    EXPECT_TRUE(curves.Add(std::array{kNaN, kInfinity}).is_null());
    EXPECT_EQ(TextOf(curves, curves.Add(std::array{7.0, 7.0})), "AAAA");
}

/// Returns the traces of these wells in the recordings A and B of a file.
CPlateValues TracesIn(const std::string& bytes, const std::vector<std::int32_t>& wells) {
    const CTempFolder folder;
    WriteAll(folder.Path("run.vxd"), bytes);
    CPlateValues values;
    values.wells.resize(wells.size());
    for (std::size_t i = 0; i < wells.size(); ++i)
        values.wells[i].id = wells[i];
    values.recordings = {{"CompoundTest", 1000, "", "A"}, {"CompoundTest", 1000, "", "B"}};
    CTraceReader traces(values, CRawDataFile(folder.Path("run.vxd")));
    VerifyWithSamples(folder.Path("run.vxd"), traces);
    return values;
}

TEST(TraceReader, HasWhatIsBeforeDamageAndNotesWhatIsMissing) {
    std::vector<std::uint16_t> many(600'000, 5);  // more than are read at once
    many.back() = 9;
    const CSegmentTexts segments = {{11, 0, many}, {12, 0, {1, 2}}, {11, 80'000'000, {7}}, {12, 200, {3}}};
    const std::size_t third = 1190 + 2460 + 300 + 2 * many.size() + 300 + 4;
    const CPlateValues values =
        TracesIn(WithCell(FileOf({segments, segments}, false), "FPosNextSegmentHdr", "5", third), {11, 12});
    const CTrace& trace = values.traces[0][0];
    const auto& steps = trace.Steps();
    EXPECT_EQ(steps[100 * (many.size() - 1) / static_cast<std::size_t>(trace.StepTime())].greatest, 9);
    EXPECT_EQ(steps.back().greatest, 7);
    EXPECT_EQ(StepsOf(values.traces[0][1]), "1..1 2..2 ");
    EXPECT_EQ(values.notes, (std::vector<std::string>{
                                "There is no trace for the recording of B, as it was never finished.",
                                "Only a part of the recording of A is shown, since the raw data file is damaged."}));
}

TEST(TraceReader, LosesNoSamplesAfterADamagedSize) {
    const CSegmentTexts segments = {{11, 0, {1, 2}}, {11, 200, {3, 4}}};
    const std::string bytes = FileOf({segments, segments});
    for (const std::size_t segment : {std::size_t{1190 + 2460}, std::size_t{1190 + 2460 + 304}}) {
        const CPlateValues values = TracesIn(WithCell(bytes, "Size", "100000", segment), {11});
        EXPECT_EQ(StepsOf(values.traces[0][0]), "1..1 2..2 3..3 4..4 ");
        EXPECT_EQ(StepsOf(values.traces[1][0]), "1..1 2..2 3..3 4..4 ");
        EXPECT_TRUE(values.notes.empty());
    }
}

TEST(TraceReader, HasAGapWhereAFileIsCut) {
    const std::string bytes = FileOf({{{11, 0, {1}}}, {{11, 0, {5, 6, 7, 8}}}});
    const CPlateValues values = TracesIn(bytes.substr(0, bytes.size() - 3), {11});
    EXPECT_EQ(StepsOf(values.traces[1][0]), "5..5 6..6 ");
    EXPECT_EQ(
        values.notes,
        (std::vector<std::string>{"Only a part of the recording of B is shown, since the raw data file is damaged."}));
}

TEST(PackedCurves, RoundTheStepsOfATraceAwayFromEachOther) {
    CTrace trace(8, 0, {0.5, 100});
    trace.Add(0, 1, std::array<std::uint16_t, 3>{0, 33'333, 65'535});
    CPackedCurves curves;
    curves.Add(std::array{1.0, 2.0});
    const CJson packed = curves.Add(trace);
    const std::string text = TextOf(curves, packed);
    EXPECT_EQ(packed["lo"], -50.0);
    EXPECT_EQ(packed["hi"], 32'717.5);
    EXPECT_EQ(LevelAt(text, 2), 2082);  // 33333 * 4095 / 65535 is 2082.8
    EXPECT_EQ(LevelAt(text, 3), 2083);
    EXPECT_TRUE(curves.Add(CTrace(8, 0, {})).is_null());
}

double LuminanceOf(unsigned rgb) {
    const auto linear = [](unsigned channel) {
        const double part = channel / 255.0;
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(rgb >> 16U) + 0.7152 * linear(rgb >> 8U & 255U) + 0.0722 * linear(rgb & 255U);
}

TEST(Colours, GrowLighterFromOneToTheNextAndHaveReadableText) {
    std::istringstream rules(ColourRules());
    double last = -1.0;
    std::size_t count = 0;
    for (std::string rule; std::getline(rules, rule); ++count) {
        const double back =
            LuminanceOf(static_cast<unsigned>(std::stoul(rule.substr(rule.find('#') + 1, 6), nullptr, 16)));
        const double text = rule.find("color:#fff") == std::string::npos ? 0.0 : 1.0;
        EXPECT_GE((std::max(back, text) + 0.05) / (std::min(back, text) + 0.05), 4.5) << rule;
        EXPECT_GT(back, last) << rule;
        last = back;
    }
    EXPECT_EQ(count, kColours);
}

TEST(Colours, CoverTheRange) {
    EXPECT_EQ(ColourOf(2.0, 2.0, 4.0), "c0");
    EXPECT_EQ(ColourOf(4.0, 2.0, 4.0), "c63");
    EXPECT_EQ(ColourOf(9.0, 2.0, 4.0), "c63");
    EXPECT_EQ(ColourOf(5.0, 5.0, 5.0), "c32");
    EXPECT_EQ(ColourOf(1e308, -1.7e308, 1.7e308), "c50");  // the range is beyond a double
}

TEST(Numbers, AreShortOrExact) {
    EXPECT_EQ(ExactText(0.1), "0.1");
    EXPECT_EQ(ExactText(kNaN), "nan");
    EXPECT_EQ(RoundedText(1.2345, 2), "1.23");
    EXPECT_EQ(RoundedText(-1e300, 2), "-1e+300");
    EXPECT_EQ(RoundedText(999'999'999, 0), "999999999");
    EXPECT_EQ(RoundedText(1e9, 0), "1e+09");
    EXPECT_EQ(DecimalsFor(1.41), 2);
    EXPECT_EQ(DecimalsFor(0.0016), 5);
    EXPECT_EQ(DecimalsFor(247'242), 0);
    EXPECT_EQ(DecimalsFor(kInfinity), 2);
}

TEST(Numbers, MarksCoverTheRangeInRoundSteps) {
    const std::vector<double> marks = MarksBetween(0.96, 1.41);
    EXPECT_NEAR(marks.front(), 0.9, 1e-9);
    EXPECT_NEAR(marks[1], 1.0, 1e-9);
    EXPECT_GE(marks.back(), 1.41);
    EXPECT_EQ(MarksBetween(0.0, 20.0), (std::vector<double>{0, 5, 10, 15, 20}));
    EXPECT_EQ(MarksBetween(3.0, 3.0).size(), 1U);
    EXPECT_LE(MarksBetween(-1.7e308, 1.7e308).size(), 16U);
    EXPECT_LE(MarksBetween(1e17, 1e17 + 64).size(), 16U);
}

TEST(Chart, PutsDosesAtTheirLogarithmAndTheControlApart) {
    std::vector<CRecordingLine> recordings(4);
    recordings[1].dose = 1'000;
    recordings[2].dose = 10'000;
    recordings[3].dose = 100'000;
    const CDoseAxis axis(recordings);
    EXPECT_TRUE(axis.HasControl());
    EXPECT_LT(axis.PlaceOf(0), axis.Begin());
    EXPECT_GT(axis.PlaceOf(1'000), axis.Begin());
    EXPECT_NEAR(axis.PlaceOf(10'000) - axis.PlaceOf(1'000), axis.PlaceOf(100'000) - axis.PlaceOf(10'000), 1e-9);
    EXPECT_LT(axis.PlaceOf(100'000), CChartArea::kRight);
    EXPECT_EQ(CDoseAxis({{"", 7, "", ""}}).PlaceOf(7), (CChartArea::kLeft + CChartArea::kRight) / 2);
}

TEST(Chart, PutsValuesBetweenTopAndBottom) {
    for (const auto& [least, greatest] : {std::pair{0.9, 1.4}, {5.0, 5.0}, {0.0, 0.0}, {-1e308, 1e308}}) {
        const CValueAxis axis(least, greatest);
        EXPECT_LE(axis.PlaceOf(least), CChartArea::kBottom + 1e-6) << least;
        EXPECT_GE(axis.PlaceOf(greatest), CChartArea::kTop - 1e-6) << greatest;
    }
}

/// Returns the number of cells in each row of a table that begins with `tag`.
std::vector<std::size_t> CellsOfRows(const std::string& page, const std::string& tag) {
    std::vector<std::size_t> cells;
    const std::size_t table = page.find(tag);
    const std::size_t end = page.find("</table>", table);
    for (std::size_t at = page.find('<', table); at < end; at = page.find('<', at + 1)) {
        const std::string name = page.substr(at + 1, page.find_first_of(" >", at) - at - 1);
        if (name == "tr") cells.push_back(0);
        if (name == "td" || name == "th") ++cells.back();
    }
    return cells;
}

/// Results of two doses, a control and 10 nM, in the wells with these labels. The values count up from 1.
class PlateValues : public testing::Test {
 protected:
    void Make(const std::vector<std::string>& labels, const std::vector<std::uint64_t>& doses = {0, 10'000}) {
        std::vector<std::int32_t> ids;
        for (std::size_t i = 0; i < labels.size(); ++i)
            ids.push_back(static_cast<std::int32_t>(i) + 1);
        results.Init(1, enTask::Series, "Series", doses, ids, labels);
        double value = 0.0;
        for (CResultsRecording& recording : results.Tasks.at(enTask::Series).Recordings) {
            for (auto& [id, well] : recording.Wells)
                well.SetResults(enResponseType::QTInterval, enValueType::Plain, ++value);
        }
    }

    CPlateValues Values() const { return MakePlateValues({.header = &header, .results = &results}); }

    CResults results;
    CXmlFileHeader header;
};

TEST_F(PlateValues, ArrangesWellsByTheirLabelsWithoutSettings) {
    Make({"B3", "A1", "B3", "spare", "A99"});
    const CPlateValues values = Values();
    EXPECT_EQ(values.rowLabels, (std::vector<std::string>{"A", "B"}));
    EXPECT_EQ(values.columnLabels, (std::vector<std::string>{"1", "2", "3"}));
    EXPECT_EQ(values.WellAt(0, 0), 0U);
    EXPECT_EQ(values.WellAt(1, 2), 1U);
    EXPECT_EQ(values.wells[1].id, 1);  // a second well with this label isn't shown on the plate
    EXPECT_EQ(values.WellAt(0, 1), std::nullopt);
    EXPECT_EQ(values.wells.size(), 5U);
    EXPECT_FALSE(values.wells[2].row.has_value());
    EXPECT_EQ(CellsOfRows(PlatePage(values), "<table class=\"plate choice\""), (std::vector<std::size_t>{4, 4, 4, 4}));
}

TEST_F(PlateValues, ComputesMeansOfMeasuredValuesAndReadsNormalizedOnesFromTheFile) {
    Make({"A1", "A2", "A3"});
    CResultsRecording& control = results.Tasks.at(enTask::Series).Recordings.front();
    control.Wells.at(2).SetResults(enResponseType::QTInterval, enValueType::Plain, kNaN);
    control.Wells.at(1).SetResults(enResponseType::QTInterval, enValueType::Normalized, 5.0);
    results.SetCompoundResults(enTask::Series, 1, enResponseType::QTInterval, 2.5, 0.5, 7);
    const CPlateValues values = Values();
    ASSERT_EQ(values.measures.size(), 2U);
    const CMeasure& normalised = values.measures[0];
    EXPECT_FALSE(normalised.means[0].has_value());
    EXPECT_EQ(normalised.means[1]->mean, 2.5);
    EXPECT_EQ(normalised.means[1]->wells, 7U);
    const CMeasure& measured = values.measures[1];
    EXPECT_EQ(measured.unit, "ticks");
    EXPECT_EQ(measured.means[0]->mean, 2.0);  // of 1 and 3; nan is ignored
    EXPECT_DOUBLE_EQ(measured.means[0]->deviation.value(), std::sqrt(2.0));
    EXPECT_EQ(measured.means[0]->wells, 2U);
    EXPECT_EQ(measured.least, 1.0);
    EXPECT_EQ(measured.greatest, 6.0);
}

TEST_F(PlateValues, NamesDosesOfAnySizeAndTheTaskOnlyIfThereAreSeveral) {
    Make({"A1"}, {0, 10'000, std::numeric_limits<std::uint64_t>::max()});
    const CPlateValues values = Values();
    EXPECT_EQ(values.recordings[0].name, "Control");
    EXPECT_EQ(values.recordings[1].name, "10 nM");
    EXPECT_EQ(values.recordings[2].name, "18446744073709551615 pM");
    results.Init(1, enTask::PreQC, "PreQC", {0}, {1}, {"A1"});
    EXPECT_EQ(Values().recordings[0].name, "Series, Control");
}

TEST_F(PlateValues, RefusesMoreThanAPageCanShow) {
    std::vector<std::string> labels(500, "A1");
    Make(labels, std::vector<std::uint64_t>(100, 0));
    EXPECT_THROW(Values(), CFailure);
}

TEST_F(PlateValues, HaveNoColourIfTheyDoNotCount) {
    Make({"A1", "A2", "A3"}, {0});
    auto& wells = results.Tasks.at(enTask::Series).Recordings.front().Wells;
    for (const auto& [id, value] : {std::pair{1, -1234.0}, {2, 0.5}, {3, kNaN}})
        wells.at(id).SetResults(enResponseType::QTInterval, enValueType::Plain, value);
    const std::string page = PlatePage(Values());
    for (const char* const cell :
         {"<td class=\"c0\" data-w=\"0\"><i>A1</i> -1234</td>", "<td class=\"c63\" data-w=\"1\"><i>A2</i> 0</td>",
          "<td class=\"missing\" data-w=\"2\"><i>A3</i> nan</td>"})
        EXPECT_NE(page.find(cell), std::string::npos) << cell;
}

TEST_F(PlateValues, AreNotJoinedAfterTheControlOrAcrossADoseWithoutAMean) {
    Make({"A1"}, {0, 10'000, 100'000, 1'000'000, 10'000'000});
    CResultsRecording& third = results.Tasks.at(enTask::Series).Recordings[2];
    third.Wells.at(1).SetResults(enResponseType::QTInterval, enValueType::Plain, kNaN);
    const auto path = [](const std::string& page) {
        const std::size_t begin = page.find("<path class=\"mean\"");
        return page.substr(begin, page.find('>', begin) - begin);
    };
    const std::string means = path(PlatePage(Values()));
    EXPECT_EQ(std::ranges::count(means, 'M'), 3) << means;
    EXPECT_EQ(std::ranges::count(means, 'L'), 1) << means;

    third.Wells.at(1).SetResults(enResponseType::QTInterval, enValueType::Normalized, 5.0);
    results.SetCompoundResults(enTask::Series, 1, enResponseType::QTInterval, 2.5, kInfinity, 7);
    const std::string endless = path(PlatePage(Values()));
    EXPECT_EQ(endless.find("nan"), std::string::npos) << "a deviation without end: " << endless;
}

TEST_F(PlateValues, OfTheHighestDoseAreInTheIndex) {
    Make({"A1", "B2"}, {10'000, 1'000'000, 0});
    const CIndexedPlate entry = IndexedPlateOf(Values());
    EXPECT_EQ(entry.measure, "QT-Interval, as measured, 1 \xC2\xB5M");
    EXPECT_EQ(entry.mean, "3.50");  // of 3 and 4
    ASSERT_EQ(entry.colours.size(), 2U);
    EXPECT_EQ(entry.colours[0], (std::vector<int>{25, -1}));  // 63 * (3 - 1) / (6 - 1)
    EXPECT_EQ(entry.colours[1], (std::vector<int>{-1, 38}));
}

TEST_F(PlateValues, HaveBeatsAsWholeMultiplesOfTheirCommonDivisor) {
    Make({"A1", "A2", "A3"}, {0});
    auto& wells = results.Tasks.at(enTask::Series).Recordings.front().Wells;
    wells.at(1).FPfastDetectionTimes = {1000, 3000, 5500};
    wells.at(2).FPfastDetectionTimes = {5, 5, 7};
    wells.at(3).FPfastDetectionTimes = {5, 4};
    const std::string page = PlatePage(Values());
    for (const char* const beats : {R"("beats":{"first":1000,"unit":500,"intervals":[4,5]})",
                                    R"("beats":{"first":5,"unit":2,"intervals":[0,1]})", R"("beats":null)"})
        EXPECT_NE(page.find(beats), std::string::npos) << beats;
}

TEST(PlateGrid, HasThePlacesOfTheSettingsAndTheWellsThatAreInactive) {
    CPropRecordPlate plate;
    struct CCase {
        std::int32_t id, row, column, state;
    };
    for (const CCase& c :
         {CCase{1, 6, 10, PlateWell::kNew}, CCase{2, 0, 0, PlateWell::kInactive}, CCase{3, 0, 1, PlateWell::kActive}}) {
        PlateWell& well = *plate.Data.Wells.emplace_back(std::make_unique<PlateWell>());
        well.WellID = c.id;
        well.PlateRow = c.row;
        well.PlateColumn = c.column;
        well.State = c.state;
    }
    // A plate of 16x6 may be numbered in the other way.
    for (const enPlateLayout layout : {enPlateLayout::L8x12, enPlateLayout::L16x6}) {
        plate.Data.Layout = layout;
        CPlateValues values;
        ArrangeWells(values, {{1, "G11"}, {2, "A1"}, {3, "A2"}}, &plate);
        EXPECT_EQ(values.rowLabels.size(), 8U);
        EXPECT_EQ(values.columnLabels.size(), 12U);
        std::string wells;
        for (const CWellPlace& well : values.wells)
            wells += well.label + (well.isInactive ? " inactive, " : ", ");
        EXPECT_EQ(wells, "A1 inactive, A2, G11, ");
    }
}

TEST_F(PlateValues, MakeAPageWithoutAnyWell) {
    const std::string page = PlatePage(Values());
    EXPECT_NE(page.find("The results have no responses."), std::string::npos);
    EXPECT_EQ(page, PlatePage(Values()));
}

TEST(IndexPage, HoldsTheEntriesThatItWasMadeFrom) {
    CIndexedPlate entry;
    entry.page = "a b\"<.html";
    entry.results = "</script><b>";
    entry.colours = {{0, -1}, {63, 5}};
    entry.isSound = false;
    const std::string index = IndexPage({entry, {}});
    EXPECT_NE(index.find("<tr><th scope=\"col\">Map</th>"), std::string::npos);
    EXPECT_NE(index.find("href=\"a%20b%22%3C.html\""), std::string::npos);
    EXPECT_EQ(index.find("<b>"), std::string::npos);
    const std::vector<CIndexedPlate> read = EntriesOf(index);
    ASSERT_EQ(read.size(), 2U);
    EXPECT_EQ(read[0].page, entry.page);
    EXPECT_EQ(read[0].results, entry.results);
    EXPECT_EQ(read[0].colours, entry.colours);
    EXPECT_FALSE(read[0].isSound);
    std::string other = index;
    EXPECT_TRUE(EntriesOf(other.replace(other.rfind("\"page\""), 6, "\"pane\"")).empty()) << "of another version";
    EXPECT_TRUE(EntriesOf("<html>id=\"entries\">[{}]<").empty());
    EXPECT_TRUE(EntriesOf("").empty());
}

}  // namespace
}  // namespace vxfile::page
