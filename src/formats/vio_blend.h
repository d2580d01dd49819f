// How layers of image objects are laid over one another.
#pragma once

#include "pixel/dib.h"

namespace pelorin {

/// Lays a 32-bpp picture over another with its top-left pixel at (x, y); what falls outside is dropped. `opacity`, 0 to
/// 100, scales the source's alpha, save over ground that is empty: there the source's pixel comes as it is. Ground that
/// stays empty under an invisible pixel becomes grey.
void BlendVniLayer(const DibRows& target, const DibView& source, std::int64_t x, std::int64_t y, int opacity);

} // namespace pelorin
