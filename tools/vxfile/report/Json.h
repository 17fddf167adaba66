#pragma once

#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace vxfile {

/// JSON with its members in the order in which they were put.
using CJson = nlohmann::ordered_json;

}  // namespace vxfile

// Takes long to compile, so only Json.cpp does.
extern template std::string nlohmann::basic_json<nlohmann::ordered_map>::dump(int, char, bool, error_handler_t) const;

namespace vxfile {

/// Prints the document that a command answers `--json` with: the program and its version, the command, and `files`.
void PrintJson(std::string_view command, CJson files);

/// Runs `work` and returns its exit status. If it fails, prints a document whose only file is `file` with the error,
/// and returns `kTrouble`.
[[nodiscard]] int RunForJson(std::string_view command, CJson file, const std::function<int()>& work);

}  // namespace vxfile
