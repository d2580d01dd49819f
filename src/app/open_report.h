// What would happen to a request to open something, in words, without doing it.
#pragma once

#include "core/dispatch.h"

#include <string>

namespace pelorin {

struct OpenReport {
    std::string action;   ///< "open", "create", "system", "viewer", "search", "transfer", "nothing" or "refuse"
    std::string receiver; ///< the document's name ("icon", "icon library"); empty when there is none
    std::string type;     ///< the name of the file's kind; empty for what is no file
    int kind = 0;
    int icons = -1;      ///< of a file that was looked into; -1: it was not
    std::string message; ///< why nothing would open; empty else
};

/// `text` as a person wrote it, quotes and all.
[[nodiscard]] OpenReport ReportOpen(std::string_view text, const OpenOptions& options, OpenHooks& hooks);
/// One line: "icon library (Apple Macintosh Icon, 4 icons)".
[[nodiscard]] std::string DescribeOpen(const OpenReport& report);

} // namespace pelorin
