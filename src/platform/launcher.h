// Starting other programs on a file or an address.
#pragma once

#include <string>

namespace pelorin {

class Launcher {
public:
    virtual ~Launcher() = default;
    /// The system's own choice of program for a file or a web address. False when nothing could be started.
    [[nodiscard]] virtual bool Open(const std::string& target) = 0;
    /// A command line as file types have it: the program in quotes when it has blanks, "%1" where the file goes (at the
    /// end when it is not there). The program is started directly, never by a shell.
    [[nodiscard]] virtual bool Run(const std::string& command, const std::string& file) = 0;
};

} // namespace pelorin
