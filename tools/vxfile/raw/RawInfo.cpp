#include "tools/vxfile/raw/RawInfo.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "tools/vxfile/raw/UnitScales.h"
#include "tools/vxfile/report/Progress.h"
#include "tools/vxfile/report/Text.h"
#include "verify/raw/RawScan.h"

namespace vxfile {

namespace {

/// The samples of files up to this size are always counted, since that takes no noticeable time.
constexpr std::int64_t kSmallFile = std::int64_t{64} << 20;

constexpr const char* kFinishedWord = "finished";

constexpr int kAuxColumn = 5;  ///< The column of the table after the wells.

bool HasAuxChannels(const CRecordingAt& recording) { return !recording.header.AuxChannels.empty(); }

std::string DosesText(const std::vector<std::int64_t>& doses) {
    std::string text;
    for (const auto dose : doses)
        text += (text.empty() ? "" : ", ") + DoseText(dose);
    return text;
}

/// Returns the interval of all channels, or the smallest and the largest.
std::string IntervalText(const std::vector<CRawDataChannelInfo>& wells) {
    if (wells.empty()) return "";
    const auto [least, most] = std::ranges::minmax(wells, {}, &CRawDataChannelInfo::Ticks);
    const std::string text = std::to_string(least.Ticks);
    return least.Ticks == most.Ticks ? text : text + " - " + std::to_string(most.Ticks);
}

CJson ChannelsJson(const std::vector<CRawDataChannelInfo>& channels) {
    CJson list = CJson::array();
    for (const auto& channel : channels)
        list.push_back({{"id", channel.ID},
                        {"interval", channel.Ticks},
                        {"unitsPerAD", channel.UnitsPerAD},
                        {"adZero", channel.ADZero}});
    return list;
}

class CRawInfo {
 public:
    CRawInfo(const std::string& path, bool full, bool isAlone, const CPlateView& view)
        : m_view(view),
          m_scan(path),
          m_counts(full || m_scan.Size() <= kSmallFile),
          m_hasAux(std::ranges::any_of(m_scan.Recordings(), HasAuxChannels)),
          m_budget(m_scan),
          m_progress("Counting samples", isAlone ? m_scan.Size() : 0) {}

    CPage Tell() {
        TellHeader();
        TellRecordings();
        JudgeWhatIsBehind();
        if (m_scan.Break()) m_damage = "The chain of recordings is damaged";
        if (m_scan.Size() < m_scan.FileHdrSize())
            m_page.SetDamage("The file ends within its first header; there is no recording to recover.");
        else if (!m_damage.empty())
            m_page.SetDamage(m_damage + "; run 'vxfile verify' to see where, 'vxfile recover' to save what is intact.");
        else if (!m_unitFault.empty())
            m_page.SetDamage(m_unitFault +
                             ", so its samples have no values in units; run 'vxfile verify' for all faults.");
        if (!m_counts) m_page.SetRemark("Segments and samples weren't counted; use --full.");
        return std::move(m_page);
    }

 private:
    void TellHeader();
    void TellLists();
    void TellRecordings();
    void TellSummary(const std::string& lastState);
    CPage::CRow TellRecording(std::size_t index, CJson& json);
    void CountSegments(std::size_t index, CPage::CRow& row, CJson& json);
    void JudgeHeader(std::size_t index, const CScaleFaults& faults, CPage::CRow& row, CJson& json);
    void JudgeWhatIsBehind();
    static void Mark(CPage::CRow& row, CJson& json, const char* word);
    void NoteDamage(CPage::CRow& row, CJson& json, const char* word, const std::string& what);

    std::vector<CRawDataChannelInfo> WellsOf(const CRecordingAt& recording) const;
    CJson WellsJson(const std::vector<CRawDataChannelInfo>& wells, const CScaleFaults& faults) const;

