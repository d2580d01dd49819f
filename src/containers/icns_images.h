// One image of a Macintosh icon family: between the planes of its elements and the stored form of an icon.
#pragma once

#include "containers/icns_elements.h"
#include "icon/stored_icon.h"

#include <optional>

namespace pelorin {

/// What the elements of one image hold.
struct IcnsPlanes {
    Bytes color; ///< the payload, without padding
    Bytes mask;  ///< empty where the kind has none of its own
};

/// The image of a colour element with its mask; `mask` is ignored for JPEG 2000. Nothing when the payload is damaged.
/// `color` has the size that the kind asks for where it is not compressed, `mask` in any case.
[[nodiscard]] std::optional<CVnIcon> ImageFromIcns(const IcnsElementKind& kind, ByteSpan color, ByteSpan mask);

/// The planes of an image that the kind can hold; nothing when they cannot be made. The mask is of 8 bits for 32-bit
/// images and of 1 bit for all others.
[[nodiscard]] std::optional<IcnsPlanes> IcnsFromImage(const IcnsElementKind& kind, const CVnIcon& icon);

} // namespace pelorin
