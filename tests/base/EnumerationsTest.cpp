#include <gtest/gtest.h>

#include <vector>

#include "vxfileio/base/EnumerationWords.h"

using vxfileio::base::ValueOf;
using vxfileio::base::WordOf;

namespace {

/// Compares the words with their table in both directions, and the fallbacks below and above it.
template <class Enumeration>
void ExpectWords(const std::vector<std::string>& words, const std::string& unknownNumber, int unknownWord) {
    for (std::size_t number = 0; number < words.size(); ++number) {
        EXPECT_EQ(WordOf(static_cast<Enumeration>(number)), words[number]);
        EXPECT_EQ(static_cast<std::size_t>(ValueOf<Enumeration>(words[number])), number) << words[number];
    }
    for (const int number : {-1, static_cast<int>(words.size()), 2147483647, -2147483647 - 1}) {
        EXPECT_EQ(WordOf(static_cast<Enumeration>(number)), unknownNumber) << number;
    }
    for (const std::string word : {"", " ", "notdefined", "SERIES", "Series ", " Series", "Seri", "nil"}) {
        EXPECT_EQ(static_cast<int>(ValueOf<Enumeration>(word)), unknownWord) << word;
    }
}

TEST(EnumerationsTest, EveryWordHasItsNumberAndUnknownOnesTheFallback) {
    ExpectWords<enTask>({"Notebook", "Compounds", "Viability", "CompoundTest", "Dilute", "Washout", "Washin", "Pipet",
                         "Series", "Analyze", "PreQC", "PostQC", "Reportsheet", "Inspect", "Nil"},
                        "", 14);
    ExpectWords<enResponseType>({"NotDefined", "Na-Amplitude", "Na-Slope", "QT-Interval"}, "NotDefined", 0);
    ExpectWords<enAnalysisMark>({"Undefined", "Automatic", "Manually", "Deselected"}, "Undefined", 0);
    ExpectWords<enFPmaxType>(
        {"Undefined", "PositivePeak", "NegativePeak", "DecreasingToBaseline", "IncreasingToBaseline"}, "Undefined", 0);
    ExpectWords<enPipetMode>({"NotDefined", "Fast", "SaveCompounds", "Manual"}, "NotDefined", 0);
    ExpectWords<enPlateLayout>({"NotDefined", "8x12", "16x6", "Ostrel6x9"}, "NotDefined", 0);
    ExpectWords<enAcqMode>({"NotDefined", "Online", "Offline", "Simulation"}, "NotDefined", 0);
    ExpectWords<enVexaprobeMode>({"NotDefined", "Tecan", "Norva", "Ostrel96"}, "NotDefined", 0);
    ExpectWords<enFPAveIntervalType>({"Undefined", "UserDefined", "HeartRateDefined"}, "Undefined", 0);
}

TEST(EnumerationsTest, EachPublicConversionUsesItsOwnTable) {
    EXPECT_EQ(TaskToString(enTask::Washin), "Washin");
    EXPECT_EQ(ResponseTypeToString(enResponseType::QTInterval), "QT-Interval");
    EXPECT_EQ(AnalysisMarkToString(enAnalysisMark::Deselected), "Deselected");
    EXPECT_EQ(FPmaxTypeToString(enFPmaxType::DecreasingToBaseline), "DecreasingToBaseline");
    EXPECT_EQ(PipetModeToString(enPipetMode::SaveCompounds), "SaveCompounds");
    EXPECT_EQ(PlateLayoutToString(enPlateLayout::L16x6), "16x6");
    EXPECT_EQ(AcqModeToString(enAcqMode::Simulation), "Simulation");
    EXPECT_EQ(VexaprobeModeToString(enVexaprobeMode::Norva), "Norva");
    EXPECT_EQ(StringToTask("Washin"), enTask::Washin);
    EXPECT_EQ(StringToResponseType("QT-Interval"), enResponseType::QTInterval);
    EXPECT_EQ(StringToAnalysisMark("Deselected"), enAnalysisMark::Deselected);
    EXPECT_EQ(StringToFPmaxType("DecreasingToBaseline"), enFPmaxType::DecreasingToBaseline);
    EXPECT_EQ(StringToPipetMode("SaveCompounds"), enPipetMode::SaveCompounds);
    EXPECT_EQ(StringToPlateLayout("16x6"), enPlateLayout::L16x6);
    EXPECT_EQ(StringToAcqMode("Simulation"), enAcqMode::Simulation);
    EXPECT_EQ(StringToVexaprobeMode("Norva"), enVexaprobeMode::Norva);
}

TEST(EnumerationsTest, MeasuredResponsesAreOneToThree) {
    std::vector<int> numbers;
    for (const auto type : AllResponseTypes())
        numbers.push_back(static_cast<int>(type));
    EXPECT_EQ(numbers, (std::vector<int>{1, 2, 3}));
}

}  // namespace
