// The kinds of element that a Macintosh icon family is made of, and what each kind means.
//
// An image of a family is spread over elements: its colours in one, its mask in another that other images of the same
// size may share. 1-bit elements hold an image and, behind it, a mask. A row with 0 colour bits has no colours, one
// with 0 mask bits no mask.
#pragma once

#include "icon/icon_format.h"
#include "pixel/palettes.h"

#include <span>
#include <string_view>

namespace pelorin {

enum class IcnsCoding {
    Plain,    ///< rows from the top, padded to whole bytes; the leftmost pixel in the high bits
    Planes,   ///< red, green and blue, each run-length coded on its own
    Jpeg2000, ///< a whole JPEG 2000 stream with its own alpha
};

struct IcnsElementKind {
    std::string_view type;
    int width, height;
    int colorBits, maskBits;
    IcnsCoding coding;
    int rank; ///< place in a file: ascending
    /// Elements that mask this one's colours, the better one first; empty where there is none.
    std::string_view masks[2];

    [[nodiscard]] std::size_t ColorBytes() const { return PlaneBytes(colorBits); }
    [[nodiscard]] std::size_t MaskBytes() const { return PlaneBytes(maskBits); }
    [[nodiscard]] std::size_t Pixels() const {
        return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    }
    /// Image and mask in one.
    [[nodiscard]] bool IsPair() const { return colorBits == 1; }

private:
    [[nodiscard]] std::size_t PlaneBytes(int bits) const {
        return (static_cast<std::size_t>(width) * static_cast<std::size_t>(bits) + 7) / 8 *
               static_cast<std::size_t>(height);
    }
};

/// `it32` has this many zero bytes in front of its planes.
inline constexpr std::size_t kIt32Padding = 4;
[[nodiscard]] inline std::size_t PaddingOf(const IcnsElementKind& kind) {
    return kind.type == "it32" ? kIt32Padding : 0;
}

[[nodiscard]] std::span<const IcnsElementKind> IcnsElementKinds();
/// Null for a type that is not known.
[[nodiscard]] const IcnsElementKind* FindIcnsElement(std::string_view type);
/// The element that holds the colours of a format: 32 bits go into 24 and a mask. Null for a format that no family can
/// hold; so it is with all of 24 bits.
[[nodiscard]] const IcnsElementKind* IcnsElementFor(const IconFormat& format);
/// The first element that holds masks of this size and depth (1 or 8); null when there is none.
[[nodiscard]] const IcnsElementKind* IcnsMaskElement(int width, int height, int maskBits);
/// Place in a file; 0 for a type that is not known, the family's own among them.
[[nodiscard]] int IcnsRank(std::string_view type);

/// True for the formats that a family can hold.
[[nodiscard]] bool IcnsAllows(const IconFormat& format);

/// The colours of elements of 1, 4 and 8 bits, as many as the depth has.
[[nodiscard]] std::span<const Rgb> IcnsPalette(int bits);

} // namespace pelorin
