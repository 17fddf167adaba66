#include "tools/vxfile/page/PlateValues.h"

#include <algorithm>
#include <cmath>

#include "tools/vxfile/page/PlateGrid.h"
#include "tools/vxfile/report/Text.h"
#include "verify/Failure.h"

namespace vxfile::page {

namespace {

/// The most pairs of well and recording on one page: more than a plate of 384 wells at 100 doses.
constexpr std::size_t kMostPairs = 40'000;

/// One recording of the results with its keys.
struct CSourceRecording {
    enTask task;
    std::int32_t index;
    const CResultsRecording* recording;
};

std::vector<CSourceRecording> RecordingsOf(const CResults& results) {
    std::vector<CSourceRecording> recordings;
    for (const auto& [key, task] : results.Tasks) {
        std::int32_t index = 0;
        for (const CResultsRecording& recording : task.Recordings)
            recordings.push_back({key, index++, &recording});
    }
    return recordings;
}

const std::string& TaskNameOf(const CResults& results, enTask task) { return results.Tasks.at(task).TaskName; }

void SetRecordings(CPlateValues& values, const CResults& results, const std::vector<CSourceRecording>& recordings) {
    for (const CSourceRecording& source : recordings) {
        CRecordingLine& line = values.recordings.emplace_back();
        line.task = Readable(TaskNameOf(results, source.task));
        line.dose = source.recording->Dose;
        line.doseText = line.IsControl() ? "Control" : DoseWithUnit(line.dose);
        line.name = results.Tasks.size() == 1 ? line.doseText : line.task + ", " + line.doseText;
    }
}

/// Returns the labels of all wells of results and settings. Those of the results are used if there are both.
std::map<std::int32_t, std::string> LabelsOf(const std::vector<CSourceRecording>& recordings,
                                             const CPropRecordPlate* plate) {
    std::map<std::int32_t, std::string> labels;
    for (const CSourceRecording& source : recordings) {
        for (const auto& [id, well] : source.recording->Wells) {
            std::string& label = labels[id];
            if (label.empty()) label = well.WellLabel;
        }
    }
    if (plate == nullptr) return labels;
    for (const auto& well : plate->Data.Wells) {
        if (!well) continue;
        std::string& label = labels[well->WellID];
        if (label.empty()) label = well->Label;
    }
    return labels;
}

EState StateOf(const CPropAnalyzer* analyzer, const CSourceRecording& recording, const CWellPlace& well,
               enResponseType type) {
    if (well.isInactive) return EState::Inactive;
    if (analyzer == nullptr || !analyzer->AnalyzeSettings.contains(recording.task)) return EState::Counted;
    if (!analyzer->IsWellAnalyzed(recording.task, recording.index, well.id)) return EState::NotAnalysed;
    const enAnalysisMark mark = analyzer->GetResponseMark(recording.task, recording.index, well.id, type);
    return mark == enAnalysisMark::Deselected ? EState::Deselected : EState::Counted;
}

/// Returns mean and sample standard deviation of the values that count; nothing without any. One value has no
/// deviation.
std::optional<CMean> MeanOf(const std::vector<CWellValue>& values) {
    CMean mean;
    for (const CWellValue& value : values) {
        if (!value.Counts()) continue;
        mean.mean += *value.value;
        ++mean.wells;
    }
    if (mean.wells == 0) return {};
    mean.mean /= static_cast<double>(mean.wells);
    if (mean.wells == 1) return mean;
    double squares = 0.0;
    for (const CWellValue& value : values) {
        if (value.Counts()) squares += (*value.value - mean.mean) * (*value.value - mean.mean);
    }
    mean.deviation = std::sqrt(squares / static_cast<double>(mean.wells - 1));
    return mean;
}

std::optional<CMean> StoredMeanOf(const CResultsRecording& recording, enResponseType type) {
    const auto found = recording.NormalizedResponses.find(type);
    if (found == recording.NormalizedResponses.end()) return {};
    return CMean{found->second.normMean, found->second.normStdDev, found->second.Samples};
}

void SetRange(CMeasure& measure) {
    bool isFirst = true;
    for (const auto& recording : measure.values) {
        for (const CWellValue& value : recording) {
            if (!value.Counts()) continue;
            measure.least = isFirst ? *value.value : std::min(measure.least, *value.value);
            measure.greatest = isFirst ? *value.value : std::max(measure.greatest, *value.value);
            isFirst = false;
        }
    }
}

/// The responses that are times are in the time unit of the run, which no file names: ticks. Voltages are in a unit
/// that no file names either.
std::string UnitOf(enResponseType type, enValueType kind) {
    return type == enResponseType::QTInterval && kind == enValueType::Plain ? "ticks" : "";
}

/// Collects the values of responses.
class CMeasures {
 public:
    CMeasures(const CPlateValues& values, const std::vector<CSourceRecording>& recordings,
              const CPropAnalyzer* analyzer)
        : m_values(values), m_recordings(recordings), m_analyzer(analyzer) {}

