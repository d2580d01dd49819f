#include "cli/command_line.h"
#include "cli/interrupt.h"

int main(int argc, char** argv) {
    pelorin::cli::LeaveNothingHalfWrittenWhenStopped();
    return pelorin::cli::RunCommandLine({argv + 1, argv + argc});
}
