// A picture on its way into several image formats: every size that is needed is scaled once.
#pragma once

#include "pixel/color.h"
#include "pixel/dib.h"

#include <map>
#include <mutex>

namespace pelorin {

class SourcePicture {
public:
    /// The block must outlive the object. Up to 8 bits it is expanded to 24; 15 and 16 likewise.
    explicit SourcePicture(const DibBlock& block);

    /// False for a block that cannot be read.
    [[nodiscard]] bool Ok() const { return static_cast<bool>(m_working); }
    [[nodiscard]] int SourceBits() const { return m_bits; }
    [[nodiscard]] Size SourceSize() const { return m_size; }
    /// The table of an indexed picture, empty otherwise.
    [[nodiscard]] const CPalette& SourcePalette() const { return m_palette; }

    /// The picture at 24 or 32 bpp, scaled to `size`; or, without `resample`, its top left part of at most that size.
    /// Empty when that cannot be made. The reference holds until the object goes.
    const DibBlock& Fitted(Size size, bool resample = true);
    /// Makes ready for these sizes: from here on `Fitted` may be asked for them by several threads.
    void Prepare(std::span<const Size> sizes);

private:
    [[nodiscard]] DibBlock Make(Size size, bool resample) const;
    void BleedFor(std::span<const Size> sizes);

    DibBlock m_converted;
    DibBlock m_bled; ///< what a picture with alpha is shrunk from; empty until several sizes ask for it
    const DibBlock* m_working = nullptr;
    int m_bits = 0;
    Size m_size;
    CPalette m_palette;
    // A size is scaled by the first who asks for it.
    struct Slot {
        std::once_flag once;
        DibBlock block;
    };
    std::map<std::pair<int, int>, Slot> m_scaled, m_cut;
};

} // namespace pelorin
