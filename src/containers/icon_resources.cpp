#include "containers/icon_resources.h"

#include "base/parallel.h"
#include "icon/icon_format.h"

#include <new>

namespace pelorin {

namespace {

constexpr std::uint32_t kPngSignature = 0x474E5089;
constexpr std::uint32_t kBitmapHeaderSize = 40;

/// Bytes of a PNG file up to its last chunk; all of them when there is none.
std::size_t PngLength(ByteSpan data) {
    ByteReader in(data);
    in.Skip(8);
    while (in.Ok() && in.Left() >= 12) {
        const auto length = in.U32BE();
        const bool last = in.StartsWith("IEND");
        in.Skip(std::uint64_t{length} + 8);
        if (in.Ok() && last) return in.Pos();
    }
    return data.size();
}

bool IsUsualColorCount(int colors) {
    return colors == 0 || colors == 2 || colors == 16 || colors == 256;
}

int BitsByColors(int colors, bool alpha) {
    if (alpha) return 32;
    return colors == 0 ? 24 : colors == 2 ? 1 : colors == 256 ? 8 : 4;
}

bool InspectPng(IconImageRef& image) {
    ByteReader in(image.data);
    in.Skip(16);
    const auto width = in.U32BE(), height = in.U32BE();
    if (!in.Ok() || image.bytes == 0 || width == 0 || height == 0 || width > kMaxPixels || height > kMaxPixels)
        return false;
    if (std::int64_t{width} * height > kMaxPixels) return false;
    const int bits = image.bits == 0 ? 32 : image.bits;
    image.width = static_cast<int>(width);
    image.height = static_cast<int>(height);
    image.colors = bits < 9 ? 1 << bits : 0;
    image.alpha = bits == 32;
    image.compressed = true;
    if (!IsIconDepth(bits)) return false;
    image.data = image.data.first(PngLength(image.data));
    return true;
}

bool InspectBlock(IconImageRef& image) {
    ByteReader in(image.data);
    in.Skip(4);
    image.width = in.I32LE();
    image.height = in.I32LE() / 2;
    in.Skip(2);
    const int bits = in.U16LE();
    in.Skip(16);
    const auto used = in.U32LE();
    if (!in.Ok() || used > 0x7FFFFFFF) return false;
    image.colors = used == 0 && bits < 9 ? 1 << bits : static_cast<int>(used);
    image.alpha = bits == 32;
    image.compressed = false;
    const auto size = CVnIcon::BlockSize(image.width, image.height, image.colors, image.alpha);
    // The rule gives blocks of unusual colour counts too short a size; their bytes stay as they are.
    if (IsUsualColorCount(image.colors) && size < image.data.size()) image.data = image.data.first(size);
    return size != 0;
}

/// The order of `CIconGroup`: ascending depth, descending width, descending height.
bool SavedBefore(const IconImageRef& a, const IconImageRef& b) {
    const int depthA = a.BitCount(), depthB = b.BitCount();
    if (depthA != depthB) return depthA < depthB;
    return a.width != b.width ? a.width > b.width : a.height > b.height;
}

} // namespace

GroupDirectory ReadGroupDirectory(ByteSpan bytes) {
    ByteReader in(bytes);
    in.Skip(4);
    const std::size_t count = in.U16LE();
    if (!in.Ok()) return {};
    GroupDirectory directory(std::min(count, in.Left() / 14));
    for (auto& entry : directory) {
        entry = {in.U8(), in.U8(), in.U8(), in.U8(), 0, 0, 0};
        in.Skip(2);
        entry.bits = in.U16LE();
        entry.bytes = in.U32LE();
        entry.id = in.U16LE();
    }
    return directory;
}

StoredImage PrepareImage(CVnIcon& icon, bool macintosh) {
    StoredImage stored;
    if (icon.m_bCompressed) {
        if (icon.m_pPngData.empty()) icon.m_pPngData = icon.WriteCompressed();
        stored.bytes = icon.m_pPngData;
    } else if (!icon.m_hImage.empty()) {
        stored.bytes = ByteSpan(icon.m_hImage).first(std::min<std::size_t>(icon.m_nBytes, icon.m_hImage.size()));
    }
    stored.entry.width = static_cast<std::uint8_t>(icon.m_nWidth);
    stored.entry.height = static_cast<std::uint8_t>(icon.m_nHeight);
    stored.entry.colors = static_cast<std::uint8_t>(icon.m_nColors);
    stored.entry.reserved = macintosh ? 1 : 0;
    stored.entry.bits = static_cast<std::uint16_t>(BitsByColors(icon.m_nColors, icon.m_bAlpha));
    stored.entry.bytes = static_cast<std::uint32_t>(stored.bytes.size());
    return stored;
}

void CompressImages(std::span<CIconGroup* const> icons) {
    std::vector<CVnIcon*> images;
    for (auto* icon : icons) {
        for (auto& image : icon->m_arrIcons) {
            image->m_pPngData = {};
            if (image->m_bCompressed) images.push_back(image.get());
        }
    }
    ParallelFor(images.size(), 0, [&](std::size_t i) {
        try {
            images[i]->m_pPngData = images[i]->WriteCompressed();
        } catch (const std::bad_alloc&) {
            images[i]->m_pPngData = {};
        }
    });
}

Bytes WriteGroupDirectory(std::span<const GroupDirectoryEntry> entries) {
    ByteWriter out(GroupDirectorySize(entries.size()));
    out.U16LE(0);
    out.U16LE(1);
    out.U16LE(static_cast<std::uint32_t>(entries.size()));
    for (const auto& entry : entries) {
        out.U8(entry.width);
        out.U8(entry.height);
        out.U8(entry.colors);
        out.U8(entry.reserved);
        out.U16LE(1);
        out.U16LE(entry.bits);
        out.U32LE(entry.bytes);
        out.U16LE(entry.id);
    }
    return out.Take();
}

int IconImageRef::BitCount() const {
    return BitsByColors(colors, alpha);
}

int IconImageRef::ShownBits() const {
    if (IsUsualColorCount(colors) || compressed) return BitCount();
    return LoadU16LE(data.data() + 14);
}

std::size_t IconImageRef::StoredSize() const {
    if (compressed || !IsUsualColorCount(colors)) return data.size();
    return CVnIcon::BlockSize(width, height, colors, alpha);
}

bool InspectImage(IconImageRef& image) {
    if (image.data.size() < 4) return false;
    const auto first = LoadU32LE(image.data.data());
    if (first == kPngSignature) return InspectPng(image);
    return first == kBitmapHeaderSize && InspectBlock(image);
}

namespace {

void TakePlace(const IconImageRef& ref, CVnIcon& icon) {
    icon.m_nResourceId = ref.id;
    icon.m_nLanguage = ref.language;
    icon.m_nFileOffset = ref.offset;
    icon.m_nFileBytes = ref.capacity;
}

void TakeFacts(const IconImageRef& ref, CVnIcon& icon) {
    icon.m_nWidth = ref.width;
    icon.m_nHeight = ref.height;
    icon.m_nColors = ref.colors;
    icon.m_bAlpha = ref.alpha;
    icon.m_bCompressed = ref.compressed;
    TakePlace(ref, icon);
}

} // namespace

bool LoadImage(const IconImageRef& ref, CVnIcon& icon) {
    const auto bytes = std::min<std::size_t>(ref.bytes, ref.data.size());
    if (!icon.ReadFromMemory(ref.data, static_cast<std::uint32_t>(bytes), ref.bits)) return false;
    TakePlace(ref, icon);
    return true;
}

std::unique_ptr<CIconGroup> LoadIcon(const IconGroupRef& ref, Pixels pixels) {
    auto group = std::make_unique<CIconGroup>();
    group->m_strName = ref.name;
    group->m_nInfo = ref.macintosh ? 1 : 0;
    group->m_nResourceId = ref.id;
    group->m_strResourceName = ref.resourceName;
    group->m_nLanguage = ref.language;
    for (const auto& image : ref.images) {
        CVnIcon icon;
        if (pixels == Pixels::None) TakeFacts(image, icon);
        if (pixels == Pixels::None || LoadImage(image, icon)) group->Append(std::move(icon));
    }
    if (group->m_arrIcons.empty()) return nullptr;
    group->Sort();
    return group;
}

Bytes CopyAsIco(const IconGroupRef& ref) {
    std::vector<const IconImageRef*> images;
    for (const auto& image : ref.images) images.push_back(&image);
    std::stable_sort(images.begin(), images.end(), [](const auto* a, const auto* b) { return SavedBefore(*a, *b); });

    ByteWriter out;
    out.U16LE(0);
    out.U16LE(1);
    out.U16LE(static_cast<std::uint32_t>(images.size()));
    auto offset = 6 + 16 * images.size();
    for (const auto* image : images) {
        out.U8(static_cast<std::uint8_t>(image->width));
        out.U8(static_cast<std::uint8_t>(image->height));
        out.U8(static_cast<std::uint8_t>(image->colors));
        out.U8(0);
        out.U16LE(1);
        out.U16LE(static_cast<std::uint32_t>(image->BitCount()));
        out.U32LE(static_cast<std::uint32_t>(image->StoredSize()));
        out.U32LE(static_cast<std::uint32_t>(offset));
        offset += image->StoredSize();
    }
    for (const auto* image : images) {
        out.Raw(image->data);
        out.Zeros(image->StoredSize() - image->data.size());
    }
    return out.Take();
}

} // namespace pelorin
