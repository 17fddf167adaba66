#include "tools/vxfile/report/Differences.h"

#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace vxfile {

void CompareLeaves(const std::vector<CLeaf>& left, const std::vector<CLeaf>& right, CDifferences& differences) {
    std::unordered_map<std::string_view, std::string_view> others;
    for (const auto& leaf : right)
        others.emplace(leaf.where, leaf.value);
    std::unordered_set<std::string_view> met;
    for (const auto& leaf : left) {
        met.insert(leaf.where);
        const auto other = others.find(leaf.where);
        if (other == others.end()) {
            differences.Add({leaf.where, leaf.value, ""});
        } else if (other->second != leaf.value) {
            differences.Add({leaf.where, leaf.value, std::string(other->second)});
        }
    }
    for (const auto& leaf : right) {
        if (!met.contains(leaf.where)) differences.Add({leaf.where, "", leaf.value});
    }
}

}  // namespace vxfile