    const CPlateView& m_view;
    CRawScan m_scan;
    bool m_counts;  ///< Whether segments are counted.
    bool m_hasAux;  ///< Whether any recording has auxiliary channels.
    CSegmentBudget m_budget;
    CProgress m_progress;
    CPage m_page;
    std::string m_damage;     ///< The first damage found; empty if there is none.
    std::string m_unitFault;  ///< The first unit that isn't a number; empty if there is none.
    std::int64_t m_end = 0;   ///< The end of the last header or segment that was found.
};

void CRawInfo::TellHeader() {
    const CRawDataFileHdr& header = m_scan.Header();
    m_page.AddText("Mark", "headerID", header.HeaderID);
    m_page.AddText("File type", "fileType", header.FileType);
    m_page.AddText("Program version", "programVersion", header.ProgramVersion);
    m_page.Add("Format version", "fileVersion", std::to_string(header.FileVersion), header.FileVersion);
    m_page.AddText("Guid", "guid", header.Guid);
    m_page.AddText("Plate", "plateID", header.PlateID);
    const std::string name = header.CompoundName.empty() ? "" : " (" + Readable(header.CompoundName) + ")";
    m_page.Add("Compound", "compoundID", std::to_string(header.CompoundID) + name, header.CompoundID);
    m_page.Json()["compoundName"] = Readable(header.CompoundName);
    TellLists();
}

void CRawInfo::TellLists() {
    const CRawDataFileHdr& header = m_scan.Header();
    const auto tell = [&](const char* label, const char* key, const std::vector<std::int64_t>& doses) {
        if (!doses.empty()) m_page.Add(label, key, DosesText(doses), doses);
        m_page.Json()[key] = doses;
    };
    tell("PreQC doses", "preQC", header.PreQC);
    tell("CompoundTest doses", "compoundTest", header.CompoundTest);
    tell("PostQC doses", "postQC", header.PostQC);
}

void CRawInfo::TellRecordings() {
    CPage::CRow head = {"#", "Task", "Number", "Dose", "Wells", "Interval (ticks)", "Length (ticks)", "State"};
    if (m_hasAux) head.insert(head.begin() + kAuxColumn, "Auxiliary");
    if (m_view.ticksPerSecond != 0) head.insert(head.end() - 1, "Length (s)");
    if (m_counts) head.insert(head.end() - 1, {"Segments", "Samples"});
    std::vector<CPage::CRow> table = {head};
    CJson list = CJson::array();
    std::string lastState;
    for (std::size_t i = 0; i < m_scan.Recordings().size(); ++i) {
        CJson json;
        CPage::CRow row = TellRecording(i, json);
        lastState = row.back();
        m_progress.Reach(m_end);
        if (!m_view.choice.HasRecording(m_scan.Recordings()[i].header)) continue;
        table.push_back(std::move(row));
        list.push_back(std::move(json));
    }
    TellSummary(lastState);
    m_page.SetTable(std::move(table));
    m_page.Json()["recordings"] = std::move(list);
    m_page.Json()["chainDamaged"] = m_scan.Break().has_value();
}

/// `lastState` is the state of the last recording, if there is one.
void CRawInfo::TellSummary(const std::string& lastState) {
    const auto& recordings = m_scan.Recordings();
    std::vector<std::string> tasks;
    std::set<std::int32_t> wells;
    std::string taskText;
    for (const auto& recording : recordings) {
        if (!m_view.choice.HasRecording(recording.header)) continue;
        const std::string task = Readable(recording.header.TaskName);
        if (std::ranges::find(tasks, task) == tasks.end()) tasks.push_back(task);
        for (const auto& well : WellsOf(recording))
            wells.insert(well.ID);
    }
    for (const auto& task : tasks)
        taskText += (taskText.empty() ? "" : ", ") + task;
    const bool finished = !recordings.empty() && recordings.back().IsFinished();
    m_page.Add("Tasks", "tasks", taskText.empty() ? "none" : taskText, tasks);
    const std::vector<std::int32_t> wellIDs(wells.begin(), wells.end());
    const std::string wellText = wells.empty() ? "" : ": " + m_view.labels.List(wellIDs);
    if (m_view.labels.AreKnown())
        m_page.Add("Settings", "settings", Readable(m_view.labels.Source()), Utf8(m_view.labels.Source()));
    m_page.Add("Wells", "wells", std::to_string(wells.size()) + wellText, wellIDs);
    std::string count = std::to_string(recordings.size());
    if (!recordings.empty())
        count += ", the last one " + lastState + (finished ? "" : ": run 'vxfile recover' to save it");
    m_page.Add("Recordings", "recordingCount", count, recordings.size());
    m_page.Json()["lastFinished"] = finished;
}

/// Returns the chosen wells of a recording.
std::vector<CRawDataChannelInfo> CRawInfo::WellsOf(const CRecordingAt& recording) const {
    auto wells = recording.header.WellChannels;
    std::erase_if(wells, [&](const auto& well) { return !m_view.choice.HasWell(well.ID); });
    return wells;
}

CJson CRawInfo::WellsJson(const std::vector<CRawDataChannelInfo>& wells, const CScaleFaults& faults) const {
    CJson list = ChannelsJson(wells);
    for (CJson& well : list) {
        const auto id = well["id"].get<std::int32_t>();
        const auto [first, last] = faults.equal_range(id);
        for (auto fault = first; fault != last; ++fault)
            well[fault->second.key == "ADZeros" ? "adZero" : "unitsPerAD"] = nullptr;
        if (m_view.labels.AreKnown()) well["label"] = m_view.labels.Of(id);
    }
    return list;
}

CPage::CRow CRawInfo::TellRecording(std::size_t index, CJson& json) {
    const CRecordingAt& recording = m_scan.Recordings()[index];
    const CRawDataRecordingHdr& header = recording.header;
    const auto wells = WellsOf(recording);
    const CScaleFaults faults = ScaleFaultsOf(m_scan, recording);
    json = {{"task", Readable(header.TaskName)},
            {"number", header.Recording},
            {"dose", header.Dose},
            {"offset", recording.position},
            {"startTime", header.RecordingStartTime},
            {"length", header.RecordingTime},
            {"finished", recording.IsFinished()},
            {"damaged", false},
            {"channels", WellsJson(wells, faults)},
            {"auxChannels", ChannelsJson(header.AuxChannels)}};
    CPage::CRow row = {std::to_string(index + 1),
                       Readable(header.TaskName),
                       std::to_string(header.Recording),
                       DoseText(header.Dose),
                       std::to_string(wells.size()),
                       IntervalText(wells),
                       std::to_string(header.RecordingTime),
                       recording.IsFinished() ? kFinishedWord : "not finished"};
    if (m_hasAux) row.insert(row.begin() + kAuxColumn, std::to_string(header.AuxChannels.size()));
    if (m_view.ticksPerSecond != 0) {
        row.insert(row.end() - 1, SecondsText(header.RecordingTime, m_view.ticksPerSecond));
        json["lengthSeconds"] = static_cast<double>(header.RecordingTime) / m_view.ticksPerSecond;
    }
    JudgeHeader(index, faults, row, json);
    if (m_counts) CountSegments(index, row, json);
    return row;
}

/// Marks a recording as damaged. Its row keeps only the first damage.
void CRawInfo::Mark(CPage::CRow& row, CJson& json, const char* word) {
    json["damaged"] = true;
    if (row.back() == kFinishedWord) row.back() += word;
}

/// The same, and keeps the first of the file.
void CRawInfo::NoteDamage(CPage::CRow& row, CJson& json, const char* word, const std::string& what) {
    if (m_damage.empty()) m_damage = what;
    Mark(row, json, word);
}

/// Notes damage that shows without reading segments.
void CRawInfo::JudgeHeader(std::size_t index, const CScaleFaults& faults, CPage::CRow& row, CJson& json) {
    const CRecordingAt& recording = m_scan.Recordings()[index];
    const std::int64_t data = recording.header.FPosRecordingData;
    if (m_scan.DataPosition(recording) > m_scan.Size())
        NoteDamage(row, json, ", cut", "The file ends within the header of " + NameOf(recording, index));
    else if (recording.IsFinished() && (data < 0 || data > m_scan.Size()))
        NoteDamage(row, json, ", damaged", "The segments of " + NameOf(recording, index) + " aren't in the file");
    for (const auto& [well, fault] : faults) {
        if (fault.text.empty() || !m_view.choice.HasWell(well)) continue;
        if (m_unitFault.empty()) m_unitFault = TextOf(fault, recording, index, well);
        Mark(row, json, ", damaged");
    }
}

/// A chain that ends too early looks intact. But nothing may follow a finished recording that no position leads to.
void CRawInfo::JudgeWhatIsBehind() {
    const auto& recordings = m_scan.Recordings();
    if (!m_counts || recordings.empty() || !recordings.back().IsFinished() || !m_damage.empty()) return;
    if (m_scan.HasHeaderAt(m_end)) m_damage = "No position leads to what follows byte " + std::to_string(m_end);
}

/// The segments of an unfinished recording follow its header; the last one may still be incomplete.
void CRawInfo::CountSegments(std::size_t index, CPage::CRow& row, CJson& json) {
    const CRecordingAt& recording = m_scan.Recordings()[index];
    CSegmentWalk walk = AllSegmentsOf(m_scan, recording);
    std::uint64_t segments = 0;
    std::uint64_t samples = 0;
    bool shared = false;  // its chain leads through segments of another one
    bool cut = false;
    m_end = std::max(m_end, m_scan.DataPosition(recording));
    while (const CSegmentAt* segment = walk.Next()) {
        shared = !m_budget.Take();
        if (shared) break;
        const bool isChosen = m_view.choice.HasWell(segment->header.ID);
        segments += isChosen ? 1 : 0;
        const bool isWhole = m_scan.HasByteAt(segment->End() - 1);
        const std::int64_t there =
            isWhole ? segment->Samples() : std::max<std::int64_t>(m_scan.Size() - segment->DataPosition(), 0) / 2;
        if (isChosen) samples += static_cast<std::uint64_t>(std::min<std::int64_t>(there, segment->Samples()));
        cut = cut || there < segment->Samples();
        m_end = std::max(m_end, segment->End());
        m_progress.Reach(segment->position);
    }
    const bool damaged = walk.Break() || shared;
    if (damaged && recording.IsFinished())
        NoteDamage(row, json, ", damaged", "The chain of the segments of " + NameOf(recording, index) + " is damaged");
    if (cut && recording.IsFinished())
        NoteDamage(row, json, ", cut", "The file ends within a segment of " + NameOf(recording, index));
    row.insert(row.end() - 1, {std::to_string(segments), std::to_string(samples)});
    json["segments"] = segments;
    json["samples"] = samples;
    json["segmentsDamaged"] = damaged || cut;
}

}  // namespace

CPage InfoOfRawData(const std::string& path, bool full, bool isAlone, const CPlateView& view) {
    return CRawInfo(path, full, isAlone, view).Tell();
}

}  // namespace vxfile
