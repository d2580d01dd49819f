#pragma once

namespace pelorin::cli {

/// From here on an interrupt (or a request to end) removes the files that are being written and ends the program with
/// 128 + the signal's number: 130 for Ctrl+C. Finished files stay. A file-size limit becomes an error of the write.
void LeaveNothingHalfWrittenWhenStopped();

} // namespace pelorin::cli
