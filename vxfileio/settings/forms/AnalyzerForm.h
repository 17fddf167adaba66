#pragma once

#include "vxfileio/helpers/FileTime.h"
#include "vxfileio/settings/PropAnalyzer.h"
#include "vxfileio/xmlarchive/XmlFields.h"

namespace vxfileio::settings {

using namespace xmlarchive;

/// The date as a text for people. It is written, never read.
struct CDateTextField {
    std::string_view tag = "AnalyzingDateString";

    constexpr CXmlElement Element() const noexcept { return {.tag = tag, .isRead = false}; }
    void Put(CXmlFileArchive& archive, const CPropAnalyzer& analyzer) const {
        archive.PutValue(helpers::FileTimeToText(analyzer.AnalyzingDate));
    }
    void Get(CXmlFileArchive& /*archive*/, CPropAnalyzer& /*analyzer*/) const {}
};

// ---- The marks: tasks, recordings and wells, each a list inside the one before --------------------------------------

using CTaskMarks = std::map<enTask, TaskAnalysis>;

/// The marks of one level to be written, with only these wells in the order of their IDs here; null means all wells.
template <class Marks>
struct CMarksToSave {
    const Marks& marks;
    const std::vector<std::int32_t>* wellIDs;
};

/// Reads a list up to its end tag, and its entries by `load()` at their start. A list without children has no end tag,
/// even if its `Size` is above 0.
template <class Load>
void LoadList(CXmlFileArchive& archive, std::string_view tag, std::string_view entryTag, Load load) {
    if (!archive.ListHasEntries() || !HasChildren(archive)) return;
    ForEachEventUntil(archive, tag, [&] {
        if (IsStartOf(archive, entryTag)) load();
    });
}

/// The mark of each response: an element whose tag is the response's word and whose text is the mark's.
struct CResponseMarksField {
    using CObject = WellAnalysis;
    std::string_view tag = "Responses";

    /// All responses but the unknown one, which is the first in its table.
    static constexpr auto kMarks = [] {
        constexpr auto words = base::kWords<enResponseType>.words;
        std::array<CXmlElement, words.size() - 1> marks{};
        for (std::size_t i = 0; i < marks.size(); ++i)
            marks[i] = ElementOfValue<enAnalysisMark>(words[i + 1]);
        return marks;
    }();

    constexpr CXmlElement Element() const noexcept { return {.tag = tag, .kind = EXmlKind::List, .children = kMarks}; }
    const auto& Value(const WellAnalysis& well) const noexcept { return well.Responses; }
    void Put(CXmlFileArchive& archive, const WellAnalysis& well) const {
        PutList(archive, well.Responses,
                [&](const auto& response) { SaveValue(archive, base::WordOf(response.first), response.second); });
    }
    /// Only notes the list's `Size`: `LoadMark` finds the marks wherever they are.
    void Get(CXmlFileArchive& archive, WellAnalysis& /*well*/) const { static_cast<void>(archive.ListHasEntries()); }

    /// Reads the mark that the archive is at the start of; skips anything else.
    static void LoadMark(CXmlFileArchive& archive, WellAnalysis& well) {
        if (archive.IsEndTag()) return;
        const auto response = well.Responses.find(base::ValueOf<enResponseType>(archive.TagName()));
        if (response != well.Responses.end()) GetPlain(archive, response->second);
    }
};

struct CMarkedWellForm {
    static constexpr std::string_view kElement = "Well";
    static constexpr CKeyField<std::int32_t> kKey{"WellID", -1};
    static constexpr auto kFields = std::tuple{
        CValueField{"Analyze", &WellAnalysis::Analyze},
        settings::CResponseMarksField{},
    };
};

/// The wells of a recording.
struct CMarkedWellsField {
    using CEntryForm = CMarkedWellForm;
    std::string_view tag = "Wells";

