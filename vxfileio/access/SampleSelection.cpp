#include "vxfileio/access/SampleSelection.h"

#include <algorithm>
#include <utility>

#include "vxfileio/access/PieceReader.h"
#include "vxfileio/access/SelectionData.h"
#include "vxfileio/base/ExcVXReader.h"
#include "vxfileio/rawdata/RawDataErrors.h"

using namespace vxfileio::access;

namespace {

/// Reads all samples; `placeOf(well, buffer)` says where those of a well begin.
template <class Sample, class PlaceOf>
void ReadInto(const CSelectionData& selection, std::span<const std::span<Sample>> buffers, PlaceOf placeOf) {
    const auto hasRoom = [](const CWellSamples& well, std::span<Sample> buffer) {
        return buffer.size() >= well.Samples;
    };
    if (!std::ranges::equal(selection.Wells(), buffers, hasRoom)) throw CExcVXReader(vxfileio::rawdata::kWrongBuffers);
    using CPlace = decltype(placeOf(selection.Wells().front(), buffers.front()));
    std::vector<CPlace> places;
    for (std::size_t i = 0; i < buffers.size(); ++i)
        places.push_back(placeOf(selection.Wells()[i], buffers[i]));
    CPieceReader<CPlace> reader(selection.Index().reader->File());
    selection.ForEachPiece([&](const CSegmentRow& /*row*/, const CSelectedPiece& piece) {
        reader.Add(piece.offset, piece.samples, places[piece.well]);
        places[piece.well].to += piece.samples;
    });
    reader.Flush();
}

}  // namespace

CSampleSelection::CSampleSelection(std::shared_ptr<const CSelectionData> data) : m_data(std::move(data)) {}

const std::vector<CWellSamples>& CSampleSelection::GetWells() const noexcept { return m_data->Wells(); }

std::uint64_t CSampleSelection::GetSamples() const noexcept { return m_data->Samples(); }

void CSampleSelection::Read(std::span<const std::span<std::uint16_t>> buffers) const {
    ReadInto(*m_data, buffers, [](const CWellSamples& /*well*/, auto buffer) { return CRawPlace{buffer.data()}; });
}

void CSampleSelection::ReadScaled(std::span<const std::span<double>> buffers) const {
    ReadInto(*m_data, buffers, [&](const CWellSamples& well, auto buffer) {
        const CRawDataChannelInfo channel = m_data->ChannelOf(well);
        return CScaledPlace{buffer.data(), static_cast<double>(channel.ADZero), channel.UnitsPerAD};
    });
}
