#include "pixel/surface.h"

#include "pixel/visit_depth.h"

namespace pelorin {

Surface SurfaceFromDIB(const DibBlock& block) {
    const DibView source(block);
    Surface surface(source.Width(), source.Height());
    VisitDepth(source, [&](const auto& pixel) {
        for (int y = 0; y < source.Height(); ++y) {
            auto* to = surface.Row(y);
            for (int x = 0; x < source.Width(); ++x) StoreU32LE(to + std::ptrdiff_t{4} * x, pixel(source.Row(y), x));
        }
    });
    return surface;
}

DibBlock DIBFromSurface(const Surface& surface) {
    auto block = CreateDIB(surface.Width(), surface.Height(), 32);
    if (block) std::memcpy(block.Data() + kDibHeaderSize, surface.Span().data(), surface.Span().size());
    return block;
}

DibBlock DIB24FromSurface(const Surface& surface) {
    auto block = CreateDIB(surface.Width(), surface.Height(), 24);
    const DibRows target(block);
    for (int y = 0; y < target.Height(); ++y) {
        const auto* from = surface.Row(y);
        auto* to = target.Row(y);
        for (int x = 0; x < target.Width(); ++x, from += 4, to += 3) {
            to[0] = from[0];
            to[1] = from[1];
            to[2] = from[2];
        }
    }
    return block;
}

} // namespace pelorin
