// Whether a person is looking: a standard stream may be a terminal, a file or a pipe.
#pragma once

namespace pelorin {

enum class Stream { Input, Output, Error };

[[nodiscard]] bool IsTerminal(Stream stream);
/// Columns of the terminal behind the stream; 80 when it is none or does not tell.
[[nodiscard]] int TerminalColumns(Stream stream);

} // namespace pelorin
