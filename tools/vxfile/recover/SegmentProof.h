#pragma once

#include <cstdint>
#include <optional>

#include "tools/vxfile/recover/Evidence.h"
#include "tools/vxfile/recover/HeaderProbe.h"

namespace vxfile {

/// Proves segments that stand where one is expected, from their own cells, what is known of their wells, and what
/// stands behind them. Damage to a single cell is made up for by the others.
class CSegmentProof {
 public:
    struct CVerdict {
        bool holds = false;
        bool cut = false;  ///< Its samples go on behind the end of the file.
    };

    /// Both stay the caller's and outlive this; the evidence may grow in between.
    CSegmentProof(const CHeaderProbe& probe, const CEvidence& evidence) : m_probe(probe), m_evidence(evidence) {}

    /// One cell may be lost if the others make up for it and what follows confirms where the segment ends; the probe
    /// then has what they say.
    CVerdict Prove(CSegmentProbe& segment) const;

    /// Returns where a segment with a damaged header ends, as far as one of its cells and what follows agree about it:
    /// the nearest such place, as nothing may be jumped over.
    std::optional<std::int64_t> EndOfDamaged(const CSegmentProbe& segment) const;

 private:
    bool MakeUp(CSegmentProbe& segment) const;
    bool MendTimeFrom(CSegmentProbe& segment) const;
    bool MendTimeTo(CSegmentProbe& segment) const;
    bool MendSize(CSegmentProbe& segment) const;
    bool MendContradiction(CSegmentProbe& segment) const;
    bool IsFollowed(const CSegmentProbe& segment) const;
    bool LeadsNearer(const CSegmentProbe& segment, std::int64_t end) const;

    const CHeaderProbe& m_probe;
    const CEvidence& m_evidence;
};

}  // namespace vxfile
