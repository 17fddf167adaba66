#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "vxfileio/base/Api.h"

/// @file
/// The enumerations of the system and their words.
///
/// Callers hold numbers, settings and results files hold words; both are fixed for ever, because stored files depend
/// on the words and callers on the numbers. No conversion fails: an unknown number or word gets the fallback that the
/// enumeration names. Words are compared as a whole, byte by byte; case matters.

/// The steps of a screening run. An unknown word becomes `Nil`, an unknown number an empty word.
enum class enTask : std::int32_t {
    Notebook = 0,
    Compounds = 1,
    Viability = 2,
    CompoundTest = 3,
    Dilute = 4,
    Washout = 5,
    Washin = 6,
    Pipet = 7,
    Series = 8,
    Analyze = 9,
    PreQC = 10,
    PostQC = 11,
    Reportsheet = 12,
    Inspect = 13,
    Nil = 14,
};

/// The measured responses ("Na-Amplitude", ...). Unknown: `NotDefined`.
enum class enResponseType : std::int32_t {
    NotDefined = 0,
    NaAmplitude = 1,
    NaSlope = 2,
    QTInterval = 3,
};

/// How a response of a well came to be analysed. Unknown: `Undefined`.
enum class enAnalysisMark : std::int32_t {
    Undefined = 0,
    Automatic = 1,
    Manually = 2,
    Deselected = 3,
};

/// The shape of the field potential maximum. Unknown: `Undefined`.
enum class enFPmaxType : std::int32_t {
    Undefined = 0,
    PositivePeak = 1,
    NegativePeak = 2,
    DecreasingToBaseline = 3,
    IncreasingToBaseline = 4,
};

/// The pipetting mode of a plate. Unknown: `NotDefined`.
enum class enPipetMode : std::int32_t {
    NotDefined = 0,
    Fast = 1,
    SaveCompounds = 2,
    Manual = 3,
};

/// The layout of a plate ("8x12", "16x6", "Ostrel6x9"). Unknown: `NotDefined`.
enum class enPlateLayout : std::int32_t {
    NotDefined = 0,
    L8x12 = 1,
    L16x6 = 2,
    Ostrel6x9 = 3,
};

/// How the robot and the data acquisition are driven. Unknown: `NotDefined`.
enum class enAcqMode : std::int32_t {
    NotDefined = 0,
    Online = 1,
    Offline = 2,
    Simulation = 3,
};

/// The kind of instrument. Unknown: `NotDefined`.
enum class enVexaprobeMode : std::int32_t {
    NotDefined = 0,
    Tecan = 1,
    Norva = 2,
    Ostrel96 = 3,
};

/// How the averaging interval of field potentials is defined. Unknown: `Undefined`.
enum class enFPAveIntervalType : std::int32_t {
    Undefined = 0,
    UserDefined = 1,
    HeartRateDefined = 2,
};

/// Which values of a well are meant: as measured, or after the caller's normalisation. Any number but `Normalized`
/// means the plain ones. It has no words.
enum class enValueType : std::int32_t {
    Plain = 0,
    Normalized = 1,
};

/// @name Number to word
/// Each returns the word of the number, or the fallback of its enumeration.
/// @{
VXFILEIO_API std::string TaskToString(enTask task);                    ///< The word of a step.
VXFILEIO_API std::string ResponseTypeToString(enResponseType type);    ///< The word of a response.
VXFILEIO_API std::string AnalysisMarkToString(enAnalysisMark mark);    ///< The word of a mark.
VXFILEIO_API std::string FPmaxTypeToString(enFPmaxType type);          ///< The word of a shape.
VXFILEIO_API std::string PipetModeToString(enPipetMode mode);          ///< The word of a pipetting mode.
VXFILEIO_API std::string PlateLayoutToString(enPlateLayout layout);    ///< The word of a layout.
VXFILEIO_API std::string AcqModeToString(enAcqMode mode);              ///< The word of a mode.
VXFILEIO_API std::string VexaprobeModeToString(enVexaprobeMode mode);  ///< The word of an instrument.
/// @}

/// @name Word to number
/// Each returns the number of the word, or the fallback of its enumeration.
/// @{
VXFILEIO_API enTask StringToTask(const std::string& word);                    ///< The step of a word.
VXFILEIO_API enResponseType StringToResponseType(const std::string& word);    ///< The response of a word.
VXFILEIO_API enAnalysisMark StringToAnalysisMark(const std::string& word);    ///< The mark of a word.
VXFILEIO_API enFPmaxType StringToFPmaxType(const std::string& word);          ///< The shape of a word.
VXFILEIO_API enPipetMode StringToPipetMode(const std::string& word);          ///< The pipetting mode of a word.
VXFILEIO_API enPlateLayout StringToPlateLayout(const std::string& word);      ///< The layout of a word.
VXFILEIO_API enAcqMode StringToAcqMode(const std::string& word);              ///< The mode of a word.
VXFILEIO_API enVexaprobeMode StringToVexaprobeMode(const std::string& word);  ///< The instrument of a word.
/// @}

/// Returns the responses that can be measured, in the order of their numbers; `NotDefined` isn't among them.
VXFILEIO_API std::vector<enResponseType> AllResponseTypes();
