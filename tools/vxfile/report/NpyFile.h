#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "tools/vxfile/system/Output.h"

namespace vxfile {

/// A numpy array with its own output.
class CNpyFile {
 public:
    /// Creates the output and writes the header. `type` is a numpy type such as `'<f8'`. `countAhead` returns the
    /// number of items that will follow; it is called only if the header can't be rewritten later, as in a pipe. Throws
    /// `CFailure` if the output can't be created.
    CNpyFile(const CTarget& target, std::string type, const std::function<std::uint64_t()>& countAhead);

    /// Appends `items` items, whose bytes are `bytes`.
    void Put(std::span<const std::byte> bytes, std::size_t items) {
        m_count += items;
        m_output.Write(bytes);
    }

    /// Completes the array, and adds its output to a list for `COutput::Commit`.
    void Finish(std::vector<COutput*>& outputs);

 private:
    std::string Header(std::uint64_t count) const;

    std::string m_type;
    COutput m_output;
    std::uint64_t m_count = 0;
};

}  // namespace vxfile
