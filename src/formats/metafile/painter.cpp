#include "formats/metafile/painter.h"

namespace pelorin::metafile {

namespace {

constexpr std::size_t kMaxSaved = 1000, kMaxObjects = 1 << 16, kMaxGrownPalette = 256;

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

bool IsFree(MapMode mode) {
    return mode == MapMode::Isotropic || mode == MapMode::Anisotropic;
}

PointF MappingScale(const State& state, const Device& device) {
    if (const double mm = UnitInMm(state.mapMode); mm > 0) return {mm * device.pixelsPerMmX, -mm * device.pixelsPerMmY};
    if (!IsFree(state.mapMode)) return {1, 1};
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
    // Each state may keep a clip of its own.
    constexpr std::size_t kMemory = std::size_t{1} << 28, kLeastSaved = 16;
    const auto pixels = static_cast<std::size_t>(m_canvas.Width()) * static_cast<std::size_t>(m_canvas.Height());
    if (m_saved.size() < std::clamp(kMemory / pixels, kLeastSaved, kMaxSaved)) m_saved.push_back(m_now);
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

void Painter::SelectPalette(std::size_t index) {
    if (const auto* palette = PaletteAt(index)) m_now.palette = *palette;
}

Palette* Painter::PaletteAt(std::size_t index) {
    return index < m_objects.size() ? std::get_if<Palette>(&m_objects[index]) : nullptr;
}

// What is selected changes along with the object.
void Painter::ReplacePalette(Palette& place, std::vector<Rgb> colors) {
    if (!m_canvas.Spend(colors.size())) return;
    const bool selected = m_now.palette == place;
    place = std::make_shared<const std::vector<Rgb>>(std::move(colors));
    if (selected) m_now.palette = place;
}

void Painter::ResizePalette(std::size_t index, std::size_t count) {
    auto* palette = PaletteAt(index);
    if (!palette || !*palette) return;
    auto colors = **palette;
    colors.resize(std::min(count, std::max(colors.size(), kMaxGrownPalette)));
    ReplacePalette(*palette, std::move(colors));
}

void Painter::ChangePalette(std::size_t index, std::size_t first, const std::vector<Rgb>& entries) {
    auto* palette = PaletteAt(index);
    if (!palette || !*palette) return;
    auto colors = **palette;
    for (std::size_t i = 0; i < entries.size() && first + i < colors.size(); ++i) colors[first + i] = entries[i];
    ReplacePalette(*palette, std::move(colors));
}

void Painter::ChangePalette(std::size_t first, const std::vector<Rgb>& entries) {
    for (std::size_t i = 0; m_now.palette && i < m_objects.size(); ++i) {
        const auto* palette = PaletteAt(i);
        if (palette && *palette == m_now.palette) return ChangePalette(i, first, entries);
    }
}

void Painter::SetMapMode(unsigned mode) {
    if (mode < 1 || mode > 8) return;
    m_now.mapMode = static_cast<MapMode>(mode);
    if (m_now.mapMode == MapMode::Anisotropic) return;
    if (m_now.mapMode == MapMode::Text) {
        m_now.windowExtent = m_now.viewportExtent = {1, 1};
        return;
    }
    // The others begin with the extents of the whole device, upwards; a free mode goes on with them.
    const double unit = m_now.mapMode == MapMode::Isotropic ? UnitInMm(MapMode::LowMetric) : UnitInMm(m_now.mapMode);
    m_now.viewportExtent = {m_device.size.x, -m_device.size.y};
    m_now.windowExtent = {m_device.size.x / m_device.pixelsPerMmX / unit,
                          m_device.size.y / m_device.pixelsPerMmY / unit};
}

void Painter::SetWindowExtent(PointF extent) {
    if (IsFree(m_now.mapMode)) m_now.windowExtent = extent;
}

void Painter::SetViewportExtent(PointF extent) {
    if (IsFree(m_now.mapMode)) m_now.viewportExtent = extent;
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

Ink Painter::Dressed(Ink ink) const {
    ink.opaque = m_now.opaque;
    ink.ground = m_now.ground;
    if (ink.twoColors) ink.color = m_now.textColor;
    ink.origin = m_now.brushOrigin;
    return ink;
}

} // namespace pelorin::metafile
