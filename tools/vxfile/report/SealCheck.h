#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "tools/vxfile/report/Json.h"
#include "verify/Findings.h"

namespace vxfile {

/// The result of comparing a file with its seal.
struct CSealVerdict {
    enum class EState : std::uint8_t {
        Intact,     ///< The file is unchanged since it was sealed.
        Grown,      ///< It grew; the sealed bytes are intact.
        Changed,    ///< Sealed bytes are changed or missing.
        OtherFile,  ///< The seal belongs to another file.
        Unusable    ///< The seal can't be used.
    };

    std::string seal;  ///< The path of the seal.
    EState state = EState::Unusable;
    std::int64_t sealedSize = 0;  ///< The size of the file when it was sealed; 0 if the seal can't be used.

    /// Returns a short text, such as "as sealed".
    std::string Words() const;
    CJson Json() const;
};

/// The comparison of every byte of a file with its seal.
class CSealCheck {
 public:
    /// Starts to read the file if it has a seal, so that other checks before `Finish` find it in the page cache. Throws
    /// `CFailure` if the file can't be opened.
    explicit CSealCheck(const std::string& path);
    ~CSealCheck();
    CSealCheck(const CSealCheck&) = delete;
    CSealCheck& operator=(const CSealCheck&) = delete;

    /// Adds a finding for each changed part, and returns the result; nothing if there is no seal. Call it once. Throws
    /// `CFailure` if the file can't be read.
    std::optional<CSealVerdict> Finish(CFindings& findings);

 private:
    class CComparison;

    std::string m_seal;                         ///< The path of the seal; empty if there is none.
    std::string m_failure;                      ///< Why it can't be used; empty if it can.
    std::unique_ptr<CComparison> m_comparison;  ///< Null without a seal that can be used.
};

}  // namespace vxfile
