// The icons of a program file or library as documents and imports take them.
#pragma once

#include "containers/icon_resources.h"

namespace pelorin {

/// What `FindIcons` gives of a library: no icons in a 16-bit file whose header leads to no names.
[[nodiscard]] IconResources FindLibraryIcons(ByteSpan file, Progress* progress = nullptr);

/// Decodes all icons. With `baseName` (that of a program file) an icon without a name gets "%s %03d" of it and its
/// place among those that were kept, from 1, unless the file is only open for replacing.
[[nodiscard]] std::vector<std::unique_ptr<CIconGroup>> LoadIcons(const IconResources& found, std::string_view baseName,
                                                                 Pixels pixels = Pixels::All);

/// Writes the file `from` to `to`, which may be the same, with the formats of the icons over those of the old ones, in
/// the bytes that the file keeps for them. Nothing else changes but, in a PE file, its checksum. Throws
/// `FileException`; so it does, with the file as it was, when an image does not fit its place.
void WriteIconsInPlace(const std::string& from, const std::string& to, std::span<CIconGroup* const> icons);

} // namespace pelorin
