#include "verify/raw/RawVerify.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <span>
#include <utility>

#include "recovery/LostPages.h"
#include "verify/Text.h"
#include "verify/raw/Coverage.h"
#include "verify/raw/RawScan.h"
#include "verify/raw/SampleDelivery.h"
#include "vxfileio/rawdata/HeaderCodec.h"
#include "vxfileio/rawdata/Rules.h"

using namespace vxfileio::rawdata;

namespace vxfile {

namespace {

std::int64_t OffsetIn(const auto& hdr, std::string_view key) { return static_cast<std::int64_t>(hdr[key].offset); }

std::string Text(std::int64_t number) { return std::to_string(number); }

std::string NameOfSegment(const std::string& recording, std::size_t index, const CSegmentAt& segment) {
    return recording + " > segment " + std::to_string(index + 1) + " (well " + Text(segment.header.ID) + ")";
}

/// Returns true if the header of a segment is exactly as writers write it. Much faster than judging its cells.
bool IsExactSegmentHdr(const CLayout& layout, std::string_view bytes) {
    if (bytes.size() != layout.segment.size) return false;
    CSegmentHdr header;
    Decode(layout, bytes, header);
    std::array<char, kMostSegmentHdr> room{};
    const auto exact = std::span(room).first(layout.segment.size);
    Encode(layout, header, exact);  // no number is too long for its cell
    return std::equal(bytes.begin(), bytes.end(), exact.begin());
}

/// The sum of one chain of segments.
struct CChainSum {
    std::size_t segments = 0;
    std::uint64_t samples = 0;
    std::set<std::int32_t> wells = {};
    std::int64_t end = 0;  ///< The end of the last segment.
    bool isLastIncomplete = false;
};

class CRawVerifier {
 public:
    CRawVerifier(const std::string& path, const CPlateChoice& choice, const CReach& reach, CSampleReceiver* receiver)
        : m_choice(choice), m_reach(reach), m_scan(path), m_delivery(receiver), m_budget(m_scan) {}

    CFindings Verify() {
        JudgeFileHdr();
        if (m_scan.Size() < m_scan.FileHdrSize()) return std::move(m_findings);
        for (std::size_t index = 0; index < m_scan.Recordings().size(); ++index)
            JudgeRecording(index);
        m_recording = nullptr;
        if (m_scan.Break()) JudgeBreakOfRecordings(*m_scan.Break());
        JudgeCoverage();
        return std::move(m_findings);
    }

 private:
    /// Adds a finding about the current recording and well. Only counts it if they aren't chosen.
    void Add(CFinding finding) {
        finding.well = m_well;
        const bool isChosen = (m_recording == nullptr || m_choice.HasRecording(m_recording->header)) &&
                              (!m_well || m_choice.HasWell(*m_well));
        if (!isChosen) return m_findings.AddElsewhere();
        m_findings.Add(std::move(finding));
    }
    void Add(std::string where, std::int64_t offset, std::string found, std::string expected, std::string meaning) {
        Add({std::move(where), offset, std::move(found), std::move(expected), std::move(meaning)});
    }

    /// Adds a broken rule in the header at `position`.
    void Add(const std::string& header, std::int64_t position, CBreach breach) {
        Add({breach.key.empty() ? header : header + " > " + std::string(breach.key),
             position + static_cast<std::int64_t>(breach.offset), std::move(breach.found), std::move(breach.expected),
             std::move(breach.meaning), std::string(RowOf(breach.rule).id)});
    }
    void Add(const std::string& header, std::int64_t position, std::vector<CBreach> breaches) {
        for (CBreach& breach : breaches)
            Add(header, position, std::move(breach));
    }

    /// @name The offset of a cell in the file, by its header and its key
    /// @{
    std::int64_t OffsetOf(std::string_view key) const { return OffsetIn(m_scan.Layout().file, key); }
    std::int64_t OffsetOf(const CRecordingAt& recording, std::string_view key) const {
        return recording.position + OffsetIn(m_scan.Layout().recording, key);
    }
    std::int64_t OffsetOf(const CSegmentAt& segment, std::string_view key) const {
        return segment.position + OffsetIn(m_scan.Layout().segment, key);
    }
    /// @}
    bool IsInFile(std::int64_t position) const { return position >= 0 && position < m_scan.Size(); }

