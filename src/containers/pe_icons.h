// Icons out of a PE image, in the two ways that the two modes read it.
#pragma once

#include "containers/icon_resources.h"
#include "containers/resource_tree.h"

namespace pelorin {

/// Characters that a library's name table begins with, behind their length.
inline constexpr std::string_view kNameTableStart = "\3ICL";
/// Stands in the table for an icon without a name.
inline constexpr std::string_view kNoNamePe = "\3";

/// Mode 2: every group in every language; an entry gives one image for each language of its id.
[[nodiscard]] IconResources FindIconsByTree(const PeImage& image, Progress* progress = nullptr);
/// Mode 1: numbered resources of a section called ".rsrc", groups naming images by position.
[[nodiscard]] IconResources FindIconsBySection(const PeImage& image);

/// The names in a library's table, by position; an unnamed icon's is empty. Nothing when it is no such table.
[[nodiscard]] std::vector<std::string> ReadNameTable(ByteSpan table);
/// Such a table; names are cut to 255 bytes.
[[nodiscard]] Bytes WriteNameTable(std::span<const std::string> names);

} // namespace pelorin
