// What tells one image format of an icon from another, and how formats are called.
#pragma once

#include <string>

namespace pelorin {

/// No icon has two image formats with these three the same.
struct IconFormat {
    int width = 0, height = 0;
    int bits = 0; ///< 1, 4, 8, 24 or 32
    friend bool operator==(const IconFormat&, const IconFormat&) = default;
};

[[nodiscard]] constexpr bool IsIconDepth(int bits) {
    return bits == 1 || bits == 4 || bits == 8 || bits == 24 || bits == 32;
}

/// "%dx%d - %s" with the long or the short name of the depth: "48x48 - 256 colors", "48x48 - 256".
[[nodiscard]] std::string FormatDescription(int width, int height, int bits, bool macintosh = false);
[[nodiscard]] std::string FormatShortDescription(int width, int height, int bits);
/// "Mono", "16 colors", "256 colors", "16,8M colors", "XP (RGB/A)" ("RGB/A" for a Macintosh icon); empty for a depth
/// that has no name. 15 and 16 bits have names, though no icon has them.
[[nodiscard]] std::string DepthName(int bits, bool macintosh = false);
/// "Mono", "16", "256", "16,8M", "RGB/A".
[[nodiscard]] std::string DepthShortName(int bits);

} // namespace pelorin
