#include "tools/vxfile/raw/UnitScales.h"

#include "verify/Text.h"

namespace vxfile {

CScaleFaults ScaleFaultsOf(const CRawScan& scan, const CRecordingAt& recording) {
    const auto& layout = scan.Layout();
    const std::string bytes = scan.ReadBytes(recording.position, layout.recording.size);
    return ScaleFaultsOf(layout, bytes, recording.header.WellChannels);
}

std::string TextOf(const CScaleFault& fault, const CRecordingAt& recording, std::size_t index, std::int32_t well) {
    const std::string ofWell = " for well " + std::to_string(well);
    return std::string(fault.key) + " of " + NameOf(recording, index) + " has " +
           (fault.text.empty() ? "no value" + ofWell : Quoted(fault.text) + ofWell + ", which isn't a valid number");
}

}  // namespace vxfile
