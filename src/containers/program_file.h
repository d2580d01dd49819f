// The icons of a program file or library as documents and imports take them.
#pragma once

#include "containers/icon_resources.h"

namespace pelorin {

/// Decodes all icons. With `baseName` (that of a program file) an icon without a name gets "%s %03d" of it and its
/// place among those that were kept, from 1.
[[nodiscard]] std::vector<std::unique_ptr<CIconGroup>> LoadIcons(const IconResources& found, std::string_view baseName,
                                                                 Pixels pixels = Pixels::All);

/// The formats of an icon written over those of the old one, in the bytes that the file keeps for them. Nothing else of
/// the file changes but, in a PE file, its checksum. Throws `FileException`; so it does, with the file as it was, when
/// an image does not fit its place.
void WriteIconsInPlace(const std::string& path, std::span<CIconGroup* const> icons);

} // namespace pelorin
