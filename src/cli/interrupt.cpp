#include "cli/interrupt.h"

#include "base/files.h"

#include <csignal>
#include <cstdlib>

namespace pelorin::cli {

namespace {

// Only what a signal handler may call; buffered output is dropped on purpose.
extern "C" void CleanUpAndLeave(int signal) {
    RemoveUnfinishedFiles();
    std::_Exit(128 + signal);
}

} // namespace

void LeaveNothingHalfWrittenWhenStopped() {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        // What the parent chose to ignore (nohup) stays ignored.
        if (std::signal(signal, CleanUpAndLeave) == SIG_IGN) std::signal(signal, SIG_IGN);
    }
    std::signal(SIGXFSZ, SIG_IGN);
}

} // namespace pelorin::cli
