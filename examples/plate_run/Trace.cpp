#include "Trace.h"

#include <algorithm>
#include <stdexcept>
#include <string>

#include "Segment.h"

namespace {

/// Returns the channel of a well from the header of the recording. It says how to convert samples to volts.
const CRawDataChannelInfo& ChannelOf(const CRawDataRecordingHdr& header, std::int32_t wellID) {
    const auto channel = std::ranges::find(header.WellChannels, wellID, &CRawDataChannelInfo::ID);
    if (channel == header.WellChannels.end()) {
        throw std::runtime_error("Well " + std::to_string(wellID) + " isn't in recording " + header.TaskName + " " +
                                 std::to_string(header.Recording));
    }
    return *channel;
}

}  // namespace

CTrace ReadTrace(CIRawDataReader& reader, enTask task, std::int32_t recording, std::int32_t wellID) {
    const std::string taskName = TaskToString(task);
    if (!reader.JumpToData(taskName, recording)) {
        throw std::runtime_error("There is no recording " + taskName + " " + std::to_string(recording));
    }
    const CRawDataRecordingHdr& header = *reader.GetRecordingHdr(taskName, recording);
    const CRawDataChannelInfo& channel = ChannelOf(header, wellID);
    CTrace trace{static_cast<std::int64_t>(header.RecordingStartTime), channel.Ticks, channel.UnitsPerAD / 1000, {}};

    reader.SelectWellID(wellID);  // its segments follow each other without gaps in time
    CSegment segment{};
    while (ReadSegment(reader, segment)) {
        for (const std::uint16_t sample : segment.samples)
            trace.samples.push_back(sample - channel.ADZero);
    }
    return trace;
}
