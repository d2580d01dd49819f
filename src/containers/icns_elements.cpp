#include "containers/icns_elements.h"

#include <algorithm>
#include <array>

namespace pelorin {

namespace {

using enum IcnsCoding;

constexpr IcnsElementKind kKinds[] = {
    {"icl4", 32, 32, 4, 0, Plain, 8, {"ICNm", "ICN#"}},
    {"icl8", 32, 32, 8, 0, Plain, 9, {"ICNm", "ICN#"}},
    {"il32", 32, 32, 24, 0, Planes, 21, {"l8mk"}},
    {"ics4", 16, 16, 4, 0, Plain, 17, {"icsm", "ics#"}},
    {"ics8", 16, 16, 8, 0, Plain, 18, {"icsm", "ics#"}},
    {"is32", 16, 16, 24, 0, Planes, 22, {"s8mk"}},
    {"ICN#", 32, 32, 1, 1, Plain, 14, {"ICNm", "ICN#"}},
    {"l8mk", 32, 32, 0, 8, Plain, 24, {}},
    {"ics#", 16, 16, 1, 1, Plain, 16, {"icsm", "ics#"}},
    {"s8mk", 16, 16, 0, 8, Plain, 25, {}},
    {"ICNm", 32, 32, 0, 1, Plain, 15, {}},
    {"icsm", 16, 16, 0, 1, Plain, 19, {}},
    {"icm#", 16, 12, 1, 1, Plain, 10, {"icmm", "icm#"}},
    {"icm4", 16, 12, 4, 0, Plain, 11, {"icmm", "icm#"}},
    {"icm8", 16, 12, 8, 0, Plain, 12, {"icmm", "icm#"}},
    {"ich#", 48, 48, 1, 1, Plain, 4, {"ichm", "ich#"}},
    {"ich4", 48, 48, 4, 0, Plain, 5, {"ichm", "ich#"}},
    {"ich8", 48, 48, 8, 0, Plain, 6, {"ichm", "ich#"}},
    {"ih32", 48, 48, 24, 0, Planes, 20, {"h8mk"}},
    {"h8mk", 48, 48, 0, 8, Plain, 1, {}},
    {"it32", 128, 128, 24, 0, Planes, 23, {"t8mk"}},
    {"t8mk", 128, 128, 0, 8, Plain, 26, {}},
    {"icmm", 16, 12, 0, 1, Plain, 13, {}},
    {"ichm", 48, 48, 0, 1, Plain, 7, {}},
    {"ic08", 256, 256, 24, 0, Jpeg2000, 2, {}},
    {"ic09", 512, 512, 24, 0, Jpeg2000, 3, {}},
};

constexpr std::array<Rgb, 2> kTwoColors = {0xFFFFFF, 0x000000};
constexpr std::array<Rgb, 16> kSixteenColors = {0xFFFFFF, 0xFFFF00, 0xFF6600, 0xDD0000, 0xFF0099, 0x330099,
                                                0x0000DD, 0x0099FF, 0x00BB00, 0x006600, 0x663300, 0x996633,
                                                0xCCCCCC, 0x888888, 0x444444, 0x000000};

template <class Test>
const IcnsElementKind* FindKind(const Test& test) {
    const auto* found = std::ranges::find_if(kKinds, test);
    return found == std::end(kKinds) ? nullptr : found;
}

} // namespace

std::span<const IcnsElementKind> IcnsElementKinds() {
    return kKinds;
}

const IcnsElementKind* FindIcnsElement(std::string_view type) {
    return FindKind([&](const IcnsElementKind& kind) { return kind.type == type; });
}

const IcnsElementKind* IcnsElementFor(const IconFormat& format) {
    if (format.bits == 24) return nullptr;
    const int bits = format.bits == 32 ? 24 : format.bits;
    return FindKind([&](const IcnsElementKind& kind) {
        return kind.colorBits != 0 && kind.colorBits == bits && kind.width == format.width &&
               kind.height == format.height;
    });
}

const IcnsElementKind* IcnsMaskElement(int width, int height, int maskBits) {
    return FindKind([&](const IcnsElementKind& kind) {
        return kind.maskBits == maskBits && kind.width == width && kind.height == height;
    });
}

int IcnsRank(std::string_view type) {
    const auto* kind = FindIcnsElement(type);
    return kind ? kind->rank : 0;
}

bool IcnsAllows(const IconFormat& format) {
    return IcnsElementFor(format) != nullptr;
}

std::span<const Rgb> IcnsPalette(int bits) {
    return bits == 1   ? std::span<const Rgb>(kTwoColors)
           : bits == 4 ? std::span<const Rgb>(kSixteenColors)
                       : std::span<const Rgb>(kMacOsPalette);
}

} // namespace pelorin