    constexpr CXmlElement Element() const noexcept { return ElementOfList<CEntryForm>(tag); }

    static std::vector<RecordingAnalysis::const_pointer> Chosen(const CMarksToSave<RecordingAnalysis>& source) {
        std::vector<RecordingAnalysis::const_pointer> wells;
        wells.reserve(source.wellIDs == nullptr ? source.marks.size() : source.wellIDs->size());
        if (source.wellIDs == nullptr) {
            for (const auto& well : source.marks)
                wells.push_back(&well);
            return wells;
        }
        for (const std::int32_t wellID : *source.wellIDs) {
            const auto well = source.marks.find(wellID);
            if (well != source.marks.end()) wells.push_back(&*well);
        }
        return wells;
    }
    void Put(CXmlFileArchive& archive, const CMarksToSave<RecordingAnalysis>& source) const {
        PutList(archive, Chosen(source),
                [&](const auto* well) { SaveKeyed<CEntryForm>(archive, well->first, well->second); });
    }
    void Get(CXmlFileArchive& archive, RecordingAnalysis& wells) const {
        const WellAnalysis start;  // made once, since a copy is faster
        const auto load = [&] {
            const std::int32_t wellID = CEntryForm::kKey.Read(archive);
            WellAnalysis well = start;
            ForEachEventUntil(archive, CEntryForm::kElement, [&] {
                if (!GetField(archive, CEntryForm::kFields, well)) CResponseMarksField::LoadMark(archive, well);
            });
            wells.insert_or_assign(wells.end(), wellID, std::move(well));
        };
        LoadList(archive, tag, CEntryForm::kElement, [&] { LoadKeyed(archive, load); });
    }
};

/// A recording, an element `Recording` whose first child is a `Recording` too: its number.
struct CMarkedRecordingForm {
    static constexpr std::string_view kElement = "Recording";
    static constexpr CKeyField<std::int32_t> kKey{"Recording"};
    static constexpr auto kFields = std::tuple{settings::CMarkedWellsField{}};
};

/// The recordings of a task. Their numbers are those of the order in the document; the written ones are only checked.
struct CMarkedRecordingsField {
    using CEntryForm = CMarkedRecordingForm;
    std::string_view tag = "Recordings";

    constexpr CXmlElement Element() const noexcept { return ElementOfList<CEntryForm>(tag); }
    void Put(CXmlFileArchive& archive, const CMarksToSave<TaskAnalysis>& source) const {
        std::int32_t number = 0;
        PutList(archive, source.marks, [&](const RecordingAnalysis& recording) {
            SaveKeyed<CEntryForm>(archive, number++, CMarksToSave<RecordingAnalysis>{recording, source.wellIDs});
        });
    }
    void Get(CXmlFileArchive& archive, TaskAnalysis& recordings) const {
        LoadList(archive, tag, CEntryForm::kElement, [&] {
            RecordingAnalysis wells;
            LoadKeyed(archive, [&] {
                CEntryForm::kKey.Read(archive);
                LoadFields<CEntryForm>(archive, wells);
            });
            recordings.push_back(std::move(wells));
        });
    }
};

struct CMarkedTaskForm {
    static constexpr std::string_view kElement = "Task";
    static constexpr CKeyField<enTask> kKey{.tag = "TaskName", .mayBeEmpty = true};
    static constexpr auto kFields = std::tuple{settings::CMarkedRecordingsField{}};
};

/// The tasks. One whose first child isn't its name is dropped, as is one without children.
struct CMarkedTasksField {
    using CEntryForm = CMarkedTaskForm;
    std::string_view tag = "Tasks";

