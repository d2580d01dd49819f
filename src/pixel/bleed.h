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
    void MoveWindow(int y);
    const std::uint8_t* VisibleRow(int y);
    void AddRow(int y);
    void RemoveRow(int y);
    void FillRow(const std::uint8_t* from);
    void FillRun(int from, int to);

    DibView m_picture;
    int m_low = 0, m_high = 0; // rows that m_columns holds
    // Four sums a column over the rows of the window: blue, green and red of the visible pixels and their number.
    std::vector<std::uint16_t> m_columns;
    Bytes m_visible, m_row;
};

} // namespace pelorin
