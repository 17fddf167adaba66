#include "vxfileio/access/SampleSelection.h"

#include <algorithm>
#include <utility>

#include "vxfileio/access/PieceReader.h"
#include "vxfileio/access/SelectionData.h"
#include "vxfileio/base/ExcVXReader.h"
#include "vxfileio/rawdata/RawDataErrors.h"

using namespace vxfileio::access;

namespace {

/// Samples that are read between two calls of `check`.
constexpr std::uint64_t kStep = std::uint64_t{8} << 20;

/// Adds the samples of the pieces, and calls `check` after each step.
template <class Place>
void AddPieces(const CSelectionData& selection, std::vector<Place>& places, const std::function<void()>& check) {
    CPieceReader<Place> reader(selection.Index().reader->File(), selection.Index().fileSize);
    std::uint64_t left = kStep;
    selection.ForEachPiece([&](const CSegmentRow& /*row*/, const CSelectedPiece& piece) {
        Place& place = places[piece.well];
        std::int64_t offset = piece.offset;
        for (std::uint64_t samples = piece.samples; samples > 0;) {
            const std::uint64_t part = std::min(samples, left);
            reader.Add(offset, part, place);
            place.to += part;
            offset += static_cast<std::int64_t>(part * vxfileio::rawdata::kSampleBytes);
            samples -= part;
            left -= part;
            if (left > 0) continue;
            reader.Flush();
            check();
            left = kStep;
        }
    });
    reader.Flush();
}

/// Reads all samples; `placeOf(well, buffer)` says where those of a well begin.
template <class Sample, class PlaceOf>
void ReadInto(const CSelectionData& selection, std::span<const std::span<Sample>> buffers, PlaceOf placeOf,
              const std::function<void()>& check) {
    const auto hasRoom = [](const CWellSamples& well, std::span<Sample> buffer) {
        return buffer.size() >= well.Samples;
    };
    if (!std::ranges::equal(selection.Wells(), buffers, hasRoom)) throw CExcVXReader(vxfileio::rawdata::kWrongBuffers);
    using CPlace = decltype(placeOf(selection.Wells().front(), buffers.front()));
    std::vector<CPlace> places;
    for (std::size_t i = 0; i < buffers.size(); ++i)
        places.push_back(placeOf(selection.Wells()[i], buffers[i]));
    AddPieces(selection, places, check);
}

}  // namespace

CSampleSelection::CSampleSelection(std::shared_ptr<const CSelectionData> data) : m_data(std::move(data)) {}

const std::vector<CWellSamples>& CSampleSelection::GetWells() const noexcept { return m_data->Wells(); }

std::uint64_t CSampleSelection::GetSamples() const noexcept { return m_data->Samples(); }

void CSampleSelection::Read(std::span<const std::span<std::uint16_t>> buffers) const {
    Read(buffers, [] {});
}

void CSampleSelection::ReadScaled(std::span<const std::span<double>> buffers) const {
    ReadScaled(buffers, [] {});
}

void CSampleSelection::Read(std::span<const std::span<std::uint16_t>> buffers,
                            const std::function<void()>& check) const {
    const auto placeOf = [](const CWellSamples& /*well*/, auto buffer) { return CRawPlace{buffer.data()}; };
    ReadInto(*m_data, buffers, placeOf, check);
}

void CSampleSelection::ReadScaled(std::span<const std::span<double>> buffers,
                                  const std::function<void()>& check) const {
    const auto placeOf = [&](const CWellSamples& well, auto buffer) {
        const CRawDataChannelInfo channel = m_data->ChannelOf(well);
        return CScaledPlace{buffer.data(), static_cast<double>(channel.ADZero), channel.UnitsPerAD};
    };
    ReadInto(*m_data, buffers, placeOf, check);
}
