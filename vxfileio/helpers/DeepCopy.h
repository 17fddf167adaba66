#pragma once

#include <memory>
#include <vector>

/// @file
/// Copies objects that are owned by pointer. A null pointer stays null.

namespace vxfileio::helpers {

template <class Value>
std::unique_ptr<Value> DeepCopy(const std::unique_ptr<Value>& source) {
    return source ? std::make_unique<Value>(*source) : nullptr;
}

template <class Value>
std::vector<std::unique_ptr<Value>> DeepCopy(const std::vector<std::unique_ptr<Value>>& source) {
    std::vector<std::unique_ptr<Value>> copy;
    copy.reserve(source.size());
    for (const auto& value : source)
        copy.push_back(DeepCopy(value));
    return copy;
}

}  // namespace vxfileio::helpers
