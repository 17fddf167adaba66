#include "verify/Findings.h"

#include <utility>

namespace vxfile {

void CFindings::Add(CFinding finding) {
    ++m_count;
    if (m_kept.size() < kMostKept) m_kept.push_back(std::move(finding));
}

void CFindings::Add(CFindings findings) {
    m_count += findings.m_count - findings.m_kept.size();
    for (CFinding& finding : findings.m_kept)
        Add(std::move(finding));
}

}  // namespace vxfile
