#include "tools/vxfile/document/ResultsWalk.h"

#include <cstddef>
#include <utility>
#include <vector>

#include "tools/vxfile/report/Progress.h"
#include "tools/vxfile/report/Text.h"
#include "verify/Failure.h"
#include "vxfileio/results/forms/ResultsForm.h"
#include "vxfileio/xmlarchive/XmlDocument.h"

using namespace vxfileio::xmlarchive;
using vxfileio::results::kResultsElement;

namespace vxfile {

namespace {

using CTaskForm = CXmlForm<CResultsTask>;
using CRecordingForm = CXmlForm<CResultsRecording>;
using CWellForm = CXmlForm<CResultsWell>;

constexpr auto& kTaskName = std::get<0>(CTaskForm::kFields);
constexpr auto& kRecordings = std::get<1>(CTaskForm::kFields);
constexpr auto& kDose = std::get<0>(CRecordingForm::kFields);
constexpr auto& kMeans = std::get<1>(CRecordingForm::kFields);
constexpr auto& kWells = std::get<2>(CRecordingForm::kFields);

/// Follows the forms of the library, but keeps nothing. Reads the entries that a list has, regardless of its `Size`.
class CResultsWalk {
 public:
    CResultsWalk(CXmlFileArchive& archive, const CResultsVisitor& visitor) : m_archive(archive), m_visitor(visitor) {}

    void Walk() {
        ForEachEventOfSection(m_archive, kResultsElement, [&] {
            AtStart([&] {
                if (m_archive.TagName() == kResultsElement) m_archive.CountEntries();
                if (m_archive.TagName() != CTaskForm::kElement) return;
                m_archive.NeedChildren();
                VisitTask();
            });
        });
    }

    bool IsDamaged() const { return m_archive.LastError() != gd_xml_stream::XmlError::None; }

 private:
    /// What was read before its place is known.
    struct CWaiting {
        CRecordingPlace place;
        std::function<void(const CRecordingPlace&)> pass;
    };

    /// Calls `handle` if the event is a start tag.
    template <class Handle>
    void AtStart(Handle handle) {
        m_progress.Reach(0);
        if (!m_archive.IsEndTag() && !IsDamaged()) handle();
    }

    /// Calls `handle` at each start tag in the current element, which may have no children.
    template <class Handle>
    void ForEachStartInside(std::string_view tag, Handle handle) {
        if (HasChildren(m_archive)) ForEachEventUntil(m_archive, tag, [&] { AtStart(handle); });
    }

    /// Calls `visit` at each entry of the current element, a list. Reports a wrong `Size`, and entries without content.
    template <class Visit>
    void ForEachEntry(std::string_view list, std::string_view entry, Visit visit) {
        static_cast<void>(m_archive.ListHasEntries());  // notes the `Size`
        ForEachStartInside(list, [&] {
            if (m_archive.TagName() != entry) return;
            m_archive.NeedChildren();
            visit();
        });
    }

    void VisitTask() {
        CResultsTask task;
        m_place = {.recording = -1};
        m_hasTask = false;
        ForEachStartInside(CTaskForm::kElement, [&] {
            if (m_archive.TagName() == kTaskName.tag) {
                kTaskName.Get(m_archive, task);
                m_place.task = Utf8(task.TaskName);
                m_hasTask = true;
            } else if (m_archive.TagName() == kRecordings.tag) {
                VisitRecordings();
            }
        });
        PassWaiting();
    }

    void VisitRecordings() {
        ForEachEntry(kRecordings.tag, CRecordingForm::kElement, [&] { VisitRecording(); });
    }

    void VisitRecording() {
        CResultsRecording recording;
        const std::size_t first = m_waiting.size();
        ++m_place.recording;
        m_place.dose = 0;
        m_hasDose = false;
        ForEachStartInside(CRecordingForm::kElement, [&] {
            if (m_archive.TagName() == kDose.tag) {
                kDose.Get(m_archive, recording);
                m_place.dose = recording.Dose;
                m_hasDose = true;
            } else if (m_archive.TagName() == kMeans.tag) {
                VisitMeans(recording);
            } else if (m_archive.TagName() == kWells.tag) {
                VisitWells();
            }
        });
        for (std::size_t i = first; i < m_waiting.size(); ++i)
            m_waiting[i].place = m_place;
        m_hasDose = true;
        if (m_hasTask) PassWaiting();
        if (m_visitor.recording && !IsDamaged()) Pass(m_visitor.recording);
    }

    void VisitMeans(CResultsRecording& recording) {
        kMeans.Get(m_archive, recording);
        if (!m_visitor.mean || IsDamaged()) return;
        for (const auto& [key, mean] : recording.NormalizedResponses)
            Pass([this, mean = mean](const CRecordingPlace& place) { m_visitor.mean(place, mean); });
    }

    void VisitWells() {
        ForEachEntry(kWells.tag, CWellForm::kElement, [&] {
            if (m_visitor.well && HasChildren(m_archive)) VisitWell();
        });
    }

    void VisitWell() {
        m_archive.NextElement();
        if (m_archive.IsEndTag()) return;  // it has only a comment
        const std::int32_t wellID = CWellForm::kKey.Read(m_archive);
        CResultsWell well;
        well.Load(m_archive);
        if (IsDamaged()) return;
        Pass([this, wellID, well = std::move(well)](const CRecordingPlace& place) {
            m_visitor.well(place, wellID, well);
        });
    }

    /// Calls `pass` with the place, later if it isn't known yet.
    template <class CPass>
    void Pass(CPass pass) {
        if (m_hasTask && m_hasDose) {
            pass(m_place);
        } else {
            m_waiting.push_back({m_place, std::move(pass)});
        }
    }

    void PassWaiting() {
        for (CWaiting& waiting : m_waiting) {
            waiting.place.task = m_place.task;
            waiting.pass(waiting.place);
        }
        m_waiting.clear();
    }

    CXmlFileArchive& m_archive;
    const CResultsVisitor& m_visitor;
    CProgress m_progress{"", 0};
    CRecordingPlace m_place;
    bool m_hasTask = false;
    bool m_hasDose = false;
    std::vector<CWaiting> m_waiting;
};

}  // namespace

std::string WalkResults(const std::string& path, const CResultsVisitor& visitor) {
    std::string damage;
    ReadDocument(path, "Can't open ", kResultsElement, damage,
                 [&](CXmlFileArchive& archive) { CResultsWalk(archive, visitor).Walk(); });
    return damage;
}

}  // namespace vxfile
