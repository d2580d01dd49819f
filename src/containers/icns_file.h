// Macintosh icon families: ICNS files, and the resources of type `icns` in resource forks.
//
// Layout, big-endian:
//   0    "icns" ("odrp" for a family inside another one), u32 length of all of it
//   8    elements: four letters, u32 length with these eight bytes, payload; icns_elements.h tells the kinds
// A family or an element of 0 bytes or of more than 1 MB ends the reading. Elements of unknown types are passed over,
// elements whose payload is not what their kind asks for are left out. An image whose mask is missing is no image.
//
// Written, 1-bit images and masks of 1 bit share one element a size; the first mask of a size that comes along stays. A
// mask without a 1-bit image is written as the image too.
#pragma once

#include "containers/icns_elements.h"
#include "icon/icon_group.h"

#include <functional>
#include <optional>

namespace pelorin {

/// The most bytes that a family or an element has.
inline constexpr std::uint32_t kIcnsSizeLimit = 0x100000;
inline constexpr std::size_t kIcnsHeaderSize = 8;

/// True when `family` begins with the tag of a family, whatever its length says.
[[nodiscard]] bool HasIcnsTag(ByteSpan family);
/// The length that a family tells of itself; 0 when it has no tag or no whole header.
[[nodiscard]] std::uint32_t IcnsLength(ByteSpan family);

using IcnsElementVisitor = std::function<void(std::string_view type, ByteSpan payload)>;
/// Hands out the elements that lie wholly inside, those of unknown types too. False when the header is bad or a length
/// is 0 or above the limit; elements before that have been handed out then. `family` may go on behind the family.
bool VisitIcnsElements(ByteSpan family, const IcnsElementVisitor& visitor);

/// Where the first family of a file begins: 0, or the first "icns" behind. A file that begins with a zero byte has a
/// MacBinary header, which is passed over.
[[nodiscard]] std::optional<std::size_t> FindIcnsFamily(ByteSpan file);
/// Elements that stand for an image; without `position` those of the first family. 0 for a bad one.
[[nodiscard]] int CountIcnsImages(ByteSpan file, std::optional<std::size_t> position = {});

/// The family at the start of `family` as one Macintosh icon in saving order. `pixels`: how many may be made, lowered
/// by those that were. False, with the group unchanged, when there is no image in it.
[[nodiscard]] bool ReadIcnsFamily(ByteSpan family, CIconGroup& group, std::int64_t& pixels);

/// Where a part of a written family begins; the family itself counts under "icns".
struct IcnsRecord {
    std::string_view type;
    std::size_t position;
};

/// Appends the family; formats that it cannot hold are left out. False, with nothing appended, when none is left.
/// Throws `FileException` for a family above the limit.
[[nodiscard]] bool WriteIcnsFamily(const CIconGroup& icon, ByteWriter& out, std::vector<IcnsRecord>* records = nullptr);

} // namespace pelorin
