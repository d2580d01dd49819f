#include "pixel/resample.h"

#include "pixel/bleed.h"

namespace pelorin {

namespace {

// Surplus of an enlargement by `target / source` whole times: that many columns or rows less one.
int Surplus(int source, int target) {
    const int factor = target / source;
    return factor >= 2 ? factor - 1 : 0;
}

bool IsTargetSize(int width, int height) {
    return width > 0 && height > 0 && std::int64_t{width} * height <= kMaxPixels;
}

// Rows of a 24-bpp block with 255 in the fourth byte.
class OpaqueRows final : public RowSource {
public:
    explicit OpaqueRows(const DibView& picture)
        : m_picture(picture), m_row(static_cast<std::size_t>(picture.Width()) * 4, 255) {}
    [[nodiscard]] const std::uint8_t* Row(int y) override {
        const auto* from = m_picture.Row(y);
        auto* to = m_row.data();
        for (int x = 0; x < m_picture.Width(); ++x, from += 3, to += 4) {
            to[0] = from[0];
            to[1] = from[1];
            to[2] = from[2];
        }
        return m_row.data();
    }

private:
    DibView m_picture;
    Bytes m_row;
};

class SurfaceRows final : public RowSource {
public:
    explicit SurfaceRows(const Surface& surface) : m_surface(surface) {}
    [[nodiscard]] const std::uint8_t* Row(int y) override { return m_surface.Row(y); }

private:
    const Surface& m_surface;
};

// Rows as they stand in a 32-bpp block.
class BlockRows final : public RowSource {
public:
    explicit BlockRows(const DibView& picture) : m_picture(picture) {}
    [[nodiscard]] const std::uint8_t* Row(int y) override { return m_picture.Row(y); }

private:
    DibView m_picture;
};

void ShrinkDIB(const DibView& source, Size target, std::uint8_t* out) {
    if (source.BitCount() == 32) {
        BledRows rows(source);
        AverageArea(rows, source.GetSize(), target, AlphaUse::Straight, out);
    } else {
        OpaqueRows rows(source);
        AverageArea(rows, source.GetSize(), target, AlphaUse::Straight, out);
    }
}

void InterpolateDIB(const DibBlock& block, const DibView& source, Size work, Size kept, std::uint8_t* out) {
    if (source.BitCount() == 32) {
        InterpolateBilinear(source.Row(0), source.GetSize(), work, kept, AlphaUse::Straight, out);
    } else {
        InterpolateBilinear(SurfaceFromDIB(block).Row(0), source.GetSize(), work, kept, AlphaUse::Straight, out);
    }
}

} // namespace

DibBlock ResampleDIB(const DibBlock& block, int width, int height) {
    const DibView source(block);
    if (!source || (source.BitCount() != 24 && source.BitCount() != 32) || !IsTargetSize(width, height)) return {};
    if (source.GetSize() == Size{width, height}) return CopyHandle(block);

    const Size kept{width, height};
    const Size work{width + Surplus(source.Width(), width), height + Surplus(source.Height(), height)};
    const bool shrinks = ShrinksTo(source.GetSize(), work);
    const auto scale = [&](std::uint8_t* out) {
        shrinks ? ShrinkDIB(source, kept, out) : InterpolateDIB(block, source, work, kept, out);
    };
    if (source.BitCount() == 24) {
        Surface result(width, height);
        scale(result.Row(0));
        return DIB24FromSurface(result);
    }
    auto result = CreateDIB(width, height, 32);
    if (const DibRows rows(result); rows) scale(rows.Row(0));
    return result;
}

DibBlock BleedColors(const DibBlock& block32) {
    const DibView source(block32);
    if (source.BitCount() != 32) return {};
    auto result = CreateDIB(source.Width(), source.Height(), 32);
    const DibRows target(result);
    if (!target) return {};
    BledRows rows(source);
    for (int y = 0; y < source.Height(); ++y) std::memcpy(target.Row(y), rows.Row(y), source.Stride());
    return result;
}

DibBlock ShrinkBled(const DibBlock& bled32, int width, int height) {
    const DibView source(bled32);
    if (source.BitCount() != 32 || width <= 0 || height <= 0 || !ShrinksTo(source.GetSize(), {width, height}))
        return {};
    auto result = CreateDIB(width, height, 32);
    const DibRows target(result);
    if (!target) return {};
    BlockRows rows(source);
    AverageArea(rows, source.GetSize(), {width, height}, AlphaUse::Straight, target.Row(0));
    return result;
}

Surface ResampleBitmap(const Surface& bitmap, int width, int height) {
    if (!bitmap || !IsTargetSize(width, height)) return {};
    if (bitmap.GetSize() == Size{width, height}) return bitmap;
    Surface result(width, height);
    if (bitmap.Width() > width && bitmap.Height() > height) {
        SurfaceRows rows(bitmap);
        AverageArea(rows, bitmap.GetSize(), result.GetSize(), AlphaUse::Unused, result.Row(0));
    } else {
        InterpolateBilinear(bitmap.Row(0), bitmap.GetSize(), result.GetSize(), result.GetSize(), AlphaUse::Unused,
                            result.Row(0));
    }
    return result;
}

} // namespace pelorin
