#include "vxfileio/helpers/File.h"

namespace vxfileio {

CFile::~CFile() { Close(); }

bool CFile::Append(std::initializer_list<CBytes> buffers) {
    if (!WriteAt(m_end, buffers)) {
        // A failed cut leaves bytes behind the end that nothing points at; the next Append overwrites them.
        Truncate(m_end);
        return false;
    }
    for (const CBytes& buffer : buffers)
        m_end += static_cast<std::int64_t>(buffer.size());
    return true;
}

}  // namespace vxfileio
