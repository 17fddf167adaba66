#pragma once

#include <array>
#include <cstddef>
#include <string_view>
#include <type_traits>

#include "vxfileio/base/Enumerations.h"

/// @file
/// One table of words per enumeration, and the two conversions that every table goes through.
///
/// A word's place in its table is its number, so a table can only grow at its end.

namespace vxfileio::base {

/// The words of one enumeration, and the fallbacks for unknown words and numbers.
template <class Enumeration, std::size_t N>
struct CWordTable {
    std::array<std::string_view, N> words;
    std::string_view unknownNumber;  ///< Word of a number outside the table.
    Enumeration unknownWord;         ///< Number of a word outside the table.
};

/// The table of an enumeration; each enumeration with words has a specialisation below.
template <class Enumeration>
inline constexpr std::nullptr_t kWords = nullptr;

template <>
inline constexpr CWordTable<enTask, 15> kWords<enTask> = {
    {"Notebook", "Compounds", "Viability", "CompoundTest", "Dilute", "Washout", "Washin", "Pipet", "Series", "Analyze",
     "PreQC", "PostQC", "Reportsheet", "Inspect", "Nil"},
    "",
    enTask::Nil};

template <>
inline constexpr CWordTable<enResponseType, 4> kWords<enResponseType> = {
    {"NotDefined", "Na-Amplitude", "Na-Slope", "QT-Interval"}, "NotDefined", enResponseType::NotDefined};

template <>
inline constexpr CWordTable<enAnalysisMark, 4> kWords<enAnalysisMark> = {
    {"Undefined", "Automatic", "Manually", "Deselected"}, "Undefined", enAnalysisMark::Undefined};

template <>
inline constexpr CWordTable<enFPmaxType, 5> kWords<enFPmaxType> = {
    {"Undefined", "PositivePeak", "NegativePeak", "DecreasingToBaseline", "IncreasingToBaseline"},
    "Undefined",
    enFPmaxType::Undefined};

template <>
inline constexpr CWordTable<enPipetMode, 4> kWords<enPipetMode> = {
    {"NotDefined", "Fast", "SaveCompounds", "Manual"}, "NotDefined", enPipetMode::NotDefined};

template <>
inline constexpr CWordTable<enPlateLayout, 4> kWords<enPlateLayout> = {
    {"NotDefined", "8x12", "16x6", "Ostrel6x9"}, "NotDefined", enPlateLayout::NotDefined};

template <>
inline constexpr CWordTable<enAcqMode, 4> kWords<enAcqMode> = {
    {"NotDefined", "Online", "Offline", "Simulation"}, "NotDefined", enAcqMode::NotDefined};

template <>
inline constexpr CWordTable<enVexaprobeMode, 4> kWords<enVexaprobeMode> = {
    {"NotDefined", "Tecan", "Norva", "Ostrel96"}, "NotDefined", enVexaprobeMode::NotDefined};

template <>
inline constexpr CWordTable<enFPAveIntervalType, 3> kWords<enFPAveIntervalType> = {
    {"Undefined", "UserDefined", "HeartRateDefined"}, "Undefined", enFPAveIntervalType::Undefined};

/// Returns the word of a number, or the table's fallback. The text is constant.
template <class Enumeration>
constexpr std::string_view WordOf(Enumeration value) {
    const auto& table = kWords<Enumeration>;
    const auto number = static_cast<std::underlying_type_t<Enumeration>>(value);
    if (number < 0 || static_cast<std::size_t>(number) >= table.words.size()) return table.unknownNumber;
    return table.words[static_cast<std::size_t>(number)];
}

/// Returns the number of a word, or the table's fallback.
template <class Enumeration>
constexpr Enumeration ValueOf(std::string_view word) {
    const auto& table = kWords<Enumeration>;
    for (std::size_t number = 0; number < table.words.size(); ++number) {
        if (table.words[number] == word) return static_cast<Enumeration>(number);
    }
    return table.unknownWord;
}

}  // namespace vxfileio::base
