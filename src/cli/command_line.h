#pragma once

#include <string>
#include <vector>

namespace pelorin::cli {

enum ExitCode : int { kAllDone = 0, kSomethingFailed = 1, kWrongUsage = 2 };

/// Runs the verb that the arguments (without the program's name) ask for and returns the exit code.
[[nodiscard]] int RunCommandLine(const std::vector<std::string>& arguments);

} // namespace pelorin::cli
