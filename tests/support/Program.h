#pragma once

#include "base/FileDescriptor.h"

#include <string>
#include <vector>

#include <sys/types.h>

namespace tovi::test {

struct ProgramResult {
    int exitCode = -1; // 128 plus the signal where one ended it
    std::string output;
    std::string errors;
};

/// Runs a program to its end with both outputs caught and nothing on its standard input.
ProgramResult runProgram(const std::string& program, const std::vector<std::string>& arguments);

/// A program that runs beside the test; ended at the latest with this object.
class RunningProgram {
  public:
    RunningProgram(const std::string& program, const std::vector<std::string>& arguments);
    ~RunningProgram();
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    /// The next line of its standard output, waited for; empty once the output has ended or
    /// nothing came for a minute.
    std::string nextLine();

    /// Sends a signal and waits for the end; the exit code as `ProgramResult` has it.
    int end(int signal);

  private:
    FileDescriptor output_;
    std::string read_;
    pid_t process_ = -1;
};

} // namespace tovi::test
