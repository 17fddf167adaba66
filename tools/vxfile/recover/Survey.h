#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>

#include "tools/vxfile/recover/HeaderProbe.h"
#include "tools/vxfile/recover/HeaderScan.h"
#include "tools/vxfile/recover/Inventory.h"

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

    /// Surveys the file from its beginning to its end. Call this or `TakeAlongChains`, and once.
    CInventory Take();

    /// Tells after `Take` whether no position that is whole leads elsewhere than to what stands next.
    bool IsStraight() const { return m_isStraight; }

    /// Surveys the file as a reader goes, from position to position, wherever they lead. Returns nothing unless every
    /// chain is whole to its end: only then is it better to go by than by the order in the file.
    std::optional<CInventory> TakeAlongChains();

 private:
    /// What speaks for a segment header.
    struct CProof {
        bool holds = false;
        bool cut = false;
    };

    /// What the segments of a well have told by now.
    struct CSeenWell {
        std::int64_t atLeast = 1;  ///< A smaller interval would make more samples of some segment's times.
        std::int64_t atMost;       ///< A larger one would make fewer.
        std::int64_t to;           ///< The last time.
    };

    void TakeFileHdr();
    bool TakeRecording();
    bool TakeSegment();
    void PassDamage();
    void LoseSegment(const CSegmentProbe& probe, std::int64_t end);
    bool GoBackIntoWhatWasHit();
    void DoubtWhatGrew(std::int64_t from, std::int64_t to);
    bool TakeChain();
    bool MayBeWithoutSegments(std::int64_t data);
    bool HasRoomForMore() const;
    bool AreApart() const;
    void TellGaps();

    CProof Prove(CSegmentProbe& probe) const;
    bool MakeUp(CSegmentProbe& probe) const;
    bool MendTimeFrom(CSegmentProbe& probe) const;
    bool MendTimeTo(CSegmentProbe& probe) const;
    bool MendSize(CSegmentProbe& probe) const;
    bool MendContradiction(CSegmentProbe& probe) const;
    bool IsFollowed(const CSegmentProbe& probe) const;
    bool LeadsNearer(const CSegmentProbe& probe, std::int64_t end) const;
    bool IsPromised(std::int64_t position) const;
    bool Belongs(const vxfileio::rawdata::CSegmentHdr& header) const;
    bool IsExpected(const vxfileio::rawdata::CSegmentHdr& header) const;
    bool IsForeign(const CSegmentProbe& probe) const;
    CHeaderScan Scan() const;
    std::optional<std::int64_t> EndOfDamaged(const CSegmentProbe& probe) const;
    std::int64_t TickOf(std::int32_t wellID) const;
    void Accept(const CSegmentProbe& probe);
    void AcceptCut(const CSegmentProbe& probe);
    void Keep(const CSegmentProbe& probe, std::int64_t samples, std::int64_t to);
    void Tally(const vxfileio::rawdata::CSegmentHdr& header);
    void BeginRecording(const CRecordingProbe& probe, bool unfinished);
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
    std::int32_t m_version = vxfileio::rawdata::kNewestVersion;
    std::set<std::int64_t> m_promised;         ///< Where whole cells say that a recording header stands.
    std::map<std::int32_t, CSeenWell> m_seen;  ///< The wells of the recording at hand.
    /// What the segment before says of the next one, if its cell is whole and a segment is what came last.
    std::optional<std::int64_t> m_next;
    std::optional<std::int64_t> m_nextRecording;  ///< The same of recordings.
    bool m_isStraight = true;
    std::int64_t m_wentBackFrom =
        0;  ///< Each place is gone back from once at most, so that the survey comes to an end.
    std::optional<CRemark> m_astray;  ///< The first position that was set and leads elsewhere.
};

}  // namespace vxfile
