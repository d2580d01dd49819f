#include "app/format_rows.h"
#include "cli/command_line.h"
#include "cli/interrupt.h"

int main(int argc, char** argv) {
    pelorin::RegisterFormatRows();
    pelorin::cli::LeaveNothingHalfWrittenWhenStopped();
    return pelorin::cli::RunCommandLine({argv + 1, argv + argc});
}
