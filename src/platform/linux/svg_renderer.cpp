#include "platform/svg_renderer.h"

#include <cmath>
#include <cstring>
#include <dlfcn.h>
#include <memory>

namespace pelorin {

namespace {

// The few calls of librsvg 2.52 and cairo that are needed, by their published declarations. Loading them when the first
// SVG picture comes keeps a program that never sees one free of some thirty libraries.
struct Rectangle {
    double x, y, width, height;
};
struct Length {
    double length;
    int unit;
};
struct Library {
    void* (*newFromData)(const std::uint8_t* data, std::size_t size, void** error);
    void (*setDpi)(void* handle, double dpi);
    int (*sizeInPixels)(void* handle, double* width, double* height);
    void (*dimensions)(void* handle, int* hasWidth, Length* width, int* hasHeight, Length* height, int* hasViewBox,
                       Rectangle* viewBox);
    int (*render)(void* handle, void* context, const Rectangle* viewport, void** error);
    void (*releaseObject)(void* object);
    void* (*newSurface)(unsigned char* pixels, int format, int width, int height, int stride);
    void* (*newContext)(void* surface);
    int (*contextStatus)(void* context);
    void (*flushSurface)(void* surface);
    void (*releaseSurface)(void* surface);
    void (*releaseContext)(void* context);
};
constexpr int kFormatArgb32 = 0;

template <class Function>
bool Find(void* library, const char* name, Function& function) {
    void* symbol = dlsym(library, name);
    std::memcpy(&function, &symbol, sizeof symbol);
    return symbol != nullptr;
}

// Stays loaded: the library keeps threads' data of its own.
bool Load(Library& calls) {
    // Symbols of the libraries that it stands on are found through it.
    void* rsvg = dlopen("librsvg-2.so.2", RTLD_NOW | RTLD_LOCAL);
    return rsvg && Find(rsvg, "rsvg_handle_new_from_data", calls.newFromData) &&
           Find(rsvg, "rsvg_handle_set_dpi", calls.setDpi) &&
           Find(rsvg, "rsvg_handle_get_intrinsic_size_in_pixels", calls.sizeInPixels) &&
           Find(rsvg, "rsvg_handle_get_intrinsic_dimensions", calls.dimensions) &&
           Find(rsvg, "rsvg_handle_render_document", calls.render) &&
           Find(rsvg, "g_object_unref", calls.releaseObject) &&
           Find(rsvg, "cairo_image_surface_create_for_data", calls.newSurface) &&
           Find(rsvg, "cairo_create", calls.newContext) && Find(rsvg, "cairo_status", calls.contextStatus) &&
           Find(rsvg, "cairo_surface_flush", calls.flushSurface) &&
           Find(rsvg, "cairo_surface_destroy", calls.releaseSurface) &&
           Find(rsvg, "cairo_destroy", calls.releaseContext);
}

const Library* Renderer() {
    static Library calls{};
    static const bool found = Load(calls);
    return found ? &calls : nullptr;
}

using Handle = std::unique_ptr<void, void (*)(void*)>;

Handle Open(const Library& library, ByteSpan file) {
    Handle handle(library.newFromData(file.data(), file.size(), nullptr), library.releaseObject);
    if (handle) library.setDpi(handle.get(), 96);
    return handle;
}

int Pixels(double length) {
    return length > 0 && length < 1e9 ? static_cast<int>(std::ceil(length - 1e-6)) : 0;
}

} // namespace

bool HasSvgRenderer() {
    return Renderer() != nullptr;
}

Size SvgSize(ByteSpan file) {
    const auto* library = Renderer();
    if (!library) return {};
    const auto handle = Open(*library, file);
    if (!handle) return {};
    double width = 0, height = 0;
    if (!library->sizeInPixels(handle.get(), &width, &height)) {
        int hasWidth = 0, hasHeight = 0, hasViewBox = 0;
        Length ignoredWidth{}, ignoredHeight{};
        Rectangle box{};
        library->dimensions(handle.get(), &hasWidth, &ignoredWidth, &hasHeight, &ignoredHeight, &hasViewBox, &box);
        width = hasViewBox ? box.width : 0;
        height = hasViewBox ? box.height : 0;
    }
    const Size size{Pixels(width), Pixels(height)};
    return size.width > 0 && size.height > 0 ? size : Size{};
}

std::vector<std::uint32_t> DrawSvg(ByteSpan file, Size size) {
    const auto* library = Renderer();
    const auto inside = [](int side) { return side >= 1 && side <= kMaxSvgSide; };
    if (!library || !inside(size.width) || !inside(size.height)) return {};
    const auto handle = Open(*library, file);
    if (!handle) return {};
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height));
    auto* bytes = reinterpret_cast<unsigned char*>(pixels.data());
    const Handle surface(library->newSurface(bytes, kFormatArgb32, size.width, size.height, 4 * size.width),
                         library->releaseSurface);
    const Handle context(library->newContext(surface.get()), library->releaseContext);
    const Rectangle viewport{0, 0, static_cast<double>(size.width), static_cast<double>(size.height)};
    const bool drawn = library->render(handle.get(), context.get(), &viewport, nullptr) != 0;
    library->flushSurface(surface.get());
    if (!drawn || library->contextStatus(context.get()) != 0) pixels.clear();
    return pixels;
}

} // namespace pelorin
