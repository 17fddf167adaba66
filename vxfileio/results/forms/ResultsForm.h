#pragma once

#include "vxfileio/results/Results.h"
#include "vxfileio/settings/forms/PropertyForms.h"

/// @file
/// The forms of the tree of results, from its leaves to the root.

namespace vxfileio::xmlarchive {

template <>
struct CXmlForm<CResponse> {
    static constexpr std::string_view kElement = "Response";
    static constexpr auto kFields = std::tuple{
        CKeyTextField<enResponseType, CTextField<CResponse>>{{"Label", &CResponse::Label}},
        CValueField{"Value", &CResponse::Value},
    };
};

template <>
struct CXmlForm<CResponseMean> {
    static constexpr std::string_view kElement = "Response";
    static constexpr auto kFields = std::tuple{
        CKeyTextField<enResponseType, CValueField<CResponseMean, std::string>>{{"Label", &CResponseMean::Label}},
        CValueField{"normMean", &CResponseMean::normMean},
        CValueField{"normStdDev", &CResponseMean::normStdDev},
        CValueField{"Samples", &CResponseMean::Samples},
    };
};

}  // namespace vxfileio::xmlarchive

namespace vxfileio::results {

using namespace xmlarchive;

/// The average: one child with all samples in one text.
struct CAverageField {
    using CObject = CResultsWell;
    std::string_view tag = "Average";
    static constexpr CXmlElement kSamples{.tag = "Ave", .kind = EXmlKind::Samples};

    constexpr CXmlElement Element() const noexcept {
        return {.tag = tag, .kind = EXmlKind::List, .children = {&kSamples, 1}};
    }
    const auto& Value(const CResultsWell& well) const noexcept { return well.Average; }
    void Put(CXmlFileArchive& archive, const CResultsWell& well) const {
        archive.PutAttribute(gd_xml_stream::kListSize, static_cast<std::int32_t>(well.Average.size()));
        archive.OpenChild(kSamples.tag).PutSamples(well.Average).CloseElement();
    }
    void Get(CXmlFileArchive& archive, CResultsWell& well) const {
        well.Average.resize(archive.GetListSize());
        LoadChildren(archive, [&] {
            archive.NextElement();
            if (archive.IsEndTag()) return;
            if (archive.TagName() != kSamples.tag) return archive.NoteMissingKey(kSamples.tag);
            archive.GetSamples(well.Average);
        });
    }
};

inline constexpr CValueField kDetectedField{"FPfastDetected", &CResultsWell::FPfastDetected};

/// A finding: without `FPfastDetected` its text is empty, and it isn't read.
template <class Member>
struct CFindingField : CValueField<CResultsWell, Member> {
    constexpr CFindingField(std::string_view valueTag, Member CResultsWell::*value)
        : CValueField<CResultsWell, Member>{valueTag, value} {}

    constexpr CXmlElement Element() const noexcept {
        CXmlElement element = ElementOfValue<Member>(this->tag);
        element.onlyIf = kDetectedField.tag;
        return element;
    }
    void Put(CXmlFileArchive& archive, const CResultsWell& well) const {
        if (!well.FPfastDetected) return static_cast<void>(archive.PutValue(""));
        archive.PutValue(well.*(this->member));
    }
    void Get(CXmlFileArchive& archive, CResultsWell& well) const {
        if (well.FPfastDetected) archive.GetValue(well.*(this->member));
    }
};

}  // namespace vxfileio::results

namespace vxfileio::xmlarchive {

template <>
struct CXmlForm<CResultsWell> {
    using Well = CResultsWell;
    static constexpr std::string_view kElement = "Well";
    static constexpr CKeyField<std::int32_t> kKey{"WellID"};

    /// What every well has.
    static constexpr auto kHead = std::tuple{
        CValueField{"WellLabel", &Well::WellLabel},
        CValueField{"Dose", &Well::Dose},
        CPlacedValuesField{"FPfastDetectionTimes", "Time", &Well::FPfastDetectionTimes},
    };
    static constexpr std::size_t kShortSize = 1 + std::tuple_size_v<decltype(kHead)>;

