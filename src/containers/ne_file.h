// 16-bit program files and icon libraries: the resource table and the names.
//
// Layout, little-endian; n is the place of the second header, "NE":
//   n+0x24  u16 place of the resource table, from n
//   n+0x26  u16 place of the resident names, from n
//   n+0x3F  u8 major version of the system that the file was made for; 3 and above are read
// Resource table: u16 alignment shift; then type blocks: u16 type (high bit: a number), u16 count, u32 0, and 12 bytes
// an entry: u16 place and u16 length, both shifted left by the alignment, u16 flags, u16 id (high bit: a number), u32
// 0. A type of 0 ends the table. Names: one byte of length and the characters each; the first one is the module's.
//
// In a library of many icons the names stand more than 64 KB behind the header. Their u16 place then holds the low 16
// bits: the first such place behind the resource table is meant.
#pragma once

#include "containers/icon_resources.h"

namespace pelorin {

/// The name that the table of an icon library begins with.
inline constexpr std::string_view kLibraryModule = "ICL";
/// Stands in the table for an icon without a name.
inline constexpr std::string_view kNoNameNe = "@";

/// `header` is the place of the second header. Nothing when the file is damaged or older than version 3.
[[nodiscard]] IconResources FindIconsInNe(ByteSpan file, std::size_t header);

} // namespace pelorin
