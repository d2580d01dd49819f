#include "base/trace.h"

#include <atomic>

namespace pelorin {

namespace {

std::atomic<TraceSink> sinkInUse = nullptr;

} // namespace

TraceSink SetTraceSink(TraceSink sink) {
    return sinkInUse.exchange(sink);
}

void Trace(std::string_view line) {
    if (const auto sink = sinkInUse.load()) sink(line);
}

} // namespace pelorin
