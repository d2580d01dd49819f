// The records of Windows metafiles: what their players are given and the values they read. Parameters stand in reverse
// order: y before x, the lower right corner before the upper left one.
#pragma once

#include "formats/metafile/player.h"

#include <span>

namespace pelorin::metafile::wmf {

// One record is played; the reader that goes with it holds its parameters.
struct Wmf {
    Painter& painter;

    State& Now() { return painter.Now(); }
    [[nodiscard]] Rgb Color(ByteReader& in) { return ReadColor(in, Now().palette); }
};

[[nodiscard]] inline PointF ReadYX(ByteReader& in) {
    const double y = in.I16LE(), x = in.I16LE();
    return {x, y};
}

[[nodiscard]] inline PointF ReadXY(ByteReader& in) {
    const double x = in.I16LE(), y = in.I16LE();
    return {x, y};
}

struct Record {
    std::uint16_t function = 0;
    ByteReader parameters;
};
/// The next record; false at the end and where lengths make no sense.
[[nodiscard]] bool NextRecord(ByteReader& in, Record& record);

enum Function : std::uint16_t { kSetMapMode = 0x0103, kSetWindowExtent = 0x020C, kEscape = 0x0626 };

using Play = void (*)(Wmf& wmf, ByteReader& in);
struct Row {
    std::uint16_t function;
    Play play;
};

// The records of each room.
[[nodiscard]] std::span<const Row> ObjectRows();
[[nodiscard]] std::span<const Row> AreaRows();
[[nodiscard]] std::span<const Row> TextRows();

} // namespace pelorin::metafile::wmf
