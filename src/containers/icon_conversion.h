// An icon of one system made into one of the other: what the target can hold stays as it is, what is asked for and not
// there is made from the nearest format, and what is lost is told.
#pragma once

#include "icon/group_formats.h"

namespace pelorin {

struct IconConversion {
    bool macintosh = false;
    /// Whether the target's file can hold a format; null: any.
    bool (*allows)(const IconFormat& format) = nullptr;
    /// The formats wanted, missing ones made; empty: all that are there.
    std::vector<IconFormat> formats;
    MakeFormatOptions making; ///< for those that are made
};

/// The icon in saving order; without any format when the target can hold none of them. A Windows icon out of a
/// Macintosh one has its large formats compressed if `making` says so. `lost`: formats of the source, or asked for,
/// that the target cannot hold or that could not be made.
[[nodiscard]] CIconGroup ConvertIcon(const CIconGroup& source, const IconConversion& conversion,
                                     std::vector<IconFormat>& lost);

} // namespace pelorin