    /// What only a well with detection times has.
    static constexpr auto kRest = std::tuple{
        CValueField{"AverageCount", &Well::AverageCount},
        CValueField{"AveragePreFPfastTime", &Well::AveragePreFPfastTime},
        CValueField{"AverageTick", &Well::AverageTick},
        results::CAverageField{},
        results::kDetectedField,
        results::CFindingField{"FPfastMaxAmp", &Well::FPfastMaxAmp},
        results::CFindingField{"FPfastMaxAmpTimeStamp", &Well::FPfastMaxAmpTimeStamp},
        results::CFindingField{"FPfastMinAmp", &Well::FPfastMinAmp},
        results::CFindingField{"FPfastMinAmpTimeStamp", &Well::FPfastMinAmpTimeStamp},
        results::CFindingField{"FPfastSlopeX0", &Well::FPfastSlopeX0},
        results::CFindingField{"FPfastSlopeY0", &Well::FPfastSlopeY0},
        results::CFindingField{"FPfastSlopeX1", &Well::FPfastSlopeX1},
        results::CFindingField{"FPfastSlopeY1", &Well::FPfastSlopeY1},
        CValueField{"FPmaxType", &Well::FPmaxType},
        CKeyedObjectsField{"Responses", &Well::Responses, &CResponse::Label},
        CKeyedObjectsField{"NormalizedResponses", &Well::NormalizedResponses, &CResponse::Label},
    };
    static constexpr auto kFields = std::tuple_cat(kHead, kRest);
};

}  // namespace vxfileio::xmlarchive

namespace vxfileio::results {

/// The wells, each with its key as the first child. Wells and keys are found by their places alone. A well without
/// children is skipped.
struct CResultsWellsField {
    using CObject = CResultsRecording;
    using CEntryForm = CXmlForm<CResultsWell>;
    std::string_view tag = "Wells";

    constexpr CXmlElement Element() const noexcept { return ElementOfList<CEntryForm>(tag); }
    const auto& Value(const CResultsRecording& recording) const noexcept { return recording.Wells; }
    void Put(CXmlFileArchive& archive, const CResultsRecording& recording) const {
        PutList(archive, recording.Wells, [&](const auto& well) {
            archive.OpenChild(CEntryForm::kElement);
            SaveValue(archive, CEntryForm::kKey.tag, well.first);
            well.second.Save(archive);
            archive.CloseElement();
        });
    }
    void Get(CXmlFileArchive& archive, CResultsRecording& recording) const {
        const std::size_t size = EntriesOf(archive);
        for (std::size_t count = 0; count < size; ++count) {
            if (!archive.NextElement()) return;
            const bool isWell = IsStartOf(archive, CEntryForm::kElement);
            if (isWell) archive.NeedChildren();
            if (isWell && !HasChildren(archive)) continue;
            if (!archive.NextElement()) return;
            if (isWell && archive.IsEndTag()) continue;  // it has only a comment
            const std::int32_t wellID = CEntryForm::kKey.Read(archive);
            CResultsWell well;
            well.Load(archive);
            recording.Wells[wellID] = std::move(well);
        }
        if (size > 0) archive.NextElement();  // the end tag, which a list without entries doesn't have
    }
};

}  // namespace vxfileio::results

namespace vxfileio::xmlarchive {

template <>
struct CXmlForm<CResultsRecording> {
    static constexpr std::string_view kElement = "Recording";
    static constexpr auto kFields = std::tuple{
        CValueField{"Dose", &CResultsRecording::Dose},
        CKeyedObjectsField{"NormalizedResponses", &CResultsRecording::NormalizedResponses, &CResponseMean::Label},
        results::CResultsWellsField{},
    };
};

template <>
struct CXmlForm<CResultsTask> {
    static constexpr std::string_view kElement = "Task";
    static constexpr auto kFields = std::tuple{
        CKeyTextField<enTask, CValueField<CResultsTask, std::string>>{{"TaskName", &CResultsTask::TaskName}},
        CObjectsField{"Recordings", &CResultsTask::Recordings},
    };
};

}  // namespace vxfileio::xmlarchive

namespace vxfileio::results {

inline constexpr std::string_view kResultsElement = kResultsDocument.section;
inline constexpr CXmlElement kTaskElement = kElementOf<CXmlForm<CResultsTask>>;

/// The children of the root of a results file.
inline constexpr CXmlElement kResultsRoot[] = {
    kElementOf<CXmlForm<CXmlFileHeader>>,
    {.tag = kResultsElement, .kind = EXmlKind::Entries, .children = {&kTaskElement, 1}},
};

}  // namespace vxfileio::results
