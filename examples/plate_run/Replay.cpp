#include "Replay.h"

#include <algorithm>
#include <span>

#include "Difference.h"
#include "Progress.h"
#include "Segment.h"

namespace {

constexpr std::int32_t kAllWells = -1;

std::string NameOf(const CRecordingPlan& recording) {
    return TaskToString(recording.task) + " " + std::to_string(recording.number);
}

/// The index has one entry per recording, in file order.
void CheckIndex(const CRawDataIndex& index, const CPlatePlan& plan) {
    Expect(index.GetCount() == static_cast<std::int32_t>(plan.recordings.size()), "The number of recordings");
    for (std::int32_t i = 0; i < index.GetCount(); ++i) {
        const CIndexEntry& entry = *index.GetEntry(i);
        const CRecordingPlan& recording = plan.recordings[static_cast<std::size_t>(i)];
        Expect(entry.TaskName == TaskToString(recording.task) && entry.Recording == recording.number &&
                   entry.Dose == recording.dose,
               "Recording " + std::to_string(i + 1) + " of the index");
    }
}

void CheckFileHdr(const CRawDataFileHdr& header, const CPlatePlan& plan) {
    Expect(header.PlateID == plan.plateID, "The plate");
    Expect(header.CompoundID == plan.compoundID && header.CompoundName == plan.compoundName, "The compound");
    Expect(header.PreQC == DosesOf(plan, enTask::PreQC), "The list PreQC");
    Expect(header.CompoundTest == DosesOf(plan, enTask::CompoundTest), "The list CompoundTest");
    Expect(header.PostQC == DosesOf(plan, enTask::PostQC), "The list PostQC");
}

void CheckRecordingHdr(const CRawDataRecordingHdr& header, const CPlatePlan& plan, const CRecordingPlan& recording) {
    const auto isOf = [](const CRawDataChannelInfo& channel, const CWell& well) {
        return channel.ID == well.id && channel.ADZero == kADZero && channel.UnitsPerAD == kMillivoltPerAD &&
               channel.Ticks == kTick;
    };
    Expect(std::ranges::equal(header.WellChannels, plan.wells, isOf), "The list of wells of " + NameOf(recording));
    Expect(header.RecordingStartTime == static_cast<std::uint64_t>(recording.firstSample * kTick) &&
               header.RecordingTime == plan.SamplesPerWell() * kTick,
           "The time of " + NameOf(recording));
}

/// Reads recordings one segment at a time, and compares each with the signal measured again.
class CReplayer {
 public:
    CReplayer(CIRawDataReader& reader, const CPlatePlan& plan, const CSignal& signal, std::span<const CWell> wells)
        : m_reader(reader),
          m_plan(plan),
          m_signal(signal),
          m_wells(wells),
          m_expected(static_cast<std::size_t>(plan.samplesPerSegment)),
          m_progress("Reading", plan.Segments() / std::ssize(plan.wells) * std::ssize(wells)) {}

    /// Segments arrive in the order of writing, so the wells take turns.
    CAmount Replay(const CRecordingPlan& recording) {
        CAmount read;
        if (!m_reader.JumpToData(TaskToString(recording.task), recording.number)) {
            throw CDifference(NameOf(recording) + " was never finished");
        }
        for (std::int64_t segment = 0; segment < m_plan.segmentsPerWell; ++segment) {
            for (const CWell& well : m_wells)
                ReplaySegment(recording, well, m_plan.FirstSample(recording, segment), read);
        }
        CSegment another{};
        Expect(!ReadSegment(m_reader, another), "The number of segments of " + NameOf(recording));
        return read;
    }

    double SecondsInLibrary() const { return m_inLibrary.Seconds(); }

 private:
    void ReplaySegment(const CRecordingPlan& recording, const CWell& well, std::int64_t first, CAmount& read) {
        CSegment segment{};
        m_inLibrary.Start();
        const bool isThere = ReadSegment(m_reader, segment);
        m_inLibrary.Stop();

        m_signal.Measure(well, recording.dose, first, m_expected);
        const std::int64_t last = first + m_plan.samplesPerSegment - 1;
        const bool isAsRecorded = isThere && segment.wellID == well.id && segment.timeFrom == first * kTick &&
                                  segment.timeTo == last * kTick && std::ranges::equal(segment.samples, m_expected);
        if (!isAsRecorded) {
            throw CDifference(NameOf(recording) + ", well " + well.label + ", segment from " +
                              std::to_string(first * kTick) + ": not what was recorded");
        }
        ++read.segments;
        read.samples += std::ssize(segment.samples);
        m_progress.Step();
    }

    CIRawDataReader& m_reader;
    const CPlatePlan& m_plan;
    const CSignal& m_signal;
    std::span<const CWell> m_wells;
    std::vector<std::uint16_t> m_expected;
    CProgress m_progress;
    CStopwatch m_inLibrary;
};

}  // namespace

CReplay ReplayPlate(CIRawDataReader& reader, const CPlatePlan& plan, const CSignal& signal, const std::string& path) {
    reader.Open(path);
    CheckFileHdr(*reader.GetFileHdr(), plan);
    CheckIndex(*reader.GetIndex(), plan);

    // From here on everything except the samples comes from memory: `Open` has read all headers.
    CReplay replay{};
    for (const std::string& task : reader.GetTasks()) {
        const std::vector<std::int32_t> wellIDs = reader.GetWellIDs(task, 1);
        replay.tasks.push_back({task, reader.GetDoses(task, wellIDs.at(0)), wellIDs.size(), {}});
    }

    reader.SelectWellID(kAllWells);
    CReplayer replayer(reader, plan, signal, plan.wells);
    for (const CRecordingPlan& recording : plan.recordings) {
        const std::string task = TaskToString(recording.task);
        CheckRecordingHdr(*reader.GetRecordingHdr(task, recording.number), plan, recording);
        std::ranges::find(replay.tasks, task, &CTaskContent::name)->read += replayer.Replay(recording);
    }
    replay.seconds = replayer.SecondsInLibrary();
    return replay;
}

CAmount ReplayWell(CIRawDataReader& reader, const CPlatePlan& plan, const CSignal& signal, const CWell& well) {
    reader.SelectWellID(well.id);  // skips the samples of all other wells without reading them
    CReplayer replayer(reader, plan, signal, {&well, 1});
    CAmount read;
    for (const CRecordingPlan& recording : plan.recordings)
        read += replayer.Replay(recording);
    return read;
}
