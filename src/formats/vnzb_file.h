// VNZB blocks in files. What goes wrong with a file leaves a trace line.
#pragma once

#include "base/files.h"
#include "formats/vnzb.h"

namespace pelorin {

/// Writes what the block holds to a file. False, with an older file as it was, when the block is bad or the file cannot
/// be written.
[[nodiscard]] bool UncompressVnzbToFile(ByteSpan block, std::string_view path);
/// The same to a file that is on its way already; false for a bad block. Write errors throw `FileException`.
[[nodiscard]] bool UncompressVnzbToFile(ByteSpan block, SafeFile& file);
/// Writes the content as a block.
[[nodiscard]] bool CompressToVnzbFile(ByteSpan content, std::string_view path);
/// The same with the content of a file.
[[nodiscard]] bool CompressToVnzbFile(std::string_view source, std::string_view path);
/// A file's bytes; null when it cannot be read.
[[nodiscard]] std::optional<Bytes> LoadFileToBuffer(std::string_view path);

} // namespace pelorin
