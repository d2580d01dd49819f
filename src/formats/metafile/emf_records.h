// The records of enhanced metafiles: what their players are given, the values they read, and those that have a room of
// their own. Records without bounds begin with their first value, others with four words of bounds.
#pragma once

#include "formats/metafile/player.h"

#include <span>

namespace pelorin::metafile::emf {

// One record is played; `whole` is the record with its head, to which offsets are counted.
struct Emf {
    Painter& painter;
    ByteSpan whole{};

    State& Now() { return painter.Now(); }
    [[nodiscard]] ByteSpan Part(std::uint32_t offset, std::uint64_t length) const {
        return ByteReader(whole).Sub(offset, length).All();
    }
    [[nodiscard]] Rgb Color(ByteReader& in) { return ReadColor(in, Now().palette); }
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

/// Where a bitmap lies in the record: its header and its rows.
struct DibPlaces {
    std::uint32_t header = 0, headerSize = 0, rows = 0, rowsSize = 0;

    static DibPlaces Read(ByteReader& in) {
        const auto header = in.U32LE(), headerSize = in.U32LE(), rows = in.U32LE(), rowsSize = in.U32LE();
        return {header, headerSize, rows, rowsSize};
    }
    /// `usage` says what its colour table is. Empty where there is none.
    [[nodiscard]] Surface Decode(Emf& emf, std::uint32_t usage) const;
};

using Play = void (*)(Emf& emf, ByteReader& in);
struct Row {
    std::uint32_t type;
    Play play;
};

// The records of each room.
[[nodiscard]] std::span<const Row> ObjectRows();
[[nodiscard]] std::span<const Row> RegionRows();
[[nodiscard]] std::span<const Row> AreaRows();
[[nodiscard]] std::span<const Row> TextRows();

} // namespace pelorin::metafile::emf
