// Windows icon files (ICO) and static cursors (CUR).
//
// Layout, little-endian:
//   0    u16 0, u16 type (1 icon, 2 cursor), u16 count
//   6    count directory entries of 16 bytes: u8 width, u8 height (256 is 0), u8 colours (256 and more are 0), u8 0,
//        u16 planes (cursor: hot spot x), u16 bit count (cursor: hot spot y), u32 bytes, u32 offset of the image
//   ...  the images, each an icon block (icon_block.h) or a whole PNG file
// An image tells its own size; the entry is believed only for the place, and for a PNG's bytes and depth. Images may
// share an offset, and stand in any order.
#pragma once

#include "icon/icon_group.h"

#include <functional>
#include <span>

namespace pelorin {

enum IcoType : int { kIcoTypeIcon = 1, kIcoTypeCursor = 2 };

/// One directory entry as it stands in the file.
struct IcoDirectoryEntry {
    int width = 0, height = 0, colors = 0, reserved = 0;
    int planes = 0, bits = 0; ///< the hot spot in a cursor
    std::uint32_t bytes = 0, offset = 0;
};

struct IcoDirectory {
    int type = 0;
    std::vector<IcoDirectoryEntry> entries;
};

/// The type of an icon file: 1, 2, or 0 when the bytes do not begin as one with at least one image.
[[nodiscard]] int IcoTypeOf(ByteSpan file);
/// Header and directory. False for another type, for a count of 0, and when the directory is not whole.
[[nodiscard]] bool ReadIcoDirectory(ByteSpan file, IcoDirectory& directory);
/// The image of one entry; false when there is none.
[[nodiscard]] bool ReadIcoImage(ByteSpan file, const IcoDirectoryEntry& entry, CVnIcon& icon);
/// Calls `take` with the images in directory order. False when the header is bad or an image cannot be read; what was
/// read before has been handed out then. Together the images are no larger than `kMaxPixels`.
[[nodiscard]] bool ReadIcoImages(ByteSpan file, const std::function<void(CVnIcon&& icon)>& take);
/// All images as one group in saving order; false, with the group unchanged, when the file is not wholly good.
[[nodiscard]] bool ReadIcoGroup(ByteSpan file, CIconGroup& group);

/// Reads a Macintosh file's icons into groups at the end of the list; false when it holds none.
using MacintoshIconReader = std::function<bool(std::string_view path, std::vector<CIconGroup>& groups)>;
/// Reads a file as one group at the end of the list. Files of a Macintosh kind go to `macintosh` (null: they fail).
/// False, with the list unchanged, when the file cannot be read.
[[nodiscard]] bool LoadIcoIntoGroups(std::string_view path, std::vector<CIconGroup>& groups,
                                     const MacintoshIconReader& macintosh = nullptr);

/// A whole icon file (type 1) with the images in the order given; compressed ones as PNG. An image that cannot be
/// compressed has 0 bytes. Empty for more than 65,535 images and for a file above 4 GiB.
[[nodiscard]] Bytes BuildIcoFile(std::span<CVnIcon* const> icons);
[[nodiscard]] Bytes BuildIcoFile(const CIconGroup& group);

} // namespace pelorin
