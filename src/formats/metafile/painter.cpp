#include "formats/metafile/painter.h"

namespace pelorin::metafile {

namespace {

constexpr std::size_t kMaxSaved = 1000, kMaxObjects = 1 << 16;

double SafeQuotient(double a, double b) {
    return b == 0 ? a : a / b;
}

// Millimetres of one logical unit, 0 for the modes without a fixed size.
double UnitInMm(MapMode mode) {
    switch (mode) {
    case MapMode::LowMetric: return 0.1;
    case MapMode::HighMetric: return 0.01;
    case MapMode::LowEnglish: return 0.254;
    case MapMode::HighEnglish: return 0.0254;
    case MapMode::Twips: return 25.4 / 1440;
    default: return 0;
    }
}

PointF MappingScale(const State& state, const Device& device) {
    if (const double mm = UnitInMm(state.mapMode); mm > 0) return {mm * device.pixelsPerMmX, -mm * device.pixelsPerMmY};
    if (state.mapMode != MapMode::Isotropic && state.mapMode != MapMode::Anisotropic) return {1, 1};
    PointF scale{SafeQuotient(state.viewportExtent.x, state.windowExtent.x),
                 SafeQuotient(state.viewportExtent.y, state.windowExtent.y)};
    if (state.mapMode == MapMode::Isotropic) {
        const double least = std::min(std::abs(scale.x), std::abs(scale.y));
        scale = {std::copysign(least, scale.x), std::copysign(least, scale.y)};
    }
    return scale;
}

} // namespace

void Painter::Save() {
    if (m_saved.size() < kMaxSaved) m_saved.push_back(m_now);
}

void Painter::Restore(int level) {
    const auto count = static_cast<std::int64_t>(m_saved.size());
    const std::int64_t target = level < 0 ? count + level : std::int64_t{level} - 1;
    if (level == 0 || target < 0 || target >= count) return;
    m_now = std::move(m_saved[static_cast<std::size_t>(target)]);
    m_saved.resize(static_cast<std::size_t>(target));
    m_canvas.SetClip(m_now.clip);
}

void Painter::SetObject(std::size_t index, Object object) {
    if (index >= kMaxObjects) return;
    if (index >= m_objects.size()) m_objects.resize(index + 1);
    m_objects[index] = std::move(object);
}

void Painter::AddObject(Object object) {
    std::size_t free = 0;
    while (free < m_objects.size() && m_objects[free].index() != 0) ++free;
    m_canvas.Spend(free);
    SetObject(free, std::move(object));
}

void Painter::DeleteObject(std::size_t index) {
    if (index < m_objects.size()) m_objects[index] = {};
}

void Painter::SelectObject(std::size_t index) {
    if (index < m_objects.size()) Select(m_objects[index]);
}

void Painter::Select(const Object& object) {
    if (const auto* pen = std::get_if<Pen>(&object)) m_now.pen = *pen;
    if (const auto* brush = std::get_if<Ink>(&object)) m_now.brush = *brush;
    if (const auto* font = std::get_if<Font>(&object)) m_now.font = *font;
    if (const auto* region = std::get_if<RegionObject>(&object)) ClipToRegion(*region);
}

const RegionObject* Painter::Region(std::size_t index) const {
    return index < m_objects.size() ? std::get_if<RegionObject>(&m_objects[index]) : nullptr;
}

const Ink* Painter::Brush(std::size_t index) const {
    return index < m_objects.size() ? std::get_if<Ink>(&m_objects[index]) : nullptr;
}

Transform Painter::ToCanvas() const {
    const auto scale = MappingScale(m_now, m_device);
    const Transform mapping{scale.x,
                            0,
                            0,
                            scale.y,
                            m_now.viewportOrigin.x - m_now.windowOrigin.x * scale.x,
                            m_now.viewportOrigin.y - m_now.windowOrigin.y * scale.y};
    return m_now.world.Then(mapping).Then(m_device.toCanvas);
}

std::vector<PointF> Painter::Mapped(const std::vector<PointF>& points) const {
    const auto map = ToCanvas();
    std::vector<PointF> mapped;
    mapped.reserve(points.size());
    for (const auto& point : points) mapped.push_back(map.Apply(point));
    return mapped;
}

Ink Painter::CurrentBrush() const {
    auto ink = m_now.brush;
    ink.opaque = m_now.opaque;
    ink.ground = m_now.ground;
    ink.origin = m_now.brushOrigin;
    return ink;
}

void Painter::SetClip(Clip clip) {
    m_now.clip = std::move(clip);
    m_canvas.SetClip(m_now.clip);
}

void Painter::ClearClip() {
    SetClip(nullptr);
}

void Painter::ChangeClip(const Figures& figures, Combination how, bool winding) {
    auto inside = m_canvas.NewMask(nullptr);
    auto result = m_canvas.NewMask(m_now.clip);
    if (!inside || !result) return;
    std::fill(inside->inside.begin(), inside->inside.end(), std::uint8_t{0});
    const auto width = static_cast<std::size_t>(m_canvas.Width());
    ScanFigures(m_canvas, figures, winding, [&](int y, int left, int right) {
        const auto row = inside->inside.begin() + static_cast<std::ptrdiff_t>(static_cast<std::size_t>(y) * width);
        std::fill(row + left, row + right, std::uint8_t{1});
    });
    for (std::size_t i = 0; i < result->inside.size(); ++i) {
        auto& old = result->inside[i];
        const auto add = inside->inside[i];
        switch (how) {
        case Combination::And: old &= add; break;
        case Combination::Or: old |= add; break;
        case Combination::Xor: old ^= add; break;
        case Combination::Diff: old = old && !add; break;
        case Combination::Copy: old = add; break;
        }
    }
    SetClip(std::move(result));
}

void Painter::OffsetClip(PointF by) {
    if (!m_now.clip) return;
    const auto shift = ToPixel(ToCanvas().ApplyVector(by));
    auto moved = m_canvas.NewMask(m_now.clip);
    if (!moved) return;
    const int width = m_canvas.Width(), height = m_canvas.Height();
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const int fromX = x - shift.x, fromY = y - shift.y;
            const bool there = fromX >= 0 && fromY >= 0 && fromX < width && fromY < height;
            moved->inside[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)] =
                there ? m_now.clip->inside[static_cast<std::size_t>(fromY) * static_cast<std::size_t>(width) +
                                           static_cast<std::size_t>(fromX)]
                      : std::uint8_t{0};
        }
    }
    SetClip(std::move(moved));
}

void Painter::ClipToDevice(const std::vector<Rect>& parts, Combination how) {
    Figures figures;
    for (const auto& part : parts) {
        Figure box;
        for (const auto& corner :
             {PointF{double(part.left), double(part.top)}, PointF{double(part.right), double(part.top)},
              PointF{double(part.right), double(part.bottom)}, PointF{double(part.left), double(part.bottom)}}) {
            box.points.push_back(ToPixel(m_device.toCanvas.Apply(corner)));
        }
        figures.push_back(std::move(box));
    }
    ChangeClip(figures, how, true);
}

void Painter::ClipToRegion(const RegionObject& region) {
    Figures figures;
    for (const auto& part : region.parts) {
        const auto box = BoxFigure({double(part.left), double(part.top)}, {double(part.right), double(part.bottom)});
        figures.insert(figures.end(), box.begin(), box.end());
    }
    ChangeClip(figures, Combination::Copy, true);
}

void Painter::FillRegion(const RegionObject& region, const Ink& ink, Rop rop) {
    for (const auto& part : region.parts) {
        Fill(BoxFigure({double(part.left), double(part.top)}, {double(part.right), double(part.bottom)}), ink, rop,
             true);
    }
}

} // namespace pelorin::metafile
