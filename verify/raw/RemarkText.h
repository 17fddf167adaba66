#pragma once

#include <string>

#include "recovery/Report.h"

namespace vxfile {

/// Returns why something is lost or in doubt, as a clause.
std::string TextOf(const vxfileio::recovery::CRemark& remark);

/// Returns what had to be made up, as a clause. `header` names the header.
std::string TextOf(const vxfileio::recovery::CNote& note, const std::string& header);

}  // namespace vxfile
