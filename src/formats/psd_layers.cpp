#include "formats/psd_layers.h"

#include "base/text.h"
#include "formats/packbits.h"
#include "formats/psd_planes.h"
#include "formats/reader_support.h"
#include "pixel/crop.h"

#include <cstdlib>

namespace pelorin {

namespace {

constexpr std::string_view kSignature = "8BIM", kUnicodeName = "luni";
constexpr std::size_t kMostChannels = 30, kMaskFields = 18;
constexpr Argb kOpaqueBlack = 0xFF000000;

// Lengths of a layer's channels, as its record states them.
using Lengths = std::vector<std::uint32_t>;

Rect ReadRect(ByteReader& in) {
    Rect rect;
    rect.top = in.I32BE();
    rect.left = in.I32BE();
    rect.bottom = in.I32BE();
    rect.right = in.I32BE();
    return rect;
}

std::int64_t WidthOf(const Rect& rect) {
    return std::int64_t{rect.right} - rect.left;
}
std::int64_t HeightOf(const Rect& rect) {
    return std::int64_t{rect.bottom} - rect.top;
}

void ReadMask(ByteReader in, CPsdLayer& layer) {
    if (in.Left() < kMaskFields) return;
    layer.m_bHasMask = true;
    layer.m_MaskRect = ReadRect(in);
    layer.m_nMaskColor = in.U8();
    layer.m_nMaskFlags = in.U8();
}

// The name in sixteen-bit characters, as newer files have it in one of the blocks behind the old name.
std::string FindUnicodeName(ByteReader in) {
    while (in.StartsWith(kSignature)) {
        in.Skip(4);
        const bool found = in.StartsWith(kUnicodeName);
        in.Skip(4);
        ByteReader block(in.TakeUpTo(in.U32BE()));
        if (!found) continue;
        std::u16string name;
        for (auto count = block.U32BE(); count > 0 && block.Left() >= 2; --count) name += char16_t{block.U16BE()};
        while (!name.empty() && name.back() == 0) name.pop_back();
        return Utf16ToUtf8(name);
    }
    return {};
}

void ReadExtra(ByteReader in, CPsdLayer& layer) {
    const auto mask = in.U32BE();
    ReadMask(ByteReader(in.TakeUpTo(mask)), layer);
    in.Skip(in.U32BE());
    const auto length = in.U8();
    layer.m_strTitle = DecodeText(AsText(in.TakeUpTo(length)));
    in.Skip(3u - length % 4u);
    if (auto name = FindUnicodeName(in); !name.empty()) layer.m_strTitle = std::move(name);
}

// False for more channels than a layer can have.
bool ReadRecord(ByteReader& in, CPsdLayer& layer, Lengths& lengths) {
    layer.m_Rect = ReadRect(in);
    const std::size_t count = in.U16BE();
    if (count > kMostChannels) return false;
    for (std::size_t i = 0; i < count; ++i) {
        layer.m_arrChannels.push_back({in.I16BE(), PsdCompression::Plain, {}});
        lengths.push_back(in.U32BE());
    }
    layer.m_strSignature = AsText(in.Take(4));
    layer.m_strName = AsText(in.Take(4));
    layer.m_nOpacity = in.U8();
    layer.m_nClipping = in.U8();
    layer.m_nFlags = in.U8();
    in.Skip(1);
    ReadExtra(ByteReader(in.Take(in.U32BE())), layer);
    return true;
}

// Finds the data of the layer's channels. False at a compression that is unknown: nothing behind it can be read.
bool TakeChannels(ByteReader& in, CPsdLayer& layer, const Lengths& lengths) {
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        ByteReader data(in.TakeUpTo(lengths[i]));
        // Layers without pixels may have channels without even that word.
        const int word = data.Left() == 0 ? 0 : data.U16BE();
        if (word > static_cast<int>(PsdCompression::PackBits)) {
            layer.m_arrChannels.resize(i);
            return false;
        }
        layer.m_arrChannels[i].compression = static_cast<PsdCompression>(word);
        layer.m_arrChannels[i].data = data.Rest();
    }
    return true;
}

// Two packed bytes make 128 pixels at most: a layer that claims far more than its data can hold is none.
bool HasPixels(const Rect& rect, ByteSpan data) {
    return IsPictureSize(WidthOf(rect), HeightOf(rect)) &&
           static_cast<std::uint64_t>(WidthOf(rect) * HeightOf(rect)) / 64 <= data.size();
}

bool HasPixels(const CPsdLayer& layer) {
    return std::any_of(layer.m_arrChannels.begin(), layer.m_arrChannels.end(), [&](const PsdChannel& channel) {
        return channel.id != kPsdMask && HasPixels(layer.m_Rect, channel.data);
    });
}

const PsdChannel* MaskChannel(const CPsdLayer& layer) {
    for (const auto& channel : layer.m_arrChannels) {
        if (layer.m_bHasMask && channel.id == kPsdMask && HasPixels(layer.m_MaskRect, channel.data)) return &channel;
    }
    return nullptr;
}

// Missing bytes are 0.
void UnpackChannel(const PsdChannel& channel, const DibRows& rows, int byte) {
    ByteReader in(channel.data);
    if (channel.compression == PsdCompression::PackBits) {
        in.Skip(std::uint64_t{2} * static_cast<unsigned>(rows.Height()));
        PackBitsReader runs(in);
        FillPlane(rows, byte, [&] { return runs.Next(); });
    } else {
        FillPlane(rows, byte, [&] { return in.U8(); });
    }
}

// The part of the rectangle's picture that lies on the canvas, there. A rectangle may be anywhere, so the picture is
// cut before it is placed.
DibBlock OnCanvas(const DibBlock& block, const Rect& rect, Size canvas, Argb fill) {
    const auto part = rect.Intersect({0, 0, canvas.width, canvas.height});
    if (part.Empty()) return PlaceOnCanvas(block, canvas.width, canvas.height, {0, 0, 0, 0}, fill);
    const auto cut = CropDIB(block, part.left - rect.left, part.top - rect.top, part.right - rect.left - 1,
                             part.bottom - rect.top - 1);
    return PlaceOnCanvas(cut, canvas.width, canvas.height, part, fill);
}

DibBlock BlankPicture(const Rect& rect, Argb fill) {
    auto block = CreateDIB(rect.Width(), rect.Height(), 32);
    const DibRows rows(block);
    for (int y = 0; rows && y < rows.Height(); ++y) {
        for (int x = 0; x < rows.Width(); ++x) StoreU32LE(rows.Row(y) + std::ptrdiff_t{4} * x, fill);
    }
    return block;
}

DibBlock MaskPixels(const CPsdLayer& layer, const PsdChannel& channel) {
    auto block = BlankPicture(layer.m_MaskRect, kOpaqueBlack);
    const DibRows rows(block);
    if (!rows) return {};
    UnpackChannel(channel, rows, 0);
    for (int y = 0; y < rows.Height(); ++y) {
        auto* p = rows.Row(y);
        for (int x = 0; x < rows.Width(); ++x, p += 4) p[1] = p[2] = p[0];
    }
    return block;
}

void InvertGrey(DibBlock& block) {
    const DibRows rows(block);
    for (int y = 0; rows && y < rows.Height(); ++y) {
        auto* p = rows.Row(y);
        for (int x = 0; x < rows.Width(); ++x) StoreU32LE(p + std::ptrdiff_t{4} * x, LoadU32LE(p + 4 * x) ^ 0xFFFFFF);
    }
}

} // namespace

