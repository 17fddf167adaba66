#include "vxfileio/base/Enumerations.h"

#include "vxfileio/base/EnumerationWords.h"

using vxfileio::base::ValueOf;
using vxfileio::base::WordOf;

std::string TaskToString(enTask task) { return std::string(WordOf(task)); }
std::string ResponseTypeToString(enResponseType type) { return std::string(WordOf(type)); }
std::string AnalysisMarkToString(enAnalysisMark mark) { return std::string(WordOf(mark)); }
std::string FPmaxTypeToString(enFPmaxType type) { return std::string(WordOf(type)); }
std::string PipetModeToString(enPipetMode mode) { return std::string(WordOf(mode)); }
std::string PlateLayoutToString(enPlateLayout layout) { return std::string(WordOf(layout)); }
std::string AcqModeToString(enAcqMode mode) { return std::string(WordOf(mode)); }
std::string VexaprobeModeToString(enVexaprobeMode mode) { return std::string(WordOf(mode)); }

enTask StringToTask(const std::string& word) { return ValueOf<enTask>(word); }
enResponseType StringToResponseType(const std::string& word) { return ValueOf<enResponseType>(word); }
enAnalysisMark StringToAnalysisMark(const std::string& word) { return ValueOf<enAnalysisMark>(word); }
enFPmaxType StringToFPmaxType(const std::string& word) { return ValueOf<enFPmaxType>(word); }
enPipetMode StringToPipetMode(const std::string& word) { return ValueOf<enPipetMode>(word); }
enPlateLayout StringToPlateLayout(const std::string& word) { return ValueOf<enPlateLayout>(word); }
enAcqMode StringToAcqMode(const std::string& word) { return ValueOf<enAcqMode>(word); }
enVexaprobeMode StringToVexaprobeMode(const std::string& word) { return ValueOf<enVexaprobeMode>(word); }

std::vector<enResponseType> AllResponseTypes() {
    return {enResponseType::NaAmplitude, enResponseType::NaSlope, enResponseType::QTInterval};
}
