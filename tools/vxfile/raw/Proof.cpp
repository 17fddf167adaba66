#include "tools/vxfile/raw/Proof.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>
#include <tuple>
#include <utility>

#include "tools/vxfile/report/Seal.h"
#include "tools/vxfile/report/Text.h"
#include "tools/vxfile/system/Interrupt.h"
#include "tools/vxfile/system/Xxh3.h"
#include "verify/raw/RawScan.h"

namespace vxfile {

namespace {

using EKind = CProof::CRemark::EKind;

/// The well of a segment, its first time and its last.
using CPlace = std::tuple<std::int32_t, std::int64_t, std::int64_t>;

struct CSealedSegment {
    CPlace place;
    std::uint32_t recording = 0;  ///< Index in the list of names.
    CXxh3Sum sum{};
    std::int64_t offset = 0;
    bool isMet = false;   ///< The recovered file has a segment of this recording and place.
    bool isUsed = false;  ///< It proves a segment of the recovered file.
};

std::string NameOfRecording(const std::string& task, std::int32_t number) {
    return Readable(task) + ' ' + std::to_string(number);
}

class CProver {
 public:
    CProver(const std::string& source, CProof& proof) : m_proof(proof) {
        CSealReader reader(SealOf(source));
        for (CSealedPart part; reader.Next(part);) {
            CheckInterrupt();
            if (part.kind != CSealedPart::EKind::Segment) continue;
            m_sealed.push_back({{part.well, part.from, part.to},
                                IndexOf(NameOfRecording(part.task, part.recording)),
                                part.samplesSum,
                                part.offset});
        }
        std::ranges::stable_sort(m_sealed, {}, &CSealedSegment::place);
    }

    void Compare(const CRawScan& scan) {
        m_proof.wells.resize(scan.Recordings().size());
        for (std::size_t i = 0; i < scan.Recordings().size(); ++i) {
            const CRecordingAt& recording = scan.Recordings()[i];
            const auto index = IndexOf(NameOfRecording(recording.header.TaskName, recording.header.Recording));
            CSegmentWalk walk = SegmentsOf(scan, recording);
            while (const CSegmentAt* segment = walk.Next()) {
                CheckInterrupt();
                ++m_proof.segments;
                if (Proves(scan.File(), *segment, index)) ++m_proof.wells[i][segment->header.ID];
            }
        }
        // One segment is too little to tell another file from a changed one.
        m_proof.isOfAnotherFile =
            m_proof.segments > 1 && m_sealed.size() > 1 && std::ranges::none_of(m_sealed, &CSealedSegment::isUsed);
        for (const CSealedSegment& sealed : m_sealed) {
            if (!sealed.isMet && !sealed.isUsed) Add(EKind::Missing, sealed.recording, sealed.place, sealed.offset);
        }
    }

 private:
    /// Returns the index of the name of a recording; a new name gets a new one.
    std::uint32_t IndexOf(const std::string& name) {
        return m_recordings.try_emplace(name, static_cast<std::uint32_t>(m_recordings.size())).first->second;
    }

    const std::string& NameAt(std::uint32_t index) const {
        return std::ranges::find(m_recordings, index, [](const auto& recording) { return recording.second; })->first;
    }

    void Add(EKind kind, std::uint32_t recording, const CPlace& place, std::int64_t offset, std::string sealedAs = {}) {
        const auto& [well, from, to] = place;
        m_proof.Add({kind, NameAt(recording), well, from, to, offset, std::move(sealedAs)});
    }

    /// Returns whether the seal has this segment with the same samples. Each sealed segment proves one.
    bool Proves(const vxfileio::helpers::CFile& file, const CSegmentAt& segment, std::uint32_t recording) {
        const CPlace place{segment.header.ID, segment.header.TimeFrom, segment.header.TimeTo};
        const CXxh3Sum sum = SumOfSamples(file, segment);
        CSealedSegment* same = nullptr;
        bool isMet = false;
        auto next = std::ranges::lower_bound(m_sealed, place, {}, &CSealedSegment::place);
        for (; next != m_sealed.end() && next->place == place; ++next) {
            CSealedSegment& sealed = *next;
            const bool isOfRecording = sealed.recording == recording;
            if (sealed.isUsed) continue;
            if (isOfRecording) isMet = sealed.isMet = true;
            const bool isBetter = same == nullptr || (isOfRecording && same->recording != recording);
            if (sealed.sum == sum && isBetter) same = &sealed;
        }
        if (same == nullptr) {
            Add(isMet ? EKind::Changed : EKind::Unsealed, recording, place, segment.position);
            return false;
        }
        same->isUsed = true;
        if (same->recording == recording) {
            ++m_proof.proven;
            return true;
        }
        Add(EKind::Moved, recording, place, segment.position, NameAt(same->recording));
        return false;
    }

