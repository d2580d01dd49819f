#include "platform/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

namespace pelorin {

namespace {

int DescriptorOf(Stream stream) {
    return stream == Stream::Input ? STDIN_FILENO : stream == Stream::Output ? STDOUT_FILENO : STDERR_FILENO;
}

} // namespace

bool IsTerminal(Stream stream) {
    return isatty(DescriptorOf(stream)) != 0;
}

int TerminalColumns(Stream stream) {
    winsize size{};
    return ioctl(DescriptorOf(stream), TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

} // namespace pelorin
