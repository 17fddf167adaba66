#include "Record.h"

#include <cstdint>
#include <utility>
#include <vector>

#include "Progress.h"

namespace {

/// The library sets the other fields: positions in the file, and lists that are empty at first.
CRawDataFileHdr FileHdrOf(const CPlatePlan& plan) {
    CRawDataFileHdr header = MakeFileHdr();  // with mark and version
    header.FileType = "Raw";
    header.ProgramVersion = "1.0";
    header.Guid = plan.guid;
    header.PlateID = plan.plateID;
    header.CompoundID = plan.compoundID;
    header.CompoundName = plan.compoundName;
    return header;
}

CRawDataRecordingHdr MakeRecordingHdr(const CPlatePlan& plan, const CRecordingPlan& recording) {
    CRawDataRecordingHdr header;
    header.TaskName = TaskToString(recording.task);
    header.Recording = recording.number;
    header.Dose = recording.dose;
    header.RecordingStartTime = static_cast<std::uint64_t>(recording.firstSample * kTick);
    header.RecordingTime = plan.SamplesPerWell() * kTick;
    for (const CWell& well : plan.wells)
        header.WellChannels.push_back({well.id, kADZero, kMillivoltPerAD, kTick});
    return header;
}

/// Updates the doses of a task, up to this recording, in the file header while the file grows. The header has such a
/// list for PreQC, CompoundTest and PostQC; for any other task the call has no effect.
void UpdateDoses(CIRawDataWriter& writer, const CPlatePlan& plan, const CRecordingPlan& recording) {
    std::vector<std::string> doses;
    for (const std::int64_t dose : DosesOf(plan, recording.task)) {
        doses.push_back(std::to_string(dose));
        if (std::cmp_equal(doses.size(), recording.number)) break;
    }
    writer.UpdateFileHdr(TaskToString(recording.task), doses);
}

/// One run of the instrument. Passes the samples of each segment to the writer as they arrive, and keeps nothing.
class CRecorder {
 public:
    CRecorder(CIRawDataWriter& writer, const CPlatePlan& plan, const CSignal& signal)
        : m_writer(writer),
          m_plan(plan),
          m_signal(signal),
          m_samples(static_cast<std::size_t>(plan.samplesPerSegment)),
          m_progress("Recording", plan.Segments()) {}

    /// Records the wells in turn, as if samples arrived from all of them at once.
    void Record(const CRecordingPlan& recording) {
        m_writer.WriteRecordingHdr(MakeRecordingHdr(m_plan, recording));
        UpdateDoses(m_writer, m_plan, recording);
        for (std::int64_t segment = 0; segment < m_plan.segmentsPerWell; ++segment) {
            for (const CWell& well : m_plan.wells)
                RecordSegment(well, recording.dose, m_plan.FirstSample(recording, segment));
        }
    }

    double SecondsInLibrary() const { return m_inLibrary.Seconds(); }

 private:
    void RecordSegment(const CWell& well, std::int64_t dose, std::int64_t first) {
        m_signal.Measure(well, dose, first, m_samples);
        const std::int64_t last = first + m_plan.samplesPerSegment - 1;
        m_inLibrary.Start();
        // Both are times of samples; the number of samples follows from them.
        m_writer.WriteData(well.id, first * kTick, last * kTick, kTick, m_samples.data());
        m_inLibrary.Stop();
        m_progress.Step();
    }

    CIRawDataWriter& m_writer;
    const CPlatePlan& m_plan;
    const CSignal& m_signal;
    std::vector<std::uint16_t> m_samples;
    CProgress m_progress;
    CStopwatch m_inLibrary;
};

}  // namespace

double RecordPlate(CIRawDataWriter& writer, const CPlatePlan& plan, const CSignal& signal, const std::string& path) {
    CRecorder recorder(writer, plan, signal);
    writer.Open(path);  // replaces the demo of an earlier run; a program that records a real plate uses OpenNew
    writer.WriteFileHdr(FileHdrOf(plan));
    for (const CRecordingPlan& recording : plan.recordings)
        recorder.Record(recording);
    // The last recording becomes readable only now. A full disk hasn't caused an error so far; to be sure, read the
    // file back, as this example does.
    writer.Close();
    return recorder.SecondsInLibrary();
}
