#pragma once

#include <functional>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "tools/vxfile/shell/Program.h"

/// The result of running the program or a part of it.
struct CToolRun {
    int status = 0;
    std::string out;  ///< The standard output.
    std::string err;  ///< The standard error.
};

/// Calls `work`, which returns the status, and captures what it prints.
inline CToolRun Captured(const std::function<int()>& work) {
    std::ostringstream out;
    std::ostringstream err;
    auto* const oldOut = std::cout.rdbuf(out.rdbuf());
    auto* const oldErr = std::cerr.rdbuf(err.rdbuf());
    const int status = work();
    std::cout.rdbuf(oldOut);
    std::cerr.rdbuf(oldErr);
    return {status, out.str(), err.str()};
}

/// Runs the program with these arguments.
inline CToolRun RunTool(const std::vector<std::string>& arguments) {
    std::vector<const char*> words = {"vxfile"};
    for (const auto& argument : arguments)
        words.push_back(argument.c_str());
    return Captured([&] { return vxfile::RunProgram(static_cast<int>(words.size()), words.data()); });
}
