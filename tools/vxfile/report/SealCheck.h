#pragma once

#include <cstdint>
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

/// Compares every byte of a file with its seal, and adds a finding for each changed part. Returns nothing if there is
/// no seal. Throws `CFailure` if the file can't be read.
std::optional<CSealVerdict> CheckSeal(const std::string& path, CFindings& findings);

}  // namespace vxfile