    CMeasure Measure(enResponseType type, enValueType kind) const {
        CMeasure measure;
        measure.response = ResponseTypeToString(type);
        measure.unit = UnitOf(type, kind);
        measure.isNormalized = kind == enValueType::Normalized;
        for (std::size_t i = 0; i < m_recordings.size(); ++i)
            measure.values.push_back(ValuesOf(i, type, kind));
        SetMeans(measure, type);
        SetRange(measure);
        return measure;
    }

 private:
    /// Normalised values have means in the file, or else the values that count have one.
    void SetMeans(CMeasure& measure, enResponseType type) const {
        const auto isStored = [&](const CSourceRecording& source) { return source.recording->ResultsExist(type); };
        measure.hasStoredMeans = measure.isNormalized && std::ranges::any_of(m_recordings, isStored);
        for (std::size_t i = 0; i < m_recordings.size(); ++i)
            measure.means.push_back(measure.hasStoredMeans ? StoredMeanOf(*m_recordings[i].recording, type)
                                                           : MeanOf(measure.values[i]));
    }

    std::vector<CWellValue> ValuesOf(std::size_t recording, enResponseType type, enValueType kind) const {
        std::vector<CWellValue> values;
        for (std::size_t i = 0; i < m_values.wells.size(); ++i) {
            CWellValue& value = values.emplace_back();
            value.state = StateOf(m_analyzer, m_recordings[recording], m_values.wells[i], type);
            const CResultsWell* well = m_values.details[recording][i];
            if (well != nullptr && well->ResultsExist(type, kind)) value.value = well->GetResults(type, kind);
        }
        return values;
    }

