// The two scalers behind resample.h. Rows are in stored order and four bytes a pixel; so is what they write, without a
// gap between rows.
#pragma once

#include "pixel/dib.h"

namespace pelorin {

/// Source rows for a scaler that reads each row once, in order.
class RowSource {
public:
    virtual ~RowSource() = default;
    /// Row `y`, good until the next call.
    [[nodiscard]] virtual const std::uint8_t* Row(int y) = 0;
};

/// Whether alpha takes part. `Straight`: nearly invisible pixels take a neighbour's colour. `Unused`: the fourth byte
/// of the result is 0.
enum class AlphaUse { Straight, Unused };

/// Bilinear interpolation in double precision, truncated. `work` is the size that the factors are made of; only its
/// first `kept` columns and rows are written to `out`. `pixels` are `source` rows without a gap.
void InterpolateBilinear(const std::uint8_t* pixels, Size source, Size work, Size kept, AlphaUse alpha,
                         std::uint8_t* out);

/// Area averaging in thousandths of a source pixel, for a target that is smaller in both directions.
void AverageArea(RowSource& rows, Size source, Size target, AlphaUse alpha, std::uint8_t* out);

} // namespace pelorin
