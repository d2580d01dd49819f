// Single formats of a stored icon: found, made, replaced, taken out. What is not concerned is not touched, to the byte.
#pragma once

#include "icon/icon_group.h"
#include "icon/icon_object.h"

#include <span>

namespace pelorin {

/// Width, height and depth of each format, in the order of the group.
[[nodiscard]] std::vector<IconFormat> FormatsOf(const CIconGroup& group);
/// Index of a format, -1 when the icon has none of these three values.
[[nodiscard]] int FindFormat(const CIconGroup& group, const IconFormat& format);

/// How a format is made for a stored icon.
struct MakeFormatOptions {
    SetImageOptions set{};
    bool compress = true;       ///< PNG where the format may have it
    bool explorerOrder = false; ///< the order that the group is in afterwards
};

/// Adds a format, or replaces the one that is there, with the picture. False when it cannot be made.
bool PutFormat(CIconGroup& group, const IconFormat& format, const DibBlock& picture, const MakeFormatOptions& options);
/// Adds a format with the picture of the nearest one, or of the one at `source` (-1: the nearest). False when the
/// format is there already or cannot be made.
bool AddFormatFromIcon(CIconGroup& group, const IconFormat& format, int source, const MakeFormatOptions& options);
/// False for a format that is not there and for the last one.
bool RemoveFormat(CIconGroup& group, const IconFormat& format);

} // namespace pelorin
