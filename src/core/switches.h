// What the command line asks for.
#pragma once

#include "platform/single_instance.h"

#include <string>

namespace pelorin {

struct Switches {
    std::string patch;     ///< "/delpatch:": what an update left behind
    std::string librarian; ///< "/librarian:": the folder that the Librarian is to show
    /// The arguments that are no switches, with blanks between them.
    std::string text;
    CommandLine files; ///< the same, apart
};

/// A switch stands at the start of an argument, in any case. "/librarian:" counts only without "/delpatch:".
[[nodiscard]] Switches ParseSwitches(const CommandLine& arguments);

/// The arguments as another process understands them: relative paths of things that exist made whole.
[[nodiscard]] CommandLine MakeAbsolute(const CommandLine& arguments, const std::string& currentFolder);

} // namespace pelorin
