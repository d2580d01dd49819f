// One workbench a person: a second start hands its command line to the first and ends.
#pragma once

#include <string>
#include <vector>

namespace pelorin {

using CommandLine = std::vector<std::string>; ///< the arguments behind the program's name

class SingleInstance {
public:
    virtual ~SingleInstance() = default;
    /// True when this start is the first; it is then the one that others hand their command lines to. Also true when
    /// the system gives no way to know.
    [[nodiscard]] virtual bool Claim() = 0;
    /// Hands the whole command line to the running instance. False when it does not answer.
    virtual bool HandOver(const CommandLine& arguments) = 0;
    /// The command lines that arrived since the last call. Does not wait.
    [[nodiscard]] virtual std::vector<CommandLine> Receive() = 0;
    /// What to watch for arrivals; -1 when there is nothing to watch.
    [[nodiscard]] virtual int Descriptor() const { return -1; }
};

} // namespace pelorin
