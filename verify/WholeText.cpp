#include "verify/WholeText.h"

#include <span>

#include "verify/OpenInput.h"
#include "vxfileio/helpers/File.h"

namespace vxfile {

std::string ReadWholeText(const std::string& path) {
    vxfileio::helpers::CFile file;
    OpenInput(file, path);
    std::string bytes(static_cast<std::size_t>(file.Size()), '\0');
    bytes.resize(file.ReadUpTo(0, std::as_writable_bytes(std::span(bytes))));
    return bytes;
}

}  // namespace vxfile
