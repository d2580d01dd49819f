#include "formats/pcd_planes.h"

namespace pelorin {

namespace {

constexpr std::size_t kSector = 2048;
constexpr int kPlainSizes = 3;

struct PlainSize {
    std::size_t sector;
    int width, height;
};
constexpr PlainSize kPlain[kPlainSizes] = {{4, 192, 128}, {23, 384, 256}, {96, 768, 512}};

constexpr std::size_t kFourfoldSector = 388;
// Where the tables of the sixteenfold size are looked for, in sectors behind the fourfold one. The first is the rule;
// writers do not agree on whether a sector that ends with the last row counts.
constexpr std::size_t kSixteenfoldGaps[] = {12, 11, 13};

PcdPlanes ReadPlain(ByteSpan file, const PlainSize& size) {
    const auto width = static_cast<std::size_t>(size.width), height = static_cast<std::size_t>(size.height);
    auto in = ByteReader(file).Sub(size.sector * kSector, width * height * 3 / 2);
    if (!in.Ok()) return {};
    PcdPlanes planes{PcdPlane(size.width, size.height),
                     {PcdPlane(size.width / 2, size.height / 2), PcdPlane(size.width / 2, size.height / 2)}};
    const auto copy = [&](std::uint8_t* to, std::size_t count) {
        const auto bytes = in.Take(count);
        std::copy(bytes.begin(), bytes.end(), to);
    };
    for (int y = 0; y < size.height; y += 2) {
        copy(planes.luma.Row(y), width);
        copy(planes.luma.Row(y + 1), width);
        for (auto& plane : planes.chroma) copy(plane.Row(y / 2), width / 2);
    }
    return planes;
}

PcdPlanes Double(const PcdPlanes& planes) {
    return {DoublePcdPlane(planes.luma), {DoublePcdPlane(planes.chroma[0]), DoublePcdPlane(planes.chroma[1])}};
}

std::uint8_t Mean(unsigned a, unsigned b) {
    return static_cast<std::uint8_t>((a + b + 1) >> 1);
}

PcdPlanes ReadSixteenfold(const ByteReader& behindFourfold, const PcdPlanes& fourfold) {
    for (const auto gap : kSixteenfoldGaps) {
        auto in = behindFourfold;
        in.Skip(gap * kSector);
        if (!in.Ok()) continue;
        auto planes = Double(fourfold);
        if (AddPcdDifferences(in, planes, true)) return planes;
    }
    return {};
}

} // namespace

PcdPlane DoublePcdPlane(const PcdPlane& plane) {
    PcdPlane result(plane.width * 2, plane.height * 2);
    const int lastX = plane.width - 1, lastY = plane.height - 1;
    for (int y = 0; y <= lastY; ++y) {
        const auto* row = plane.Row(y);
        const auto* below = plane.Row(std::min(y + 1, lastY));
        auto* even = result.Row(2 * y);
        auto* odd = result.Row(2 * y + 1);
        for (int x = 0; x <= lastX; ++x) {
            const int next = std::min(x + 1, lastX);
            const unsigned a = row[x], b = row[next], c = below[x], d = below[next];
            even[2 * x] = row[x];
            even[2 * x + 1] = Mean(a, b);
            odd[2 * x] = Mean(a, c);
            odd[2 * x + 1] = static_cast<std::uint8_t>((a + b + c + d + 2) >> 2);
        }
    }
    return result;
}

PcdPlanes ReadPcdPlanes(ByteSpan file, int size) {
    PcdPlanes planes;
    for (int plain = std::min(size, kPlainSizes - 1); plain >= 0 && !planes; --plain) {
        planes = ReadPlain(file, kPlain[plain]);
    }
    const auto& base = kPlain[kPlainSizes - 1];
    if (size < kPlainSizes || planes.luma.width != base.width) return planes;

    ByteReader in(file);
    in.Seek(kFourfoldSector * kSector);
    auto fourfold = Double(planes);
    if (!in.Ok() || !AddPcdDifferences(in, fourfold, false)) return planes;
    if (size == kPlainSizes) return fourfold;
    auto sixteenfold = ReadSixteenfold(in, fourfold);
    return sixteenfold ? std::move(sixteenfold) : std::move(fourfold);
}

} // namespace pelorin
