#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace vxfile {

/// A difference between two files. If only one of them has something there, the other text is empty.
struct CDifference {
    std::string where;
    std::string left;
    std::string right;
};

/// The differences between two files. All are counted, the first ones kept.
class CDifferences {
 public:
    static constexpr std::size_t kMostKept = 1000;

    void Add(CDifference difference) {
        ++m_count;
        if (m_kept.size() < kMostKept) m_kept.push_back(std::move(difference));
    }

    /// Records a sentence about something that can't be compared. Keeps the first one.
    void Omit(std::string sentence) {
        if (m_omission.empty()) m_omission = std::move(sentence);
    }

    std::size_t Count() const { return m_count; }
    const std::vector<CDifference>& Kept() const { return m_kept; }
    /// What wasn't compared, so that files without a difference may still differ; empty if everything was.
    const std::string& Omission() const { return m_omission; }

 private:
    std::vector<CDifference> m_kept;
    std::size_t m_count = 0;
    std::string m_omission;
};

/// The content of a file at one place, such as a cell or an element.
struct CLeaf {
    std::string where;
    std::string value;
};

/// Compares the contents of two files, place by place. A damaged file may have several leaves of one place: these are
/// compared in their order.
void CompareLeaves(const std::vector<CLeaf>& left, const std::vector<CLeaf>& right, CDifferences& differences);

}  // namespace vxfile
