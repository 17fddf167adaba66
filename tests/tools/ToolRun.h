#pragma once

#include <functional>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "tools/vxfile/shell/Program.h"

/// What a run of the program, or a part of it, left.
struct CToolRun {
    int status = 0;
    std::string out;  ///< On standard output.
    std::string err;  ///< On standard error.
};

/// Calls `work`, whose result is the status, and keeps what it prints.
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
