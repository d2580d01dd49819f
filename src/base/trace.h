// Trace lines: what a developer wants to see and a person does not. They go to a sink that a debugger or a test sets,
// and nowhere otherwise.
#pragma once

#include <string_view>

namespace pelorin {

using TraceSink = void (*)(std::string_view line);

/// Null: nowhere. Returns the sink that was set before.
TraceSink SetTraceSink(TraceSink sink);
void Trace(std::string_view line);

} // namespace pelorin
