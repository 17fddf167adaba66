#pragma once

#include <vxfileio/frame/VXFileIO.h>

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

/// Returns all samples of a selection, well after well.
inline std::vector<std::uint16_t> SamplesOf(const CSampleSelection& selection) {
    std::vector<std::uint16_t> samples(selection.GetSamples());
    std::vector<std::span<std::uint16_t>> buffers;
    std::size_t begin = 0;
    for (const CWellSamples& well : selection.GetWells())
        buffers.push_back(std::span(samples).subspan(std::exchange(begin, begin + well.Samples), well.Samples));
    selection.Read(buffers);
    return samples;
}
