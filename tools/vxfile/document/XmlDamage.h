#pragma once

#include <string>
#include <string_view>

namespace vxfile {

/// Returns a sentence that says where a document ends early or closes an element that isn't open; empty if all elements
/// are closed. Readers take what comes before such a place, and may misread the rest.
std::string DamageOfDocument(std::string_view document);

}  // namespace vxfile
