#pragma once

#include "vxfileio/results/forms/ResultsTaskForm.h"
#include "vxfileio/settings/forms/HeaderForm.h"

namespace vxfileio::results {

inline constexpr std::string_view kResultsElement = "Results";
inline constexpr xmlarchive::CXmlElement kTaskElement = xmlarchive::kElementOf<xmlarchive::CXmlForm<CResultsTask>>;

/// The children of the root of a results file.
inline constexpr xmlarchive::CXmlElement kResultsRoot[] = {
    xmlarchive::kElementOf<xmlarchive::CXmlForm<CXmlFileHeader>>,
    {.tag = kResultsElement, .kind = xmlarchive::EXmlKind::Entries, .children = {&kTaskElement, 1}},
};

}  // namespace vxfileio::results
