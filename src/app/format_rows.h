// The rows that lower layers ask for and upper ones have.
#pragma once

namespace pelorin {

/// Gives the picture readers of icons to the load dispatch, and the readers of libraries and program files to the
/// sources of icons. Once at the start of a program, before the first read; a
/// second call does nothing.
void RegisterFormatRows();

} // namespace pelorin
