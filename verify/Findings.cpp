#include "verify/Findings.h"

#include <utility>

namespace vxfile {

void CFindings::Add(CFinding finding) {
    ++m_count;
    if (m_kept.size() < kMostKept) m_kept.push_back(std::move(finding));
}

}  // namespace vxfile
