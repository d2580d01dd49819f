#include "icon/source_picture.h"

#include "pixel/crop.h"
#include "pixel/resample.h"

#include <utility>

namespace pelorin {

SourcePicture::SourcePicture(const DibBlock& block) {
    const DibView view(block);
    if (!view) return;
    m_bits = view.BitCount();
    m_size = view.GetSize();
    m_palette = CreateDIBPalette(block);
    if (m_bits == 24 || m_bits == 32) {
        m_working = &block;
        return;
    }
    m_converted = ConvertDIBTo24(block);
    if (m_converted) m_working = &m_converted;
}

DibBlock SourcePicture::Make(Size size, bool resample) const {
    if (!m_working || size.width <= 0 || size.height <= 0) return {};
    if (resample && m_bled && ShrinksTo(m_size, size)) return ShrinkBled(m_bled, size.width, size.height);
    if (resample) return ResampleDIB(*m_working, size.width, size.height);
    const Size cut{std::min(size.width, m_size.width), std::min(size.height, m_size.height)};
    return CropDIB(*m_working, 0, 0, cut.width - 1, cut.height - 1);
}

const DibBlock& SourcePicture::Fitted(Size size, bool resample) {
    auto& made = resample ? m_scaled : m_cut;
    const auto key = std::make_pair(size.width, size.height);
    auto found = made.find(key);
    if (found == made.end()) found = made.try_emplace(key).first;
    auto& slot = found->second;
    std::call_once(slot.once, [&] { slot.block = Make(size, resample); });
    return slot.block;
}

// The step that costs most is the same for every size that is smaller than the picture.
void SourcePicture::BleedFor(std::span<const Size> sizes) {
    const auto shrinking =
        std::count_if(sizes.begin(), sizes.end(), [&](Size size) { return ShrinksTo(m_size, size); });
    if (m_bits == 32 && m_working && !m_bled && shrinking > 1) m_bled = BleedColors(*m_working);
}

void SourcePicture::Prepare(std::span<const Size> sizes) {
    BleedFor(sizes);
    for (const auto& size : sizes) m_scaled.try_emplace(std::make_pair(size.width, size.height));
}

} // namespace pelorin
