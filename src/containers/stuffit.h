// StuffIt archives of Macintosh icon files, the forks stored as they are.
//
// Layout, big-endian:
//   0    "SIT!", u16 entries, u32 bytes of the archive, "rLau", u8 version 1, zeros to 22
//   22   entries: a 112-byte header, the resource fork, the data fork. Header: u8 method of the resource fork, u8 of
//   the
//        data fork (0: stored), u8 length of the name, 63 bytes name, four letters type, four creator, u16 Finder
//        flags, u32 dates of creation and change, u32 lengths of the resource and the data fork, u32 their stored
//        lengths, u16 checksums of both; at 110 the u16 checksum of the header
#pragma once

#include "base/bytes.h"

#include <optional>
#include <string>

namespace pelorin {

struct StuffItEntry {
    std::string name;
    Bytes resourceFork, dataFork;
};

/// The forks of a Macintosh icon file: both of a MacBinary file, else the bytes as resource fork or, of a plain family,
/// as data fork. Nothing for files that are no such icons.
[[nodiscard]] std::optional<StuffItEntry> StuffItEntryOf(std::string_view path, ByteSpan file);

/// Entries without a fork are left out. Empty when none is left or there are too many.
[[nodiscard]] Bytes BuildStuffIt(const std::vector<StuffItEntry>& entries);

} // namespace pelorin
