#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "tools/vxfile/recover/Evidence.h"
#include "tools/vxfile/recover/HeaderProbe.h"
#include "tools/vxfile/recover/HeaderScan.h"
#include "tools/vxfile/recover/Inventory.h"
#include "tools/vxfile/recover/SegmentProof.h"

namespace vxfile {

/// Finds what is whole in a raw data file.
///
/// A writer puts header behind header without a gap. So the survey goes from one to the next: where a header ends, with
/// its samples if it has any, the next one must stand. Where it doesn't, what is left of the damaged header tells how
/// far it reaches; only if it tells nothing are the bytes behind it searched. Samples of a segment that proved itself
/// are never looked at, so that a file within the samples can't pass for a part of this one.
class CSurvey {
 public:
    /// `reach` is told the position that has been surveyed by now. The probe stays the caller's and outlives this.
    CSurvey(const CHeaderProbe& probe, bool keepCut, std::function<void(std::int64_t)> reach);
    // Its parts know one another by their addresses.
    CSurvey(const CSurvey&) = delete;
    CSurvey& operator=(const CSurvey&) = delete;

    /// Surveys the file from its beginning to its end. Call this or `TakeAlongChains`, and once.
    CInventory Take();

    /// Tells after `Take` whether no position that is whole leads elsewhere than to what stands next.
    bool IsStraight() const { return m_isStraight; }

    /// Surveys the file as a reader goes, from position to position, wherever they lead. Returns nothing unless every
    /// chain is whole to its end: only then is it better to go by than by the order in the file.
    std::optional<CInventory> TakeAlongChains();

 private:
    void TakeFileHdr();
    bool TakeRecording();
    bool TakeSegment();
    void PassDamage();
    void LoseSegment(const CSegmentProbe& probe, std::int64_t end);
    bool GoesBackForShift(std::optional<std::int64_t> shift, std::int64_t end);
    std::optional<std::int64_t> ShiftBehind(std::int64_t position) const;
    void DoubtSamples(std::int64_t shift);
    bool EndsHere() const;
    bool MayReachFurther() const;
    bool GoBackIntoWhatWasHit();
    bool SettleWhatGrew(std::int64_t next);
    bool SettleGrownHeader(std::int64_t next);
    bool EndsSoFarOff(const CFoundSegment& segment, std::int64_t by) const;
    bool TakeChain();
    bool MayBeWithoutSegments(std::int64_t data);
    bool HasRoomForMore() const;
    bool AreApart() const;
    void TellGaps();

    bool IsForeign(const CSegmentProbe& probe) const;
    CHeaderScan Scan() const;
    void Accept(const CSegmentProbe& probe);
    void AcceptCut(const CSegmentProbe& probe);
    void Keep(const CSegmentProbe& probe, std::int64_t samples, std::int64_t to);
    void BeginRecording(const CRecordingProbe& probe, bool unfinished);
    void Learn(const CFoundRecording& recording);
    bool MakeUpRecording(std::int64_t from, std::int64_t to);
    void Compare(const std::string& what, std::int64_t told, std::int64_t there);
    void TellEnd();
    void TellEndOf(const std::string& what, std::optional<std::int64_t> told, const std::string& thing);
    void DoubtThatItWasEmpty();
    void DoubtDamaged(const CSegmentProbe& probe);
    void Lose(std::int64_t from, std::int64_t to, std::optional<std::int32_t> wellID, std::string why);
    void Doubt(std::int64_t from, std::int64_t to, std::optional<std::int32_t> wellID, std::string why);
    CRemark Remark(std::int64_t from, std::int64_t to, std::optional<std::int32_t> wellID, std::string why) const;

    const CHeaderProbe& m_probe;
    bool m_keepCut;
    std::function<void(std::int64_t)> m_reach;
    CInventory m_found;
    std::int64_t m_position = 0;
    std::int32_t m_version = kNewestVersion;
    CEvidence m_evidence;
    CSegmentProof m_proof{m_probe, m_evidence};
    std::optional<std::int64_t> m_nextRecording;  ///< What the recording before says of the next one, if that is whole.
    std::int64_t m_shift = 0;  ///< How far behind the end of things their positions lead, since bytes were taken out.
    bool m_isStraight = true;
    /// Each place is gone back from once at most, so that the survey comes to an end.
    std::int64_t m_wentBackFrom = 0;
    std::optional<CRemark> m_astray;  ///< The first position that was set and leads elsewhere.
};

}  // namespace vxfile
