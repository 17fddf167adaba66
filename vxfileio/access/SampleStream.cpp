#include "vxfileio/access/SampleStream.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "vxfileio/access/Internals.h"
#include "vxfileio/access/PieceReader.h"
#include "vxfileio/access/SelectionData.h"

namespace vxfileio::access {

namespace {

/// The samples of a block: small enough for the processor's cache.
constexpr std::size_t kBlock = (std::size_t{64} << 10) / sizeof(std::uint16_t);

/// Notes pieces until their samples fill a block, and then reads and delivers them.
class CBlock {
 public:
    CBlock(const CSelectionData& selection, const std::function<void(const CSamplePart&)>& take)
        : m_reader(selection.Index().reader->File(), selection.Index().fileSize), m_take(take), m_samples(kBlock) {}

    /// Adds a piece. One that doesn't fit into the rest of the block begins a new one.
    void Add(std::int32_t wellID, CSelectedPiece piece) {
        while (piece.samples > 0) {
            if (piece.samples > kBlock - m_used) Deliver();
            const std::size_t count = std::min<std::uint64_t>(piece.samples, kBlock);
            const std::span part = std::span(m_samples).subspan(m_used, count);
            m_reader.Add(piece.offset, count, {part.data()});
            m_parts.push_back({wellID, piece.timeFrom, piece.interval, piece.offset, part});
            m_used += count;
            piece.SkipFirst(count);
        }
    }

    void Deliver() {
        m_reader.Flush();
        for (const CSamplePart& part : m_parts)
            m_take(part);
        m_parts.clear();
        m_used = 0;
    }

 private:
    CPieceReader<CRawPlace> m_reader;
    const std::function<void(const CSamplePart&)>& m_take;
    std::vector<std::uint16_t> m_samples;
    std::vector<CSamplePart> m_parts;
    std::size_t m_used = 0;
};

}  // namespace

void StreamSamples(const CSampleSelection& selection, const std::function<void(const CSamplePart&)>& take) {
    const CSelectionData& data = CInternals::DataOf(selection);
    CBlock block(data, take);
    data.ForEachPiece([&](const CSegmentRow& /*row*/, const CSelectedPiece& piece) {
        block.Add(data.Wells()[piece.well].WellID, piece);
    });
    block.Deliver();
}

}  // namespace vxfileio::access