    CXxh3Sum SumOfSamples(const vxfileio::helpers::CFile& file, const CSegmentAt& segment) {
        for (std::int64_t at = segment.DataPosition(); at < segment.End();) {
            const auto left = static_cast<std::size_t>(segment.End() - at);
            const auto block = std::as_writable_bytes(std::span(m_block)).first(std::min(left, m_block.size()));
            const std::size_t read = file.ReadUpTo(at, block);
            if (read == 0) break;
            m_xxh3.Add(block.first(read));
            at += static_cast<std::int64_t>(read);
        }
        return m_xxh3.Take();
    }

    CProof& m_proof;
    std::vector<CSealedSegment> m_sealed;  ///< Sorted by place.
    std::map<std::string, std::uint32_t> m_recordings;
    CXxh3 m_xxh3;
    std::vector<char> m_block = std::vector<char>(std::size_t{256} << 10);
};

std::string_view WordOf(EKind kind) {
    constexpr std::array<std::string_view, 4> kWords = {"changed", "moved", "unsealed", "missing"};
    return kWords[static_cast<std::size_t>(kind)];
}

std::string MeaningOf(const CProof::CRemark& remark) {
    switch (remark.kind) {
        case EKind::Changed:
            return "its samples changed after the file was sealed";
        case EKind::Moved:
            return "it was sealed as a segment of " + remark.sealedAs;
        case EKind::Unsealed:
            return "the seal has no such segment";
        default:
            return "it was sealed, but isn't in the new file";
    }
}

}  // namespace

void CProof::Add(CRemark remark) {
    if (remarks.size() < kMostKept) {
        remarks.push_back(std::move(remark));
    } else {
        ++more;
    }
}

void CProof::Print(std::ostream& out) const {
    if (!failure.empty()) {
        out << "  " << Readable(failure) << '\n';
        return;
    }
    if (isOfAnotherFile) {
        out << "  The seal " << Readable(seal)
            << " belongs to another file, or this file was replaced: it has none of these samples.\n";
        return;
    }
    const auto printed = std::span(remarks).first(std::min(remarks.size(), kMostPrinted));
    for (const CRemark& remark : printed)
        out << "  " << WordOf(remark.kind) << ": " << remark.recording << ", well " << remark.well << ", times "
            << remark.from << " to " << remark.to << ": " << MeaningOf(remark) << '\n';
    const std::size_t others = remarks.size() - printed.size() + more;
    if (others > 0) out << "  and " << others << " more; --json lists up to " << kMostKept << '\n';
    out << Readable(seal) << ": proves " << proven << " of " << Counted(segments, "segment") << '\n';
}

void CProof::AddTo(CJson& json) const {
    CJson& object = json["seal"] = {{"path", Utf8(seal)}};
    if (!failure.empty()) {
        object["error"] = Readable(failure);
        return;
    }
    object["ofAnotherFile"] = isOfAnotherFile;
    object["segments"] = segments;
    object["proven"] = proven;
    object["remarks"] = CJson::array();
    for (const CRemark& remark : remarks)
        object["remarks"].push_back({{"kind", WordOf(remark.kind)},
                                     {"recording", remark.recording},
                                     {"well", remark.well},
                                     {"from", remark.from},
                                     {"to", remark.to},
                                     {"offset", remark.offset},
                                     {"sealedAs", remark.kind == EKind::Moved ? CJson(remark.sealedAs) : CJson()}});
    object["moreRemarks"] = more;
    for (std::size_t i = 0; i < std::min(wells.size(), json["recordings"].size()); ++i) {
        for (CJson& well : json["recordings"][i]["wells"]) {
            const auto found = wells[i].find(well["well"].get<std::int32_t>());
            well["proven"] = found == wells[i].end() ? 0 : found->second;
        }
    }
}

std::optional<CProof> ProveSegments(const std::string& source, const std::string& recovered) {
    if (!HasSeal(source)) return std::nullopt;
    CProof proof;
    proof.seal = SealOf(source);
    try {
        CProver prover(source, proof);
        prover.Compare(CRawScan(recovered));
    } catch (const CSealFailure& failure) {
        proof.failure = failure.what();
    }
    return proof;
}

}  // namespace vxfile
