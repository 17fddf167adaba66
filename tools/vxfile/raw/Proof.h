#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "tools/vxfile/report/Json.h"

namespace vxfile {

/// What a seal says about the segments of a recovered file.
class CProof {
 public:
    /// A segment that isn't proven, or isn't there.
    struct CRemark {
        enum class EKind : std::uint8_t {
            Changed,   ///< Its samples aren't those that were sealed.
            Moved,     ///< It was sealed as a segment of another recording, `sealedAs`.
            Unsealed,  ///< The seal has no segment of this recording, well and times.
            Missing,   ///< It was sealed, but isn't in the recovered file.
        };

        EKind kind = EKind::Changed;
        std::string recording;  ///< Its task and number.
        std::int32_t well = 0;
        std::int64_t from = 0;
        std::int64_t to = 0;
        std::int64_t offset = 0;  ///< In the recovered file; of a missing one, in the sealed file.
        std::string sealedAs = {};
    };

    static constexpr std::size_t kMostKept = 10'000;
    static constexpr std::size_t kMostPrinted = 50;

    std::string seal;     ///< The path of the seal.
    std::string failure;  ///< Why the seal can't be used; then nothing is proven.
    std::size_t segments = 0;
    std::size_t proven = 0;
    bool isOfAnotherFile = false;                            ///< The seal has none of the samples.
    std::vector<std::map<std::int32_t, std::size_t>> wells;  ///< The proven segments of each recording, by well.
    std::vector<CRemark> remarks;                            ///< The first ones.
    std::size_t more = 0;                                    ///< The number of others.

    void Add(CRemark remark);

    /// Returns whether the recovered file has all that was sealed, and nothing else.
    bool IsComplete() const { return failure.empty() && remarks.empty(); }

    /// Prints it for people.
    void Print(std::ostream& out) const;

    /// Adds it to the object that `recover` prints for programs: a member `seal`, and `proven` to each well.
    void AddTo(CJson& json) const;
};

/// Compares each segment of `recovered` with the seal of `source`: recording, well, times and samples. Positions don't
/// matter. Returns nothing if there is no seal. Takes about 100 bytes per sealed segment.
std::optional<CProof> ProveSegments(const std::string& source, const std::string& recovered);

}  // namespace vxfile
