#include <iostream>
#include <string>
#include <type_traits>
#include <variant>
#include <vector>

#include "vxfileio/rawdata/Layout.h"

/// @file
/// Prints a line for each cell of each version of the raw data format, for `check_layouts.py`: version, header, offset,
/// width, key and type, separated by tabs.

namespace {

using namespace vxfileio::rawdata;

template <class Value>
std::string NameOf() {
    if constexpr (std::is_same_v<Value, std::string>) {
        return "text";
    } else if constexpr (std::is_same_v<Value, std::vector<std::int64_t>>) {
        return "list of int64";
    } else if constexpr (std::is_same_v<Value, double>) {
        return "double";
    } else {
        static_assert(std::is_integral_v<Value>, "give the new type the name that docs/raw-data-file.md uses");
        return (std::is_unsigned_v<Value> ? "uint" : "int") + std::to_string(8 * sizeof(Value));
    }
}

struct CTypeOf {
    ERole role;

    std::string operator()(std::monostate /*member*/) const { return "text"; }
    template <class Header>
    std::string operator()(CBareText<Header> /*member*/) const {
        return "text";
    }
    std::string operator()(CChannelCount /*member*/) const { return "int32"; }
    /// Intervals have 32 bits in the file, although their field is wider.
    std::string operator()(CChannelList member) const {
        const bool isOfDoubles = std::holds_alternative<double CRawDataChannelInfo::*>(member.field);
        return isOfDoubles ? "list of doubles" : "list of int32";
    }
    template <class Header, class Value>
    std::string operator()(Value Header::* /*member*/) const {
        return role == ERole::Value ? NameOf<Value>() : "position";
    }
};

void Print(std::int32_t version, const char* header, const auto& cells) {
    for (const auto& cell : cells) {
        std::cout << version << '\t' << header << '\t' << cell.offset << '\t' << cell.width << '\t' << cell.key << '\t'
                  << std::visit(CTypeOf{cell.traits.role}, cell.member) << '\n';
    }
}

}  // namespace

int main() {
    for (const CLayout& layout : Layouts()) {
        Print(layout.version, "File", layout.file.cells);
        Print(layout.version, "Recording", layout.recording.cells);
        Print(layout.version, "Segment", layout.segment.cells);
    }
}
