#include "formats/metafile/canvas.h"

namespace pelorin::metafile {

namespace {

// Every pixel may be drawn so often on average, and small pictures have a share besides.
constexpr std::uint64_t kWorkPerPixel = 64, kLeastWork = std::uint64_t{32} << 20;

// Lines of the six hatches: horizontal, vertical, falling, rising, cross, diagonal cross.
bool OnHatch(int hatch, int x, int y) {
    const int u = x & 7, v = y & 7;
    switch (hatch) {
    case 0: return v == 4;
    case 1: return u == 4;
    case 2: return u == v;
    case 3: return u == 7 - v;
    case 4: return u == 4 || v == 4;
    default: return u == v || u == 7 - v;
    }
}

int Modulo(int a, int b) {
    const int r = a % b;
    return r < 0 ? r + b : r;
}

} // namespace

Rop RopOfPen(unsigned number) {
    if (number < 1 || number > 16) return kCopyPattern;
    const unsigned table = number - 1;
    const auto low = table & 3, high = table >> 2;
    return static_cast<Rop>(low | low << 2 | high << 4 | high << 6);
}

Rgb Combine(Rop rop, Rgb pattern, Rgb source, Rgb destination) {
    if (rop == kCopyPattern) return pattern;
    if (rop == kCopySource) return source;
    Rgb result = 0;
    for (unsigned bit = 0; bit < 8; ++bit) {
        if ((rop >> bit & 1) == 0) continue;
        result |=
            (bit & 4 ? pattern : ~pattern) & (bit & 2 ? source : ~source) & (bit & 1 ? destination : ~destination);
    }
    return result & 0xFFFFFF;
}

bool Ink::ColorAt(int x, int y, Rgb& result) const {
    x -= origin.x;
    y -= origin.y;
    switch (kind) {
    case Kind::None: return false;
    case Kind::Solid: result = color; return true;
    case Kind::Hatch:
        result = OnHatch(hatch, x, y) ? color : ground;
        return opaque || result != ground || OnHatch(hatch, x, y);
    case Kind::Picture:
        result = picture->At(Modulo(x, picture->Width()), Modulo(y, picture->Height())) & 0xFFFFFF;
        if (twoColors) result = result == 0 ? color : ground;
        return true;
    }
    return false;
}

Canvas::Canvas(int width, int height, Rgb ground) : m_surface(width, height) {
    m_surface.Fill(0xFF000000u | ground);
    m_work = kLeastWork + kWorkPerPixel * static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
}

std::shared_ptr<ClipMask> Canvas::NewMask(std::uint8_t value) {
    // Whole masks are filled and copied faster than pixels are drawn.
    constexpr std::size_t kPixelsOfAStep = 16;
    const auto pixels = static_cast<std::size_t>(Width()) * static_cast<std::size_t>(Height());
    if (!Spend(pixels / kPixelsOfAStep + 1)) return nullptr;
    auto mask = std::make_shared<ClipMask>();
    mask->inside.assign(pixels, value);
    return mask;
}

std::shared_ptr<ClipMask> Canvas::CopyMask(const Clip& from) {
    auto mask = NewMask(1);
    if (mask && from) mask->inside = from->inside;
    return mask;
}

bool Canvas::Spend(std::uint64_t steps) {
    m_work = steps < m_work ? m_work - steps : 0;
    return m_work != 0;
}

void Canvas::Reach(Point corner) {
    m_reached = {std::min(m_reached.left, corner.x), std::min(m_reached.top, corner.y),
                 std::max(m_reached.right, corner.x), std::max(m_reached.bottom, corner.y)};
}

Rect Canvas::Reach(std::initializer_list<Point> corners) {
    Rect box{INT_MAX, INT_MAX, INT_MIN, INT_MIN};
    for (const auto& corner : corners) {
        Reach(corner);
        box = {std::min(box.left, corner.x), std::min(box.top, corner.y), std::max(box.right, corner.x),
               std::max(box.bottom, corner.y)};
    }
    return box.Intersect(Bounds());
}

bool Canvas::Visible(int x, int y) const {
    if (x < 0 || y < 0 || x >= Width() || y >= Height()) return false;
    return !m_clip || m_clip->inside[static_cast<std::size_t>(y) * static_cast<std::size_t>(Width()) +
                                     static_cast<std::size_t>(x)] != 0;
}

void Canvas::Put(int x, int y, Rop rop, Rgb pattern, Rgb source) {
    if (Visible(x, y)) m_surface.Put(x, y, 0xFF000000u | Combine(rop, pattern, source, At(x, y)));
}

void Canvas::Span(int y, int left, int right, const Ink& ink, Rop rop) {
    left = std::max(left, 0);
    right = std::min(right, Width());
    if (y < 0 || y >= Height() || left >= right || !Spend(static_cast<std::uint64_t>(right - left))) return;
    if (ink.kind == Ink::Kind::Solid && rop == kCopyPattern && !m_clip) {
        auto* to = m_surface.PictureRow(y) + std::ptrdiff_t{4} * left;
        for (int x = left; x < right; ++x, to += 4) StoreU32LE(to, 0xFF000000u | ink.color);
        return;
    }
    Rgb color = 0;
    for (int x = left; x < right; ++x) {
        if (ink.ColorAt(x, y, color)) Put(x, y, rop, color);
    }
}

} // namespace pelorin::metafile
