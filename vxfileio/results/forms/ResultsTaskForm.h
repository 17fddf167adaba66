#pragma once

#include "vxfileio/results/ResultsTask.h"
#include "vxfileio/results/forms/ResultsRecordingForm.h"
#include "vxfileio/xmlarchive/XmlFields.h"

namespace vxfileio::xmlarchive {

template <>
struct CXmlForm<CResultsTask> {
    static constexpr std::string_view kElement = "Task";
    static constexpr auto kFields = std::tuple{
        CValueField{"TaskName", &CResultsTask::TaskName},
        CObjectsField{"Recordings", &CResultsTask::Recordings},
    };
};

}  // namespace vxfileio::xmlarchive
