#include "pixel/value_filter.h"

#include "pixel/convolve.h"

#include <cstdlib>

namespace pelorin {

Surface ApplyValueFilter(const Surface& bitmap, int value, int strength) {
    value = std::clamp(value, 0, 20);
    const int kept = strength * (100 - 10 * std::abs(value - kNoFilterValue)) / 100;
    return ApplyKernel(bitmap, value < kNoFilterValue ? kSmooth : kDetails, 100 - strength + kept);
}

int ScalingFilterStrength(Size source, Size target) {
    const auto exceeds = [&](int parts) {
        return std::int64_t{target.width} * parts > source.width && std::int64_t{target.height} * parts > source.height;
    };
    return exceeds(3) ? 50 : exceeds(5) ? 75 : 100;
}

bool FilterAfterScaling(Surface& color, Surface& alpha, Size source, int bits, const CreationFilter& filter) {
    if (!filter.apply || filter.value == kNoFilterValue || bits != 32 || color.GetSize() == source) return false;
    const int strength = ScalingFilterStrength(source, color.GetSize());
    color = ApplyValueFilter(color, filter.value, strength);
    alpha = ApplyValueFilter(alpha, filter.value, strength / 2);
    return true;
}

} // namespace pelorin
