// Icon families inside Macintosh files of any kind: ICNS files, resource forks, MacBinary files, icontainers.
//
// One search serves all of them: the tags "icns" and "odrp" are looked for, and what follows a tag shows whether a
// family stands there. The map of a resource fork is not read.
#pragma once

#include "icon/icon_sources.h"

namespace pelorin {

/// What a MacBinary file has in front of its forks.
inline constexpr std::size_t kMacBinaryHeaderSize = 128;
/// Told by the signature "mBIN".
[[nodiscard]] bool IsMacBinary(ByteSpan file);

/// Calls `found` with the places of all tags but those in the last 3 KB of the file, until it returns false: in pieces
/// of 512 KB, in each those of "icns" before those of "odrp". Behind a MacBinary header where there is one.
void ScanForFamilies(ByteSpan file, const std::function<bool(std::size_t position)>& found);

/// Hands out the icons of the families that the search finds; of the first family of the file where it finds no tag at
/// all, as in small files. False when there is none. Throws `FileException` where the reason is one that can be told.
bool VisitMacintoshIcons(ByteSpan file, const IconVisitor& visitor);
/// The same into a list; false, with the list unchanged, when there is none.
[[nodiscard]] bool ReadMacintoshIcons(ByteSpan file, std::vector<CIconGroup>& groups);

} // namespace pelorin
