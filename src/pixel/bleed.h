// Colour for pixels that are nearly invisible, taken from what is visible around them.
#pragma once

#include "pixel/resample_kernels.h"

#include <vector>

namespace pelorin {

/// The rows of a 32-bpp picture in which every pixel of alpha below 8 has the mean colour of the visible pixels (alpha
/// 8 or more) near it, or black where there are none; alpha stays. Near are 8 columns to the left and 7 to the right
/// and as many rows in stored order; the picture's last column and last stored row never lend.
///
/// Rows are asked for in ascending order. The picture is not copied: a row without such pixels is handed through, for
/// the others running sums of the columns are carried along.
class BledRows final : public RowSource {
public:
    explicit BledRows(const DibView& picture);
    [[nodiscard]] const std::uint8_t* Row(int y) override;

private:
    // Sums of one column over the rows of the window: blue, green, red, count.
    struct Sums {
        std::uint16_t value[4];
    };
    void MoveWindow(int y);
    void AddRow(int y, std::uint16_t sign);
    void FillRow(const std::uint8_t* from);

    DibView m_picture;
    int m_low = 0, m_high = 0; // rows that m_columns holds
    std::vector<Sums> m_columns;
    Bytes m_row;
};

} // namespace pelorin