bool CPsdLayer::HasChannel(int id) const {
    return std::any_of(m_arrChannels.begin(), m_arrChannels.end(), [id](const auto& c) { return c.id == id; });
}

bool ReadPsdLayers(ByteSpan section, CPsdLayers& layers) {
    layers.clear();
    ByteReader whole(section);
    ByteReader in(whole.TakeUpTo(whole.U32BE()));
    const int count = std::abs(in.AtEnd() ? 0 : int{in.I16BE()});
    std::vector<Lengths> lengths;
    for (int i = 0; i < count && in.Ok(); ++i) {
        if (!ReadRecord(in, layers.emplace_back(), lengths.emplace_back())) return false;
    }
    // Where the records end too early nobody knows where the pixels are.
    std::size_t reached = 0;
    for (bool readable = in.Ok(); readable && reached < layers.size(); ++reached) {
        readable = TakeChannels(in, layers[reached], lengths[reached]);
    }
    layers.resize(reached);
    std::erase_if(layers, [](const auto& layer) { return layer.m_strSignature != kSignature || !HasPixels(layer); });
    return true;
}

DibBlock PsdLayerPixels(const CPsdLayer& layer) {
    auto block = BlankPicture(layer.m_Rect, layer.HasChannel(kPsdAlpha) ? 0 : kOpaqueBlack);
    const DibRows rows(block);
    if (!rows) return {};
    for (const auto& channel : layer.m_arrChannels) {
        if (const int byte = PsdByteOf(channel.id); byte >= 0) UnpackChannel(channel, rows, byte);
    }
    return block;
}

DibBlock PsdLayerOnCanvas(const CPsdLayer& layer, Size canvas, bool applyMask) {
    auto placed = OnCanvas(PsdLayerPixels(layer), layer.m_Rect, canvas, 0);
    if (!applyMask || (layer.m_nMaskFlags & kPsdMaskDisabled) != 0) return placed;
    auto mask = PsdMaskOnCanvas(layer, canvas);
    if (!mask) return placed;
    if ((layer.m_nMaskFlags & kPsdMaskInverted) != 0) InvertGrey(mask);
    return MultiplyAlpha(placed, mask);
}

DibBlock PsdMaskOnCanvas(const CPsdLayer& layer, Size canvas) {
    const auto* channel = MaskChannel(layer);
    if (!channel) return {};
    return OnCanvas(MaskPixels(layer, *channel), layer.m_MaskRect, canvas, kOpaqueBlack);
}

} // namespace pelorin
