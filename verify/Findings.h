#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vxfile {

/// One thing in a file that isn't as its format has it.
struct CFinding {
    std::string where;         ///< The way there in words: recording, segment and cell, or the path of an element.
    std::int64_t offset = -1;  ///< Bytes from the start of the file; -1 if it has no place.
    std::string found;         ///< What the file has.
    std::string expected;      ///< What should.
    std::string meaning;       ///< What that means for readers of the file.
    std::string rule = {};     ///< The name of the rule that is broken; empty if it has none.
    std::optional<std::int32_t> well = {};  ///< The ID of the well; empty if it isn't about one.
};

/// All findings about one file. A damaged file may have millions; all are counted, the first ones kept.
class CFindings {
 public:
    static constexpr std::size_t kMostKept = 1000;

    void Add(CFinding finding);

    /// Adds the findings of another check of the file, but not those elsewhere.
    void Add(CFindings findings);

    /// Counts a finding about something that wasn't chosen.
    void AddElsewhere() { ++m_elsewhere; }
    std::size_t Elsewhere() const { return m_elsewhere; }

    /// Notes that no reader can use the file.
    void MakeUnusable() { m_usable = false; }
    bool IsUsable() const { return m_usable; }

    std::size_t Count() const { return m_count; }
    const std::vector<CFinding>& Kept() const { return m_kept; }

 private:
    std::vector<CFinding> m_kept;
    std::size_t m_count = 0;
    std::size_t m_elsewhere = 0;
    bool m_usable = true;
};

}  // namespace vxfile
