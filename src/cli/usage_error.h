#pragma once

#include <stdexcept>
#include <string>

namespace pelorin::cli {

/// The arguments make no sense; `what()` is one line that says which and why. Ends the program with exit code 2.
class UsageError : public std::runtime_error {
public:
    explicit UsageError(const std::string& reason) : std::runtime_error(reason) {}
};

} // namespace pelorin::cli
