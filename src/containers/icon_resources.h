// Icons as program files and icon libraries hold them: each image a resource of its own, and for each icon a directory
// that names its images.
//
// Group directory, little-endian: u16 0, u16 1, u16 count; then 14 bytes an image: u8 width, u8 height (256: 0), u8
// colours (256 and true colour: 0), u8 1 in an icon of a Macintosh kind, u16 planes, u16 bit count, u32 bytes, u16
// resource id. An image is the body of an ICO image: an icon block, or a whole PNG file.
#pragma once

#include "base/progress.h"
#include "containers/pe_file.h"
#include "icon/icon_group.h"

namespace pelorin {

struct GroupDirectoryEntry {
    std::uint8_t width = 0, height = 0, colors = 0, reserved = 0;
    std::uint16_t bits = 0;
    std::uint32_t bytes = 0;
    std::uint16_t id = 0;
};

using GroupDirectory = std::vector<GroupDirectoryEntry>;

/// As many of the entries as the bytes hold.
[[nodiscard]] GroupDirectory ReadGroupDirectory(ByteSpan bytes);

/// One image as it is written into a container: its entry but for the id, and its bytes.
struct StoredImage {
    GroupDirectoryEntry entry;
    ByteSpan bytes; ///< empty when there are none: the image has no block, or could not be compressed
};
/// A compressed image is made into a PNG file, which stays in the image's `m_pPngData`, if it is not there yet; of any
/// other the block is taken.
[[nodiscard]] StoredImage PrepareImage(CVnIcon& icon, bool macintosh);
/// Makes the PNG files of all compressed images, those that are there too, on all cores. One that cannot be made is
/// left empty.
void CompressImages(std::span<CIconGroup* const> icons);
[[nodiscard]] Bytes WriteGroupDirectory(std::span<const GroupDirectoryEntry> entries);
/// The bytes that `WriteGroupDirectory` makes for so many images.
[[nodiscard]] constexpr std::size_t GroupDirectorySize(std::size_t images) {
    return 6 + 14 * images;
}

// ---- icons that were found, not yet read ----

/// One image of an icon, with what its header tells.
struct IconImageRef {
    int id = -1, language = 0;
    ByteSpan data;              ///< in the file; without what stands behind the image, once it was inspected
    std::uint64_t offset = 0;   ///< of `data` from the file's start
    std::uint32_t capacity = 0; ///< bytes that the file keeps for the image
    std::uint32_t bytes = 0;    ///< what the directory states
    int bits = 0;               ///< depth that a PNG image gets; 0: 32

    int width = 0, height = 0, colors = 0;
    bool alpha = false, compressed = false;
    [[nodiscard]] int BitCount() const;
    /// The bit count of an image with an unusual number of colours too: what its header says.
    [[nodiscard]] int ShownBits() const;
    /// Bytes that the image takes in an ICO file: a short block is filled up with zeros.
    [[nodiscard]] std::size_t StoredSize() const;
};

/// Fills the facts from the header of `data` and cuts off what is padding; false when it is no image.
[[nodiscard]] bool InspectImage(IconImageRef& image);

struct IconGroupRef {
    int id = -1; ///< -1: the group goes by its name
    int language = 0;
    std::u16string resourceName; ///< of a group without a number
    std::string name;            ///< resource name as text, or one out of a library's table; empty: none
    bool macintosh = false;
    std::vector<IconImageRef> images; ///< at least one
};

/// The ways in which a program file is open to changes; the numbers are those of the documents.
enum class ProgramMode {
    NeFile = 0,          ///< 16-bit: icons can be replaced by others of the same formats
    PeWithoutUpdate = 1, ///< the same, on a system that cannot update resources
    Full = 2,
    Restricted = 3, ///< data behind the image: no formats added or removed
};

/// Everything that a file holds of icons. The spans are those of the file's bytes.
struct IconResources {
    ProgramMode mode = ProgramMode::Full;
    std::vector<IconGroupRef> groups;
    /// Id and language of every image, in the file's order.
    std::vector<std::pair<int, int>> idTable;
    /// Images that could not be read, although a group names them or the program fills them in; a save must not take
    /// them for orphans.
    std::vector<int> unreadIds;
    /// Numbers (-1: it has a name) of groups of which no image could be read; new icons must not take them.
    std::vector<int> unreadGroupIds;
    /// False when the reading ended early, because the images ask for more memory than makes sense.
    bool complete = true;
    bool hasLibraryNames = false;
    int namesLanguage = 0;    ///< that of their resource
    bool hasNamePlace = true; ///< false: a 16-bit file whose header leads to no names, as that of a library does
};

/// Finds the icons of a 16-bit or 32-bit program file or library; none in a file that is neither, or damaged. Without
/// `canUpdate` a PE file is read the simpler way of mode 1. With `progress`, one step a group.
[[nodiscard]] IconResources FindIcons(ByteSpan file, bool canUpdate = true, Progress* progress = nullptr);

/// Decodes one image, with its id, language and place. False when it cannot be.
[[nodiscard]] bool LoadImage(const IconImageRef& ref, CVnIcon& icon);
/// What LoadIcon decodes.
enum class Pixels {
    All,
    None, ///< only sizes, depths, ids and places: enough for icons that are not going to be written
};
/// Decodes one icon. Images that cannot be decoded are left out; an icon without any gives null. Ids, languages and
/// places are kept on the images.
[[nodiscard]] std::unique_ptr<CIconGroup> LoadIcon(const IconGroupRef& ref, Pixels pixels = Pixels::All);

/// The icon as an ICO file, in saving order, with the bytes of each image as they stand: nothing is decoded.
[[nodiscard]] Bytes CopyAsIco(const IconGroupRef& ref);

} // namespace pelorin
