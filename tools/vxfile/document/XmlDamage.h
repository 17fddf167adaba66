#pragma once

#include <string>
#include <string_view>

namespace vxfile {

/// Returns a sentence that says where a document ends early or closes what isn't open; empty if every element that is
/// opened is closed. Readers take what stands ahead of such a place and guess at the rest.
std::string DamageOfDocument(std::string_view document);

}  // namespace vxfile
