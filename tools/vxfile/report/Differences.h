#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace vxfile {

/// One place where two files differ. What only one of them has is empty in the other.
struct CDifference {
    std::string where;
    std::string left;
    std::string right;
};

/// How two files differ. All differences are counted, the first ones kept.
class CDifferences {
 public:
    static constexpr std::size_t kMostKept = 1000;

    void Add(CDifference difference) {
        ++m_count;
        if (m_kept.size() < kMostKept) m_kept.push_back(std::move(difference));
    }

    /// Notes, as a sentence, that something can't be compared. The first one is kept.
    void Omit(std::string sentence) {
        if (m_omission.empty()) m_omission = std::move(sentence);
    }

    std::size_t Count() const { return m_count; }
    const std::vector<CDifference>& Kept() const { return m_kept; }
    /// What wasn't compared, so that files without a difference needn't be the same; empty if all was.
    const std::string& Omission() const { return m_omission; }

 private:
    std::vector<CDifference> m_kept;
    std::size_t m_count = 0;
    std::string m_omission;
};

/// What a file says at one place, such as a cell or an element. Places have names of their own.
struct CLeaf {
    std::string where;
    std::string value;
};

/// Compares what two files say, place by place.
void CompareLeaves(const std::vector<CLeaf>& left, const std::vector<CLeaf>& right, CDifferences& differences);

}  // namespace vxfile
