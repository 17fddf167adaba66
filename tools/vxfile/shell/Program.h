#pragma once

namespace vxfile {

/// Runs the program with the arguments of its main function. Returns the exit status; nothing is thrown.
int RunProgram(int argc, const char* const* argv) noexcept;

}  // namespace vxfile