    void JudgeFileHdr();
    void JudgeRecording(std::size_t index);
    void JudgePositions(const CRecordingAt& recording, const std::string& name);
    void JudgeNextRecording(const CRecordingAt& recording, const std::string& name, std::int64_t end);
    void JudgeUnfinished(const CRecordingAt& recording, const std::string& name);
    CChainSum JudgeSegments(CSegmentWalk walk, const CRecordingAt& recording, const std::string& name);
    void JudgeSegment(const CSegmentAt& segment, const CRecordingAt& recording, const std::string& name,
                      std::size_t index);
    void JudgeValues(const CSegmentAt& segment, const std::string& recording, std::size_t index);
    void JudgeSamples(const CSegmentAt& segment, const std::string& name);
    void JudgeNextSegment(const CSegmentAt& segment, const std::string& recording, std::size_t index);
    void JudgeBreak(const CChainBreak& chainBreak, const std::string& where, std::string_view wanted,
                    const std::string& meaning);
    void JudgeBreakOfRecordings(const CChainBreak& chainBreak);
    std::int64_t EndOfSamples(const CSegmentAt& segment) const;
    bool IsIncomplete(const CSegmentAt& segment) const;
    bool IsBeingWritten(CRange tail) const;
    void JudgeCoverage();

    const CPlateChoice& m_choice;
    const CReach& m_reach;
    CRawScan m_scan;
    vxfileio::recovery::CFileInput m_input{m_scan.File()};
    vxfileio::recovery::CWindow m_samples{m_input, m_scan.Size()};
    CSampleDelivery m_delivery;
    std::int64_t m_mostSamples = m_scan.Size();  ///< The number of bytes of samples still to be checked; limits work.
    CFindings m_findings;
    CCoverage m_coverage;
    CSegmentRules m_rules;                      ///< For the current recording.
    const CRecordingAt* m_recording = nullptr;  ///< The current recording; null outside recordings.
    std::optional<std::int32_t> m_well;         ///< The well of the current segment; empty outside segments.
    CSegmentBudget m_budget;
    bool m_circle = false;  ///< Chains share segments, so overlaps mean nothing.
};

void CRawVerifier::JudgeFileHdr() {
    const std::string name = "file header";
    const CLayout& layout = m_scan.Layout();
    Add(name, 0, BreachesOfFileHdr(layout, m_scan.ReadBytes(0, layout.file.size)));
    m_coverage.Add({0, m_scan.FileHdrSize()});
    const std::int64_t first = m_scan.Header().FPosFirstRecordingHdr;
    if (m_scan.Size() < m_scan.FileHdrSize()) {
        m_findings.MakeUnusable();  // the end of the header was already reported
    } else if (first == kUnset) {
        Add(name + " > FPosFirstRecordingHdr", OffsetOf("FPosFirstRecordingHdr"), "-1",
            "the position of the first recording", "The file holds no recording; readers refuse it as empty.");
        m_findings.MakeUnusable();
    } else if (first != m_scan.FileHdrSize() && !m_scan.Recordings().empty()) {
        Add(name + " > FPosFirstRecordingHdr", OffsetOf("FPosFirstRecordingHdr"), Text(first),
            Text(m_scan.FileHdrSize()),
            "Writers put the first recording elsewhere; readers follow the position anyway.");
    }
}

void CRawVerifier::JudgeRecording(std::size_t index) {
    const CRecordingAt& recording = m_scan.Recordings()[index];
    m_recording = &recording;
    const std::string name = NameOf(recording, index);
    const CLayout& layout = m_scan.Layout();
    const std::string header = m_scan.ReadBytes(recording.position, layout.recording.size);
    std::vector<CRawDataChannelInfo> wells;
    Add(name, recording.position, BreachesOfRecordingHdr(layout, header, &wells));
    m_delivery.Begin(index, recording, layout, header);
    m_rules = CSegmentRules(wells);
    m_coverage.Add({recording.position, m_scan.DataPosition(recording)});
    m_reach(recording.position, m_scan.Size());
    if (!recording.IsFinished()) return JudgeUnfinished(recording, name);
    JudgePositions(recording, name);
    const CChainSum sum = JudgeSegments(SegmentsOf(m_scan, recording), recording, name);
    JudgeNextRecording(recording, name, sum.end);
}

void CRawVerifier::JudgePositions(const CRecordingAt& recording, const std::string& name) {
    const std::int64_t end = m_scan.DataPosition(recording);
    if (recording.header.FPosRecordingData != end && IsInFile(recording.header.FPosRecordingData))
        Add(name + " > FPosRecordingData", OffsetOf(recording, "FPosRecordingData"),
            Text(recording.header.FPosRecordingData), Text(end) + ", right after the header",
            "Writers put the first segment elsewhere; readers follow the position anyway.");
    if (recording.header.FPosRecordingTrailer != kUnset)
        Add(name + " > FPosRecordingTrailer", OffsetOf(recording, "FPosRecordingTrailer"),
            Text(recording.header.FPosRecordingTrailer), "-1", "There are no trailers; readers ignore it.");
}

/// Writers put each recording right after the one before.
void CRawVerifier::JudgeNextRecording(const CRecordingAt& recording, const std::string& name, std::int64_t end) {
    const std::int64_t next = recording.header.FPosNextRecordingHdr;
    if (next == kUnset || next == end) return;
    if (m_scan.Break() && m_scan.Break()->cell == OffsetOf(recording, "FPosNextRecordingHdr")) return;
    Add(name + " > FPosNextRecordingHdr", OffsetOf(recording, "FPosNextRecordingHdr"), Text(next),
        Text(end) + ", where its last segment ends", "Segments are missing here, or the recordings were moved.");
}

/// The segments of an unfinished recording follow its header.
void CRawVerifier::JudgeUnfinished(const CRecordingAt& recording, const std::string& name) {
    const CChainSum sum = JudgeSegments(SegmentsAfter(m_scan, recording), recording, name);
    const std::string meaning = "The recording is unfinished, with " + Counted(sum.segments, "segment") + " of " +
                                Counted(sum.wells.size(), "well") + " (" + Counted(sum.samples, "sample") + ')' +
                                (sum.isLastIncomplete ? " and a part of one more" : "") +
                                " so far: its writer is still at work, or was cut off. Readers find no samples in "
                                "it; if the writer is gone, run 'vxfile recover' to save them to a new file.";
    Add(name + " > FPosRecordingData", OffsetOf(recording, "FPosRecordingData"), "-1",
        Text(m_scan.DataPosition(recording)) + ", right after the header", meaning);
    if (recording.header.FPosNextRecordingHdr != kUnset)
        Add(name + " > FPosNextRecordingHdr", OffsetOf(recording, "FPosNextRecordingHdr"),
            Text(recording.header.FPosNextRecordingHdr), "-1 in a recording that isn't finished",
            "Writers set both positions at once; one of them is damaged.");
}

CChainSum CRawVerifier::JudgeSegments(CSegmentWalk walk, const CRecordingAt& recording, const std::string& name) {
    CChainSum sum;
    sum.end = m_scan.DataPosition(recording);
    walk.ReadThrough(m_samples);
    while (const CSegmentAt* segment = walk.Next()) {
        if (!m_budget.Take()) {
            if (!std::exchange(m_circle, true))
                Add(name, segment->position, "a segment that several chains share", "separate chains",
                    "The rest of these chains wasn't checked.");
            m_delivery.Miss();
            break;
        }
        m_well = segment->header.ID;
        JudgeSegment(*segment, recording, name, sum.segments);
        m_well.reset();
        if (!recording.IsFinished() && IsIncomplete(*segment)) {
            sum.isLastIncomplete = true;
            break;
        }
        ++sum.segments;
        sum.samples += segment->Samples();
        sum.wells.insert(segment->header.ID);
        sum.end = segment->End();
        m_reach(sum.end, m_scan.Size());
    }
    if (!walk.Break()) return sum;
    m_delivery.Miss();
    JudgeBreak(*walk.Break(), name + (sum.segments == 0 ? " > FPosRecordingData" : " > FPosNextSegmentHdr"),
               "a segment",
               "Readers return " + Counted(sum.segments, "segment") +
                   " of this recording and then an error; run 'vxfile recover' to look for what follows.");
    return sum;
}

void CRawVerifier::JudgeSegment(const CSegmentAt& segment, const CRecordingAt& recording, const std::string& name,
                                std::size_t index) {
    m_coverage.Add({segment.position, std::min(segment.End(), m_scan.Size())});
    const bool isRunning = !recording.IsFinished();
    const bool isCut = segment.bytes.size() < m_scan.Layout().segment.size;
    if (isCut && isRunning) return;
    if (!IsExactSegmentHdr(m_scan.Layout(), segment.bytes))
        Add(NameOfSegment(name, index, segment), segment.position,
            BreachesOfSegmentHdr(m_scan.Layout(), segment.bytes));
    if (isCut) return;
    JudgeValues(segment, name, index);
    JudgeNextSegment(segment, name, index);
    if (!m_scan.HasByteAt(segment.End() - 1) && !(isRunning && IsIncomplete(segment)))
        Add(NameOfSegment(name, index, segment) + " > samples", segment.DataPosition(),
            Counted(static_cast<std::uint64_t>(m_scan.Size() - segment.DataPosition()), "byte"),
            Counted(segment.Samples() * std::uint64_t{2}, "byte"),
            "The file was cut within the samples, or Size is damaged; readers return 0 for the missing ones, or fail.");
    JudgeSamples(segment, NameOfSegment(name, index, segment));
}

/// Delivers the samples, and looks for pages of zeros, which a power cut leaves; they may include the header's `Size`.
/// Stops once it has read as many bytes as the file has, which happens only if segments overlap.
void CRawVerifier::JudgeSamples(const CSegmentAt& segment, const std::string& name) {
    const std::int64_t end = EndOfSamples(segment);
    const std::int64_t size = end - segment.DataPosition();
    if (size < 0) return;
    if (size > m_mostSamples) return m_delivery.Miss();
    if (end == m_scan.Size() && end < segment.End()) m_delivery.Miss();
    m_mostSamples -= size;
    const auto report = [&](std::int64_t from, std::int64_t to) {
        Add(name + " > samples", from, Counted(static_cast<std::uint64_t>(to - from), "byte") + " that are 0",
            "no zeros from the start of a page of 4096 bytes",
            "A power cut leaves this in place of samples that never reached the disk.");
    };
    try {
        m_delivery.Deliver(segment, end, m_samples);
        vxfileio::recovery::ForLostPages(m_samples, segment.DataPosition(), end, report);
    } catch (const vxfileio::recovery::CReadFailure& failure) {
        Add(name + " > samples", failure.Position(), "a byte that can't be read", "samples", "The disk is damaged.");
        m_delivery.Miss();
    }
}

/// Returns the end of the samples in the file. If a header to which a position points begins before it, `Size` is
/// damaged, and the samples end there.
std::int64_t CRawVerifier::EndOfSamples(const CSegmentAt& segment) const {
    std::int64_t end = std::min(segment.End(), m_scan.Size());
    const auto isWithin = [&](std::int64_t position) { return position >= segment.DataPosition() && position < end; };
    const std::int64_t next = segment.header.FPosNextSegmentHdr;
    if (isWithin(next) && m_scan.HasSegmentAt(next)) end = next;
    const std::int64_t nextRecording = m_recording->header.FPosNextRecordingHdr;
    if (isWithin(nextRecording) && m_scan.HasRecordingAt(nextRecording)) end = nextRecording;
    return end;
}

/// Returns true if the file ends inside the segment, as it may in an unfinished recording.
bool CRawVerifier::IsIncomplete(const CSegmentAt& segment) const {
    if (segment.bytes.size() < m_scan.Layout().segment.size) return true;
    return segment.header.FPosNextSegmentHdr == kUnset && !m_scan.HasByteAt(segment.End() - 1);
}

/// Doesn't compare the next segment with one whose times contradict its size.
void CRawVerifier::JudgeValues(const CSegmentAt& segment, const std::string& recording, std::size_t index) {
    auto breach = m_rules.BreachOf(m_scan.Layout(), segment.header);
    if (!breach || breach->rule == ERule::NoOverlap) m_rules.Note(segment.header);
    if (breach) Add(NameOfSegment(recording, index, segment), segment.position, *std::move(breach));
}

void CRawVerifier::JudgeNextSegment(const CSegmentAt& segment, const std::string& recording, std::size_t index) {
    const std::int64_t next = segment.header.FPosNextSegmentHdr;
    if (!IsInFile(next) || next == segment.End()) return;
    Add(NameOfSegment(recording, index, segment) + " > FPosNextSegmentHdr", OffsetOf(segment, "FPosNextSegmentHdr"),
        Text(next), Text(segment.End()) + ", where this segment ends",
        "Writers put the next segment elsewhere; readers follow the position anyway.");
}

void CRawVerifier::JudgeBreak(const CChainBreak& chainBreak, const std::string& where, std::string_view wanted,
                              const std::string& meaning) {
    const std::string position = Text(chainBreak.position);
    const std::string what(wanted);
    switch (chainBreak.reason) {
        case CChainBreak::EReason::Nowhere:
            Add(where, chainBreak.cell, position, "-1 or a position in the file", meaning);
            break;
        case CChainBreak::EReason::NoHeader:
            Add(where, chainBreak.cell,
                position + ", where " +
                    Quoted(m_scan.ReadBytes(chainBreak.position, m_scan.Layout().segment.cells.front().width)) + " is",
                "the position of " + what, meaning);
            break;
        case CChainBreak::EReason::TooManyChannels:
            Add(where, chainBreak.cell, position + ", where a recording has an impossible number of channels",
                "0 to " + std::to_string(m_scan.Layout().mostChannels) + " channels", meaning);
            break;
        case CChainBreak::EReason::Circle:
            m_circle = true;
            Add(where, chainBreak.cell, position + ", which the chain has visited before", "-1 or the next position",
                meaning);
            break;
    }
}

void CRawVerifier::JudgeBreakOfRecordings(const CChainBreak& chainBreak) {
    const std::size_t count = m_scan.Recordings().size();
    const std::string where = count == 0 ? "file header > FPosFirstRecordingHdr"
                                         : NameOf(m_scan.Recordings().back(), count - 1) + " > FPosNextRecordingHdr";
    JudgeBreak(chainBreak, where, "a recording",
               "Readers refuse the whole file; run 'vxfile recover' to save the intact recordings.");
    m_findings.MakeUnusable();
}

/// After an unfinished recording, a file may end with the first bytes of a segment, or with a recording header that no
/// position points to yet.
bool CRawVerifier::IsBeingWritten(CRange tail) const {
    const auto& recordings = m_scan.Recordings();
    if (m_scan.IsGrowing() || recordings.empty()) return m_scan.IsGrowing();
    if (recordings.back().IsFinished()) return false;
    const std::int64_t size = tail.end - tail.begin;
    const auto firstCell = static_cast<std::int64_t>(m_scan.Layout().segment.cells.front().width);
    return size < firstCell || (size <= m_scan.RecordingHdrSize() && m_scan.HasRecordingAt(tail.begin));
}

void CRawVerifier::JudgeCoverage() {
    const auto describe = [&](CRange range) {
        return Counted(static_cast<std::uint64_t>(range.end - range.begin), "byte") + " up to " + Text(range.end);
    };
    m_coverage.Inspect(
        m_scan.Size(),
        [&](CRange gap) {
            if (gap.end == m_scan.Size() && IsBeingWritten(gap)) return;
            Add("file", gap.begin, describe(gap) + " that no position leads to", "bytes of a header or a segment",
                "This content was lost or never finished; run 'vxfile recover' to look for segments in it.");
        },
        [&](CRange overlap) {
            if (m_circle) return;  // chains visit some bytes twice
            Add("file", overlap.begin, describe(overlap) + " that belong to two headers or segments",
                "bytes that belong to one", "A position or a Size is damaged.");
        });
}

}  // namespace

CFindings VerifyRawData(const std::string& path, const CReach& reach) { return VerifyChosen(path, {}, reach); }

CFindings VerifyWithSamples(const std::string& path, CSampleReceiver& receiver, const CReach& reach) {
    return CRawVerifier(path, {}, reach, &receiver).Verify();
}

CFindings VerifyChosen(const std::string& path, const CPlateChoice& choice, const CReach& reach) {
    return CRawVerifier(path, choice, reach, nullptr).Verify();
}

}  // namespace vxfile
