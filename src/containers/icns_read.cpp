#include "containers/icns_file.h"
#include "containers/icns_images.h"

#include <algorithm>
#include <map>

namespace pelorin {

namespace {

// An element as it stands in the family, its payload of the right size where the kind has one.
struct Element {
    const IcnsElementKind* kind;
    ByteSpan color, mask;
};

// Nothing when the payload is not what the kind asks for.
std::optional<Element> TakeElement(const IcnsElementKind& kind, ByteSpan payload) {
    if (kind.coding != IcnsCoding::Plain) return Element{&kind, payload, {}};
    const auto color = kind.ColorBytes();
    if (payload.size() != color + kind.MaskBytes()) return {};
    return Element{&kind, payload.first(color), payload.subspan(color)};
}

// The first mask of each kind: a family may have very many elements, and each image asks.
using Masks = std::map<std::string_view, ByteSpan>;

const ByteSpan* FindMask(const Masks& masks, const IcnsElementKind& kind) {
    for (const auto type : kind.masks) {
        const auto found = masks.find(type);
        if (found != masks.end()) return &found->second;
    }
    return nullptr;
}

} // namespace

bool HasIcnsTag(ByteSpan family) {
    const ByteReader r(family);
    return r.StartsWith("icns") || r.StartsWith("odrp");
}

std::uint32_t IcnsLength(ByteSpan family) {
    if (!HasIcnsTag(family) || family.size() < kIcnsHeaderSize) return 0;
    return LoadU32BE(family.data() + 4);
}

bool VisitIcnsElements(ByteSpan family, const IcnsElementVisitor& visitor) {
    const auto total = IcnsLength(family);
    if (total == 0 || total > kIcnsSizeLimit) return false;
    ByteReader r(family.first(std::min<std::size_t>(total, family.size())));
    r.Skip(kIcnsHeaderSize);
    while (r.Ok() && r.Left() >= kIcnsHeaderSize) {
        const auto type = AsText(r.Take(4));
        const auto length = r.U32BE();
        if (length == 0 || length > kIcnsSizeLimit) return false;
        // A length that cannot be true says nothing of where the next element is.
        if (length < kIcnsHeaderSize) return true;
        const auto payload = r.Take(length - kIcnsHeaderSize);
        if (r.Ok()) visitor(type, payload);
    }
    return true;
}

std::optional<std::size_t> FindIcnsFamily(ByteSpan file) {
    constexpr std::size_t kMacBinaryHeader = 128;
    if (AsText(file).starts_with("icns")) return 0;
    const std::size_t start = !file.empty() && file[0] == 0 ? kMacBinaryHeader : 0;
    const auto found = AsText(file).find("icns", start);
    if (found == std::string_view::npos) return {};
    return found;
}

int CountIcnsImages(ByteSpan file, std::optional<std::size_t> position) {
    if (!position) position = FindIcnsFamily(file);
    if (!position || *position > file.size()) return 0;
    int count = 0;
    const bool good = VisitIcnsElements(file.subspan(*position), [&](std::string_view type, ByteSpan) {
        const auto* kind = FindIcnsElement(type);
        if (kind && kind->colorBits != 0) ++count;
    });
    return good ? count : 0;
}

bool ReadIcnsFamily(ByteSpan family, CIconGroup& group, std::int64_t& pixels) {
    std::vector<Element> elements;
    Masks masks;
    const bool good = VisitIcnsElements(family, [&](std::string_view type, ByteSpan payload) {
        const auto* kind = FindIcnsElement(type);
        if (!kind) return;
        const auto element = TakeElement(*kind, payload);
        if (!element) return;
        if (kind->colorBits != 0) elements.push_back(*element);
        if (kind->maskBits != 0) masks.try_emplace(kind->type, element->mask);
    });
    if (!good) return false;
    CIconGroup read;
    for (const auto& element : elements) {
        const auto* mask = FindMask(masks, *element.kind);
        if (!mask && element.kind->coding != IcnsCoding::Jpeg2000) continue;
        if (static_cast<std::int64_t>(element.kind->Pixels()) > pixels) break;
        pixels -= static_cast<std::int64_t>(element.kind->Pixels());
        auto icon = ImageFromIcns(*element.kind, element.color, mask ? *mask : ByteSpan());
        if (icon) read.Append(std::move(*icon));
    }
    if (read.GetCount() == 0) return false;
    read.Sort();
    read.m_nInfo = 1;
    group = std::move(read);
    return true;
}

} // namespace pelorin
