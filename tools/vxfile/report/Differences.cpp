#include "tools/vxfile/report/Differences.h"

#include <cstdint>
#include <string_view>
#include <unordered_map>

namespace vxfile {

void CompareLeaves(const std::vector<CLeaf>& left, const std::vector<CLeaf>& right, CDifferences& differences) {
    // The right leaves of each place, linked in their order: the first that isn't compared yet, and the next of each.
    constexpr std::size_t kNone = SIZE_MAX;
    std::unordered_map<std::string_view, std::size_t> first;
    std::vector<std::size_t> next(right.size(), kNone);
    for (std::size_t i = right.size(); i-- > 0;)
        next[i] = std::exchange(first.try_emplace(right[i].where, kNone).first->second, i);

    std::vector<bool> isCompared(right.size());
    for (const CLeaf& leaf : left) {
        const auto place = first.find(leaf.where);
        if (place == first.end() || place->second == kNone) {
            differences.Add({leaf.where, leaf.value, ""});
            continue;
        }
        const std::size_t other = place->second;
        place->second = next[other];
        isCompared[other] = true;
        if (right[other].value != leaf.value) differences.Add({leaf.where, leaf.value, right[other].value});
    }
    for (std::size_t i = 0; i < right.size(); ++i) {
        if (!isCompared[i]) differences.Add({right[i].where, "", right[i].value});
    }
}

}  // namespace vxfile