    const CPlateValues& m_values;
    const std::vector<CSourceRecording>& m_recordings;
    const CPropAnalyzer* m_analyzer;
};

bool HasValues(const CMeasure& measure) {
    const auto isThere = [](const CWellValue& value) { return value.value.has_value(); };
    return std::ranges::any_of(measure.values,
                               [&](const auto& values) { return std::ranges::any_of(values, isThere); });
}

void SetDetails(CPlateValues& values, const std::vector<CSourceRecording>& recordings) {
    for (const CSourceRecording& source : recordings) {
        auto& details = values.details.emplace_back();
        for (const CWellPlace& well : values.wells) {
            const auto found = source.recording->Wells.find(well.id);
            details.push_back(found == source.recording->Wells.end() ? nullptr : &found->second);
        }
    }
}

void AddFact(CPlateValues& values, std::string_view name, std::string_view text) {
    if (!text.empty()) values.facts.emplace_back(name, Readable(text));
}

/// Returns the names of the tasks whose check was made, in a text.
std::string ChecksOf(const CPropQualityCheck& checks) {
    std::string text;
    for (const auto& [task, check] : checks.QualityChecks) {
        if (!check.EnableQC) continue;
        text += (text.empty() ? "" : ", ") + check.TaskName + (check.QCPerformed.empty() ? " (not made)" : " (made)");
    }
    return text;
}

std::string DosesOf(const CPlateValues& values) {
    std::string text;
    for (const CRecordingLine& recording : values.recordings)
        text += (text.empty() ? "" : ", ") + recording.name;
    return text;
}

void SetFacts(CPlateValues& values, const CPlateSource& source) {
    const CXmlFileHeader& header = *source.header;
    AddFact(values, "Recorded", header.RecordingDateString);
    AddFact(values, "Instrument", header.VexaprobeMode);
    if (source.settings != nullptr) {
        const CPropNotebook& notebook = *source.settings->GetNotebookProperty();
        AddFact(values, "Experiment", notebook.ExperimentID);
        AddFact(values, "Study", notebook.StudyDesignator);
        AddFact(values, "Scientist", notebook.Scientist);
        AddFact(values, "Operator", notebook.Operator);
        AddFact(values, "Species", notebook.Species);
        AddFact(values, "Comment", notebook.Comment);
        AddFact(values, "Quality checks", ChecksOf(*source.settings->GetQualityCheckProperty()));
    }
    values.facts.emplace_back("Wells", std::to_string(values.wells.size()));
    if (!values.recordings.empty()) values.facts.emplace_back("Doses", DosesOf(values));
    AddFact(values, "Guid", header.Guid);
}

void SetNames(CPlateValues& values, const CPlateSource& source, const CPropRecordPlate* plate) {
    values.compound = Readable(source.header->CompoundName);
    if (values.compound.empty()) values.compound = "Unnamed compound";
    if (plate == nullptr) {
        values.layout = "arranged by labels";
        return;
    }
    values.layout = PlateLayoutToString(plate->Data.Layout);
    if (plate->Data.PlateID > ' ') values.plate = "plate " + Readable(std::string(1, plate->Data.PlateID));
}

void RefuseTooLarge(std::size_t wells, std::size_t recordings) {
    if (recordings == 0 || wells <= kMostPairs / recordings) return;
    throw CFailure("The results have " + Counted(wells, "well") + " and " + Counted(recordings, "recording") +
                   ", more than one page can show; check whether the file is damaged with vxfile verify.");
}

}  // namespace

bool CWellValue::Counts() const { return state == EState::Counted && value.has_value() && std::isfinite(*value); }

std::string CMeasure::Name() const { return response + (isNormalized ? ", normalised" : ", as measured"); }

std::optional<std::size_t> CPlateValues::WellAt(std::size_t row, std::size_t column) const {
    const auto isThere = [&](const CWellPlace& well) { return well.row == row && well.column == column; };
    const auto found = std::ranges::find_if(wells, isThere);
    if (found == wells.end()) return {};
    return static_cast<std::size_t>(found - wells.begin());
}

CPlateValues MakePlateValues(const CPlateSource& source) {
    CPlateValues values;
    values.files = source.files;
    values.notes = source.notes;
    const CPropRecordPlate* plate = source.settings == nullptr ? nullptr : source.settings->GetRecordPlateProperty();
    const std::vector<CSourceRecording> recordings = RecordingsOf(*source.results);
    const auto labels = LabelsOf(recordings, plate);
    RefuseTooLarge(labels.size(), recordings.size());

    SetNames(values, source, plate);
    ArrangeWells(values, labels, plate);
    SetRecordings(values, *source.results, recordings);
    SetDetails(values, recordings);
    SetFacts(values, source);
    const CMeasures measures(values, recordings,
                             source.settings == nullptr ? nullptr : source.settings->GetAnalyzerProperty());
    std::vector<enResponseType> types = AllResponseTypes();
    types.push_back(enResponseType::NotDefined);  // what the library doesn't know by name
    for (const enResponseType type : types) {
        for (const enValueType kind : {enValueType::Normalized, enValueType::Plain}) {
            CMeasure measure = measures.Measure(type, kind);
            if (HasValues(measure)) values.measures.push_back(std::move(measure));
        }
    }
    return values;
}

}  // namespace vxfile::page
