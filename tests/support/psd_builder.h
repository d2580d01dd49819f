// Photoshop files for tests, laid out by hand.
#pragma once

#include "base/bytes.h"
#include "base/geometry.h"

#include <optional>
#include <string>
#include <vector>

namespace pelorin::test::psd {

struct Plane {
    int id;
    Bytes data; ///< compression word and all
};

struct Mask {
    Rect rect;
    std::uint8_t flags = 0;
};

struct Layer {
    Rect rect;
    std::vector<Plane> planes;
    std::string name{};
    std::optional<Mask> mask{};
    std::string signature = "8BIM";
};

inline Bytes Plain(Bytes pixels) {
    pixels.insert(pixels.begin(), {0, 0});
    return pixels;
}

inline void PutRect(ByteWriter& out, const Rect& rect) {
    for (const int side : {rect.top, rect.left, rect.bottom, rect.right}) out.I32BE(side);
}

inline Bytes ExtraOf(const Layer& layer) {
    ByteWriter out;
    out.U32BE(layer.mask ? 20 : 0);
    if (layer.mask) {
        PutRect(out, layer.mask->rect);
        out.U8(255);
        out.U8(layer.mask->flags);
        out.Zeros(2);
    }
    out.U32BE(0);
    out.U8(static_cast<std::uint32_t>(layer.name.size()));
    out.Text(layer.name);
    out.AlignTo(4);
    return out.Take();
}

inline Bytes LayerBlock(int count, const std::vector<Layer>& layers) {
    ByteWriter out;
    out.U16BE(static_cast<std::uint32_t>(count));
    for (const auto& layer : layers) {
        PutRect(out, layer.rect);
        out.U16BE(static_cast<std::uint32_t>(layer.planes.size()));
        for (const auto& plane : layer.planes) {
            out.U16BE(static_cast<std::uint32_t>(plane.id));
            out.U32BE(static_cast<std::uint32_t>(plane.data.size()));
        }
        out.Text(layer.signature);
        out.Text("mul ");
        out.U32BE(0x80000000);
        const auto extra = ExtraOf(layer);
        out.U32BE(static_cast<std::uint32_t>(extra.size()));
        out.Raw(extra);
    }
    for (const auto& layer : layers) {
        for (const auto& plane : layer.planes) out.Raw(plane.data);
    }
    out.AlignTo(2);
    return out.Take();
}

struct Shape {
    int channels, width, height, depth = 8, mode = 3, version = 1;
};

inline Bytes MakeFile(const Shape& shape, const Bytes& layers, const Bytes& merged) {
    ByteWriter out;
    out.Text("8BPS");
    out.U16BE(static_cast<std::uint32_t>(shape.version));
    out.Zeros(6);
    out.U16BE(static_cast<std::uint32_t>(shape.channels));
    out.I32BE(shape.height);
    out.I32BE(shape.width);
    out.U16BE(static_cast<std::uint32_t>(shape.depth));
    out.U16BE(static_cast<std::uint32_t>(shape.mode));
    out.U32BE(3); // sections are skipped by their length
    out.Text("abc");
    out.U32BE(0);
    out.U32BE(layers.empty() ? 0 : static_cast<std::uint32_t>(layers.size()) + 8);
    if (!layers.empty()) {
        out.U32BE(static_cast<std::uint32_t>(layers.size()));
        out.Raw(layers);
        out.U32BE(0);
    }
    out.Raw(merged);
    return out.Take();
}

inline std::vector<Plane> FlatPlanes(std::size_t pixels, std::uint8_t r, std::uint8_t g, std::uint8_t b) {
    return {{0, Plain(Bytes(pixels, r))}, {1, Plain(Bytes(pixels, g))}, {2, Plain(Bytes(pixels, b))}};
}

} // namespace pelorin::test::psd
