// The records of enhanced metafiles: what their players are given, the values they read, and those that have a room of
// their own. Records without bounds begin with their first value, others with four words of bounds.
#pragma once

#include "formats/metafile/player.h"

namespace pelorin::metafile::emf {

// One record is played; `whole` is the record with its head, to which offsets are counted.
struct Emf {
    Painter& painter;
    ByteSpan whole{};

    State& Now() { return painter.Now(); }
    [[nodiscard]] ByteSpan Part(std::uint32_t offset, std::uint64_t length) const {
        return ByteReader(whole).Sub(offset, length).All();
    }
};

[[nodiscard]] inline PointF Read32(ByteReader& in) {
    const double x = in.I32LE(), y = in.I32LE();
    return {x, y};
}

[[nodiscard]] inline PointF Read16(ByteReader& in) {
    const double x = in.I16LE(), y = in.I16LE();
    return {x, y};
}

[[nodiscard]] inline Rect ReadRect(ByteReader& in) {
    const int left = in.I32LE(), top = in.I32LE(), right = in.I32LE(), bottom = in.I32LE();
    return {left, top, right, bottom};
}

[[nodiscard]] inline double ReadFloat(ByteReader& in) {
    const auto bits = in.U32LE();
    float value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return std::isfinite(value) ? std::clamp(static_cast<double>(value), -1e9, 1e9) : 0;
}

[[nodiscard]] inline Transform ReadTransform(ByteReader& in) {
    Transform t;
    for (auto* value : {&t.a, &t.b, &t.c, &t.d, &t.e, &t.f}) *value = ReadFloat(in);
    return t;
}

// ---- objects ----
void CreatePen(Emf& emf, ByteReader& in);
void ExtCreatePen(Emf& emf, ByteReader& in);
void CreateBrush(Emf& emf, ByteReader& in);
void CreatePattern(Emf& emf, ByteReader& in);
void CreateFont(Emf& emf, ByteReader& in);
void SelectObject(Emf& emf, ByteReader& in);

// ---- areas and text ----
void GradientFill(Emf& emf, ByteReader& in);
/// With a source context; `stretched` where the source has a size of its own.
void BlitRecord(Emf& emf, ByteReader& in, bool stretched);
void AlphaBlend(Emf& emf, ByteReader& in);
void TransparentBlt(Emf& emf, ByteReader& in);
/// With the bitmap alone.
void DibRecord(Emf& emf, ByteReader& in, bool stretched);
/// Letters of 16 or 8 bits.
void TextRecord(Emf& emf, ByteReader& in, bool wide);

} // namespace pelorin::metafile::emf