    constexpr CXmlElement Element() const noexcept { return ElementOfList<CEntryForm>(tag); }
    void Put(CXmlFileArchive& archive, const CMarksToSave<CTaskMarks>& source) const {
        PutList(archive, source.marks, [&](const auto& task) {
            SaveKeyed<CEntryForm>(archive, task.first, CMarksToSave<TaskAnalysis>{task.second, source.wellIDs});
        });
    }
    void Get(CXmlFileArchive& archive, CTaskMarks& tasks) const {
        const auto load = [&] {
            const bool isNamed = IsStartOf(archive, CEntryForm::kKey.tag);
            const enTask task = CEntryForm::kKey.Read(archive);
            TaskAnalysis recordings;
            LoadFields<CEntryForm>(archive, recordings);
            if (isNamed) tasks[task] = std::move(recordings);
        };
        LoadList(archive, tag, CEntryForm::kElement, [&] { LoadKeyed(archive, load); });
    }
};

struct CMarksForm {
    static constexpr std::string_view kElement = "AnalyzeSettings";
    static constexpr auto kFields = std::tuple{CMarkedTasksField{}};
};

/// All marks of an analyzer.
struct CMarksField {
    using CObject = CPropAnalyzer;
    using CEntryForm = CMarksForm;
    std::string_view tag = CMarksForm::kElement;

    constexpr CXmlElement Element() const noexcept { return kElementOf<CMarksForm>; }
    const auto& Value(const CPropAnalyzer& analyzer) const noexcept { return analyzer.AnalyzeSettings; }
    void Put(CXmlFileArchive& archive, const CMarksToSave<CTaskMarks>& source) const {
        PutFields(archive, CMarksForm::kFields, source);
    }
    void Get(CXmlFileArchive& archive, CPropAnalyzer& analyzer) const {
        if (HasChildren(archive)) LoadFields<CMarksForm>(archive, analyzer.AnalyzeSettings);
    }
};

}  // namespace vxfileio::settings

namespace vxfileio::xmlarchive {

/// The objects to be written are the analyzer and a `CMarksToSave` with its marks.
template <>
struct CXmlForm<CPropAnalyzer> {
    using Analyzer = CPropAnalyzer;
    static constexpr std::string_view kElement = "PropertyAnalyzer";
    static constexpr auto kFields = std::tuple{
        CTextField{"Operator", &Analyzer::Operator},
        CTextField{"Program", &Analyzer::Program},
        CTextField{"ProgramVersion", &Analyzer::ProgramVersion},
        CValueField{"AnalyzingDate", &Analyzer::AnalyzingDate},
        settings::CDateTextField{},
        settings::CMarksField{},
        CValueField{"FPAveIntervalType", &Analyzer::FPAveIntervalType},
        CValueField{"FPAveHRDefinedFactor", &Analyzer::FPAveHRDefinedFactor},
        CValueField{"PreFPfastTime", &Analyzer::PreFPfastTime},
        CValueField{"FPAverageTime", &Analyzer::FPAverageTime},
        CValueField{"FPmaxSearchBegin", &Analyzer::FPmaxSearchBegin},
        CValueField{"FPmaxSearchEnd", &Analyzer::FPmaxSearchEnd},
        CValueField{"FPSlopeInterval", &Analyzer::FPSlopeInterval},
        CValueField{"FPfastAutoAdjust", &Analyzer::FPfastAutoAdjust},
        CValueField{"FPfastAutoAdjustFactor", &Analyzer::FPfastAutoAdjustFactor},
        CValueField{"FPfastAutoAdjustTime", &Analyzer::FPfastAutoAdjustTime},
        CValueField{"FPfastAmplitude", &Analyzer::FPfastAmplitude},
        CValueField{"FPfastRiseTimeMin", &Analyzer::FPfastRiseTimeMin},
        CValueField{"FPfastRiseTimeMax", &Analyzer::FPfastRiseTimeMax},
        CValueField{"FPfastSlopeRangeMin", &Analyzer::FPfastSlopeRangeMin},
        CValueField{"FPfastSlopeRangeMax", &Analyzer::FPfastSlopeRangeMax},
    };
};

}  // namespace vxfileio::xmlarchive
