#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <set>

#include "tools/vxfile/recover/HeaderProbe.h"
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
    /// `reach` is told the position that has been surveyed by now. The file stays the caller's and outlives this.
    CSurvey(const vxfileio::CFile& file, bool keepCut, std::function<void(std::int64_t)> reach);

    /// Surveys the file from its beginning to its end. Call this or `TakeAlongChains`, and once.
    CInventory Take();

    /// Surveys the file as a reader goes, from position to position, wherever they lead. Returns nothing unless every
    /// chain is whole to its end: only then is it better to go by than by the order in the file.
    std::optional<CInventory> TakeAlongChains();

 private:
    /// What speaks for a segment header.
    struct CProof {
        bool holds = false;
        bool disagrees = false;  ///< With the interval that the recording header gives its well.
        bool cut = false;
    };

    void TakeFileHdr();
    bool TakeRecording();
    bool TakeSegment();
    void PassDamage();
    bool TakeChain();
    bool HasRoomForMore() const;
    bool AreApart() const;

    CProof Prove(CSegmentProbe& probe) const;
    bool MendSize(CSegmentProbe& probe) const;
    bool IsFollowed(const CSegmentProbe& probe) const;
    std::optional<std::int64_t> EndOfDamaged(const CSegmentProbe& probe) const;
    std::int64_t TickOf(std::int32_t wellID) const;
    void Accept(const CSegmentProbe& probe, const CProof& proof);
    void AcceptCut(const CSegmentProbe& probe);
    void Tally(const CSegmentProbe& probe, bool disagrees);
    void BeginRecording(const CRecordingProbe& probe, bool unfinished);
    void MakeUpRecording(std::int64_t from, std::int64_t to);
    void Lose(std::int64_t from, std::int64_t to, std::optional<std::int32_t> wellID, std::string why);

    CHeaderProbe m_probe;
    bool m_keepCut;
    std::function<void(std::int64_t)> m_reach;
    CInventory m_found;
    std::int64_t m_position = 0;
    std::int32_t m_version = vxfileio::rawdata::kNewestVersion;
    std::set<std::int64_t> m_promised;  ///< Where whole cells say that a recording header stands.
    /// What the segment before says of the next one, if its cell is whole and a segment is what came last.
    std::optional<std::int64_t> m_next;
};

}  // namespace vxfile
