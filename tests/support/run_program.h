// Runs one of our programs as a person would and keeps what it said.
#pragma once

#include <string>
#include <vector>

namespace pelorin::test {

struct ProgramResult {
    int exitCode = -1; ///< 128 + the signal's number when one ended it
    std::string out, err;
};

/// Runs build/bin/NAME with the arguments in `folder`. `prefix` is shell text in front ("ulimit -f 1;").
[[nodiscard]] ProgramResult RunProgram(const std::string& name, const std::vector<std::string>& arguments,
                                       const std::string& folder, const std::string& prefix = {});

} // namespace pelorin::test
