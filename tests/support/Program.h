#pragma once

#include <string>
#include <vector>

namespace tovi::test {

struct ProgramResult {
    int exitCode = -1; // 128 plus the signal where one ended it
    std::string output;
    std::string errors;
};

/// Runs a program to its end with both outputs caught and nothing on its standard input.
ProgramResult runProgram(const std::string& program, const std::vector<std::string>& arguments);

} // namespace tovi::test
