#include <gtest/gtest.h>

#include <vector>

#include "vxfileio/base/Enumerations.h"
#include "vxfileio/settings/PropAnalyzer.h"

namespace {

/// Compares the words with their table in both directions, and the fallbacks below and above it.
template <class Enumeration>
void ExpectWords(const std::vector<std::string>& words, const std::string& unknownNumber, int unknownWord,
                 std::string (*toString)(Enumeration), Enumeration (*fromString)(const std::string&)) {
    for (std::size_t number = 0; number < words.size(); ++number) {
        EXPECT_EQ(toString(static_cast<Enumeration>(number)), words[number]);
        EXPECT_EQ(static_cast<std::size_t>(fromString(words[number])), number) << words[number];
    }
    for (const int number : {-1, static_cast<int>(words.size()), 2147483647, -2147483647 - 1}) {
        EXPECT_EQ(toString(static_cast<Enumeration>(number)), unknownNumber) << number;
    }
    for (const std::string word : {"", " ", "notdefined", "SERIES", "Series ", " Series", "Seri", "nil"}) {
        EXPECT_EQ(static_cast<int>(fromString(word)), unknownWord) << word;
    }
}

TEST(EnumerationsTest, EveryWordHasItsNumberAndUnknownOnesTheFallback) {
    ExpectWords({"Notebook", "Compounds", "Viability", "CompoundTest", "Dilute", "Washout", "Washin", "Pipet", "Series",
                 "Analyze", "PreQC", "PostQC", "Reportsheet", "Inspect", "Nil"},
                "", 14, TaskToString, StringToTask);
    ExpectWords({"NotDefined", "Na-Amplitude", "Na-Slope", "QT-Interval"}, "NotDefined", 0, ResponseTypeToString,
                StringToResponseType);
    ExpectWords({"Undefined", "Automatic", "Manually", "Deselected"}, "Undefined", 0, AnalysisMarkToString,
                StringToAnalysisMark);
    ExpectWords({"Undefined", "PositivePeak", "NegativePeak", "DecreasingToBaseline", "IncreasingToBaseline"},
                "Undefined", 0, FPmaxTypeToString, StringToFPmaxType);
    ExpectWords({"NotDefined", "Fast", "SaveCompounds", "Manual"}, "NotDefined", 0, PipetModeToString,
                StringToPipetMode);
    ExpectWords({"NotDefined", "8x12", "16x6", "Ostrel6x9"}, "NotDefined", 0, PlateLayoutToString, StringToPlateLayout);
    ExpectWords({"NotDefined", "Online", "Offline", "Simulation"}, "NotDefined", 0, AcqModeToString, StringToAcqMode);
    ExpectWords({"NotDefined", "Tecan", "Norva", "Ostrel96"}, "NotDefined", 0, VexaprobeModeToString,
                StringToVexaprobeMode);
    ExpectWords({"Undefined", "UserDefined", "HeartRateDefined"}, "Undefined", 0,
                CPropAnalyzer::FPAveIntervalTypeToString, CPropAnalyzer::StringToFPAveIntervalType);
}

TEST(EnumerationsTest, MeasuredResponsesAreOneToThree) {
    std::vector<int> numbers;
    for (const auto type : AllResponseTypes())
        numbers.push_back(static_cast<int>(type));
    EXPECT_EQ(numbers, (std::vector<int>{1, 2, 3}));
}

}  // namespace
