// The chunks of an IFF picture, found and checked, before any pixel is decoded.
#pragma once

#include "base/bytes.h"
#include "pixel/dib.h"

#include <optional>

namespace pelorin {

enum class IffMasking { None = 0, Plane = 1, Index = 2, Lasso = 3 };

struct IffForm {
    bool chunky = false; ///< one byte a pixel in place of planes
    int width = 0, height = 0, planes = 0;
    IffMasking masking = IffMasking::None;
    bool packed = false;
    unsigned transparent = 0;
    bool holdAndModify = false;
    std::vector<Rgb> colors;
    ByteSpan body;

    [[nodiscard]] std::size_t PlaneBytes() const { return static_cast<std::size_t>(width + 15) / 16 * 2; }
    [[nodiscard]] bool HasMaskPlane() const { return masking == IffMasking::Plane; }
    [[nodiscard]] std::size_t RowBytes() const {
        if (chunky) return static_cast<std::size_t>(width + 1) / 2 * 2;
        return PlaneBytes() * static_cast<std::size_t>(planes + (HasMaskPlane() ? 1 : 0));
    }
    [[nodiscard]] bool TrueColor() const { return planes > 8; }
};

/// The first picture of the file with all its facts in range; nothing when there is none that can be read.
[[nodiscard]] std::optional<IffForm> FindIffForm(ByteSpan file);

} // namespace pelorin
