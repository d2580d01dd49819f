// Convolution with small kernels, and the named filters.
#pragma once

#include "pixel/surface.h"

#include <span>

namespace pelorin {

/// A kernel: the sum of coefficient x byte over the window is divided, then biased. Coefficients stand row by row; the
/// window begins `nWidth / 2` columns and `nHeight / 2` rows before the pixel, rows counted as they are stored. So the
/// first row of coefficients meets the row beneath the pixel in the picture.
struct ConvolutionKernel {
    std::int32_t nWidth, nHeight, nDivisor, nBias;
    std::span<const std::int32_t> aCoefficients;
};

/// A named filter; `number` is the one that commands use, 0 for a kernel without a command.
struct Filter {
    std::string_view name;
    int number;
    ConvolutionKernel kernel;
};

/// All kernels, in the order of their numbers.
[[nodiscard]] std::span<const Filter> Filters();
/// The filter of that number (1 to 12); null for another.
[[nodiscard]] const Filter* FindFilter(int number);
/// The filter of that name, letter case aside, "-" or "_" for a blank; null for another.
[[nodiscard]] const Filter* FindFilter(std::string_view name);

extern const ConvolutionKernel kSmooth, kSmoothMore, kBlur, kDetails;

/// The bitmap filtered: all four bytes alike, edge pixels standing in for what lies outside. With `blend` above 0 the
/// result is (original x blend + filtered x (100 - blend)) / 100. All divisions truncate; what is below 1 becomes 0 and
/// what is at least 255 becomes 255. Empty for an empty bitmap and for a kernel without divisor or with too few
/// coefficients.
[[nodiscard]] Surface ApplyKernel(const Surface& bitmap, const ConvolutionKernel& kernel, int blend);

} // namespace pelorin
