#include "formats/metafile.h"

#include "formats/metafile/player.h"
#include "formats/reader_support.h"

namespace pelorin {

namespace {

using metafile::Canvas;
using metafile::FileFacts;
using metafile::Painter;

constexpr std::uint32_t kEnhanced = 0x464D4520, kPlaceable = 0x9AC6CDD7;
constexpr std::size_t kEnhancedAt = 40;
constexpr Rgb kMagenta = 0xFF00FF, kGreen = 0x00FF00;
constexpr Size kDefaultBox = {512, 512};
constexpr int kMaxSide = 16384;

struct Kind {
    bool (*readFacts)(ByteSpan file, FileFacts& facts);
    void (*play)(ByteSpan file, const FileFacts& facts, Painter& painter);
};
constexpr Kind kEnhancedKind = {metafile::ReadEmfFacts, metafile::PlayEmf};
constexpr Kind kPlaceableKind = {metafile::ReadPlaceableFacts, metafile::PlayWmf};
constexpr Kind kPlainKind = {metafile::ReadPlainFacts, metafile::PlayWmf};

const Kind& KindOf(ByteSpan file) {
    if (file.size() >= kEnhancedAt + 4 && LoadU32LE(file.data() + kEnhancedAt) == kEnhanced) return kEnhancedKind;
    if (file.size() >= 4 && LoadU32LE(file.data()) == kPlaceable) return kPlaceableKind;
    return kPlainKind;
}

// The height that goes with the whole width, or, when that is too high, the width that goes with the whole height.
Size FitToBox(double width, double height, Size box) {
    Size fitted{box.width, static_cast<int>(std::min(1e6, box.width * height / width))};
    if (fitted.height > box.height) fitted = {static_cast<int>(box.height * width / height), box.height};
    return {std::max(1, fitted.width), std::max(1, fitted.height)};
}

Size PictureSize(const FileFacts& facts, const PictureRequest& request) {
    const bool boxGiven = request.box.width > 0 && request.box.height > 0;
    Size box = boxGiven ? request.box : kDefaultBox;
    box = {std::min(box.width, kMaxSide), std::min(box.height, kMaxSide)};
    const double most = boxGiven ? 0 : 4096;
    const bool small =
        facts.width <= std::max<double>(box.width, most) && facts.height <= std::max<double>(box.height, most);
    if (!request.preview || !small) return FitToBox(facts.width, facts.height, box);
    return {std::max(1, metafile::ToPixel(facts.width)), std::max(1, metafile::ToPixel(facts.height))};
}

Canvas PlayOn(Rgb ground, ByteSpan file, const Kind& kind, const FileFacts& facts, Size size) {
    Canvas canvas(size.width, size.height, ground);
    auto device = facts.device;
    const double scaleX = size.width / facts.width, scaleY = size.height / facts.height;
    device.toCanvas = {scaleX, 0, 0, scaleY, -facts.origin.x * scaleX, -facts.origin.y * scaleY};
    Painter painter(canvas, device);
    kind.play(file, facts, painter);
    return canvas;
}

} // namespace

bool IsMetafile(ByteSpan file) {
    FileFacts facts;
    return KindOf(file).readFacts(file, facts);
}

DibBlock ReadMetafile(ByteSpan file, const PictureRequest& request, PictureFacts& facts) {
    FileFacts known;
    const auto* own = &KindOf(file);
    if (!own->readFacts(file, known)) return {};
    // A Windows metafile that was made from an enhanced one may carry it along, which says more.
    const auto embedded = own == &kEnhancedKind ? Bytes() : metafile::ReadEmbeddedEmf(file);
    if (FileFacts enhanced; !embedded.empty() && metafile::ReadEmfFacts(embedded, enhanced)) {
        own = &kEnhancedKind;
        file = embedded;
        known = enhanced;
    }
    const auto& kind = *own;
    const auto size = PictureSize(known, request);
    if (!IsPictureSize(size.width, size.height)) return {};

    ProgressScope progress(request.progress, ReadingText("WMF"), 2);
    const auto onMagenta = PlayOn(kMagenta, file, kind, known, size);
    progress.Step(1);
    if (progress.StopAsked()) return {};
    const auto onGreen = PlayOn(kGreen, file, kind, known, size);
    progress.Step(2);

    auto block = CreateDIB(size.width, size.height, 32);
    const DibRows rows(block);
    for (int y = 0; y < rows.Height(); ++y) {
        for (int x = 0; x < rows.Width(); ++x) {
            const auto color = onMagenta.At(x, y);
            const bool opaque = color == onGreen.At(x, y);
            StoreU32LE(rows.PictureRow(y) + std::ptrdiff_t{4} * x, opaque ? 0xFF000000u | color : 0x00FFFFFFu);
        }
    }
    facts.width = size.width;
    facts.height = size.height;
    facts.bits = 32;
    return block;
}

} // namespace pelorin
