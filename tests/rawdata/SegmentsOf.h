#pragma once

#include <vxfileio/frame/VXFileIO.h>

#include <cstdint>
#include <string>

/// The arguments of `ReadSegment`, to be taken apart: `auto [well, from, to, size, samples] = CNextSegment();`
struct CNextSegment {
    std::int32_t well = 0;
    std::int64_t from = 0;
    std::int64_t to = 0;
    std::uint32_t size = 0;
    std::uint16_t* samples = nullptr;
};

/// Reads at most `most` segments and returns them as a line: "well[from..to]samples" for each, "end" at the end of the
/// chain, or the text of a failure.
inline std::string SegmentsOf(CIRawDataReader& reader, int most = 1000) {
    std::string line;
    const auto add = [&](const std::string& item) { line.append(line.empty() ? "" : " ").append(item); };
    try {
        for (int i = 0; i < most; ++i) {
            auto [wellID, from, to, size, samples] = CNextSegment();
            if (!reader.ReadSegment(wellID, from, to, size, samples)) {
                add("end");
                break;
            }
            std::string item = std::to_string(wellID) + "[" + std::to_string(from) + ".." + std::to_string(to) + "]";
            for (std::uint32_t s = 0; s < size; ++s)
                item += (s == 0 ? "" : ",") + std::to_string(samples[s]);
            add(item);
        }
    } catch (const CExcVXReader& failure) {
        add(failure.GetMsg());
    }
    return line;
}
