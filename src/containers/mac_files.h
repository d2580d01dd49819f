// Macintosh icons written: plain families, resource forks and MacBinary files.
//
// Resource fork, big-endian:
//   0      u32 offset of the data area (0x100), u32 offset of the map, u32 length of the data area, u32 length of the
//   map 0x100  u32 length of the only block, and the icon family (icns_file.h) map    the first 16 bytes again; 8 bytes
//   that only matter in memory; u16 attributes, u16 offset of the type list
//          (0x1C), u16 offset of the name list (the map's end); u16 number of types less 1; for each type its four
//          letters, u16 number of resources less 1, u16 offset of their references from the type list; for each
//          resource u16 id, u16 offset of the name (0xFFFF: none), u32 offset in the data area, u32 0
// The family and each of its elements have a reference, by rank, with ids from 0xBFB9 on; only that of the family leads
// to a block of its own.
//
// MacBinary, big-endian, all else 0:
//   1    u8 length of the name, 63 bytes name, "rsrc" and "VPLS", u8 Finder flags
//   83   u32 length of the data fork, u32 of the resource fork, u32 dates of creation and change
//   102  "mBIN"
//   122  u8 version, u8 version needed (0x81), u16 CRC of all that is in front
//   128  the resource fork, padded to a multiple of 128
#pragma once

#include "core/file_kinds.h"
#include "icon/icon_group.h"

namespace pelorin {

class UserPrompt;

/// These give no bytes when no format of the icon fits, and throw `FileException` for an icon above 1 MB.
[[nodiscard]] Bytes BuildIcnsFile(const CIconGroup& icon);
[[nodiscard]] Bytes BuildResourceFork(const CIconGroup& icon);
/// `path`: the file's name without its extension, at most 63 bytes of it, is kept inside.
[[nodiscard]] Bytes BuildMacBinary(const CIconGroup& icon, std::string_view path);
/// The name that a Macintosh container keeps of a file.
[[nodiscard]] std::string_view MacName(std::string_view path);
/// The form of a file kind; a plain family for kinds that are not of the Macintosh.
[[nodiscard]] Bytes BuildMacFile(const CIconGroup& icon, int kind, std::string_view path);

/// Writes an icon in the form that the path's extension asks for; a file that is there is replaced only when the new
/// one is whole. Tells `prompt` (null: nobody) when no format of the icon fits, or the file cannot be written. False
/// when nothing was written.
[[nodiscard]] bool SaveAsMacFile(const CIconGroup& icon, const std::string& path, UserPrompt* prompt);

/// True when the bytes have the structure of a resource fork.
[[nodiscard]] bool IsResourceFork(ByteSpan file);

} // namespace pelorin
