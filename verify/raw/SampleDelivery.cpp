#include "verify/raw/SampleDelivery.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <span>

#include "vxfileio/helpers/LittleEndian.h"
#include "vxfileio/rawdata/ScaleFault.h"
#include "vxfileio/rawdata/SegmentTimes.h"

using namespace vxfileio::rawdata;

namespace vxfile {

void CSampleDelivery::Begin(std::size_t number, const CRecordingAt& recording, const CLayout& layout,
                            std::string_view header) {
    if (m_receiver == nullptr) return;
    const CScaleFaults faults = ScaleFaultsOf(layout, header, recording.header.WellChannels);
    std::vector<CRawDataChannelInfo> wells;
    m_intervals.clear();
    for (const CRawDataChannelInfo& channel : recording.header.WellChannels) {
        if (!m_intervals.try_emplace(channel.ID, channel.Ticks).second) continue;
        CRawDataChannelInfo& well = wells.emplace_back(channel);
        if (faults.contains(well.ID)) well.UnitsPerAD = std::numeric_limits<double>::quiet_NaN();
    }
    m_receiver->Begin(number, wells);
}

/// Reads a segment at once, so that the window still has it for the check. Longer ones are read in several blocks.
void CSampleDelivery::Deliver(const CSegmentAt& segment, std::int64_t end, vxfileio::recovery::CWindow& window) {
    if (m_receiver == nullptr) return;
    const auto listed = m_intervals.find(segment.header.ID);
    CSegmentSamples part{.well = segment.header.ID, .timeFrom = segment.header.TimeFrom};
    part.interval = IntervalOf(part.timeFrom, segment.header.TimeTo, segment.Samples(),
                               listed == m_intervals.end() ? 0 : listed->second);
    constexpr std::int64_t kBlock = std::int64_t{1} << 20;
    constexpr auto kPart = static_cast<std::int64_t>(sizeof m_samples);
    for (std::int64_t block = segment.DataPosition(); block < end; block += kBlock) {
        std::string_view bytes = window.At(block, static_cast<std::size_t>(std::min(kBlock, end - block)));
        while (bytes.size() >= sizeof(std::uint16_t)) {
            DeliverPart(part, bytes.substr(0, kPart));
            bytes.remove_prefix(std::min<std::size_t>(bytes.size(), kPart));
            const auto next = TimeAfter(part.timeFrom, std::ssize(m_samples), part.interval);
            if (!next) return;  // damaged: no time has 64 bits from here on
            part.timeFrom = *next;
        }
    }
}

void CSampleDelivery::DeliverPart(CSegmentSamples part, std::string_view bytes) {
    const auto from = std::as_bytes(std::span(bytes));
    const std::size_t count = bytes.size() / sizeof(std::uint16_t);
    for (std::size_t i = 0; i < count; ++i)
        m_samples[i] = vxfileio::helpers::LoadLE16(from.data() + i * sizeof(std::uint16_t));
    part.samples = std::span(m_samples).first(count);
    m_receiver->Take(part);
}

}  // namespace vxfile
