// The filter that follows the scaling when formats are made from a larger picture.
#pragma once

#include "pixel/surface.h"

namespace pelorin {

/// The neutral filter value.
inline constexpr int kNoFilterValue = 10;

/// Smooths (`value` 0 to 9) or sharpens (11 to 20); `strength` is how much of the filter there is at the far ends, in
/// percent.
[[nodiscard]] Surface ApplyValueFilter(const Surface& bitmap, int value, int strength);

/// How strongly the picture is filtered after it was scaled: 100 in general, 75 where both sides of the target exceed a
/// fifth of the source's, 50 where both exceed a third.
[[nodiscard]] int ScalingFilterStrength(Size source, Size target);

/// What the person asked for.
struct CreationFilter {
    bool apply = false;
    int value = kNoFilterValue;
};

/// The filter step for one new format, whose planes have been scaled from `source`: formats of 32 bits and another size
/// than the source's get the colour plane filtered at full strength and the alpha plane at half. True when it was
/// applied.
bool FilterAfterScaling(Surface& color, Surface& alpha, Size source, int bits, const CreationFilter& filter);

} // namespace pelorin
