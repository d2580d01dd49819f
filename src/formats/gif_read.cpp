#include "formats/gif.h"
#include "formats/reader_support.h"
#include "pixel/surface.h"
#include "pixel/visit_depth.h"

#include <gif_lib.h>

namespace pelorin {

namespace {

constexpr int kTransparencyKind = 0xF9;
// A code of 12 bits stands for at most 4096 pixels.
constexpr std::uint64_t kPixelsOfByte = 4096;

int ReadBytes(GifFileType* gif, GifByteType* to, int count) {
    const auto bytes = static_cast<ByteReader*>(gif->UserData)->TakeUpTo(static_cast<std::uint64_t>(count));
    std::copy(bytes.begin(), bytes.end(), to);
    return static_cast<int>(bytes.size());
}

// The library's handle on bytes in memory.
class Decoder {
public:
    explicit Decoder(ByteSpan file) : m_in(file), m_gif(DGifOpen(&m_in, ReadBytes, nullptr)) {}
    ~Decoder() {
        if (m_gif) DGifCloseFile(m_gif, nullptr);
    }
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    [[nodiscard]] GifFileType* Get() const { return m_gif; }
    [[nodiscard]] std::size_t BytesLeft() const { return m_in.Left(); }

private:
    ByteReader m_in;
    GifFileType* m_gif;
};

// One frame as it stands in the file: `indices` has the top row first.
struct Frame {
    Rect place;
    int disposal = DISPOSAL_UNSPECIFIED, delay = 0, transparent = -1;
    std::vector<Rgb> colors;
    int colorBits = 0;
    Bytes indices;

    [[nodiscard]] const std::uint8_t* Row(int y) const {
        return indices.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(place.Width());
    }
    [[nodiscard]] bool Shows(int index) const { return index != transparent; }
    [[nodiscard]] Rgb Color(std::size_t index) const { return index < colors.size() ? colors[index] : 0; }
};

bool ReadExtension(GifFileType* gif, GraphicsControlBlock& control) {
    int kind = 0;
    GifByteType* block = nullptr;
    if (DGifGetExtension(gif, &kind, &block) == GIF_ERROR) return false;
    if (kind == kTransparencyKind && block && block[0] >= 4) (void)DGifExtensionToGCB(block[0], block + 1, &control);
    while (block) {
        if (DGifGetExtensionNext(gif, &block) == GIF_ERROR) return false;
    }
    return true;
}

bool SkipCodes(GifFileType* gif) {
    int bits = 0;
    GifByteType* block = nullptr;
    if (DGifGetCode(gif, &bits, &block) == GIF_ERROR) return false;
    while (block) {
        if (DGifGetCodeNext(gif, &block) == GIF_ERROR) return false;
    }
    return true;
}

void TakeColors(const GifFileType* gif, Frame& frame) {
    const auto* map = gif->Image.ColorMap ? gif->Image.ColorMap : gif->SColorMap;
    if (!map) {
        frame.colors = GrayRamp(256);
        frame.colorBits = 8;
        return;
    }
    for (int i = 0; i < map->ColorCount; ++i) {
        const auto& color = map->Colors[i];
        frame.colors.push_back(Rgb{color.Red} << 16 | Rgb{color.Green} << 8 | color.Blue);
    }
    frame.colorBits = map->BitsPerPixel;
}

bool ReadIndices(GifFileType* gif, Frame& frame) {
    struct Pass {
        int first, step;
    };
    constexpr Pass kPlain[] = {{0, 1}};
    constexpr Pass kInterlaced[] = {{0, 8}, {4, 8}, {2, 4}, {1, 2}};
    const int width = frame.place.Width(), height = frame.place.Height();
    frame.indices.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (const auto& pass : gif->Image.Interlace ? std::span<const Pass>(kInterlaced) : std::span<const Pass>(kPlain)) {
        for (int y = pass.first; y < height; y += pass.step) {
            auto* row = frame.indices.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width);
            if (DGifGetLine(gif, row, width) == GIF_ERROR) return false;
        }
    }
    return true;
}

// The frames one after the other, of which those behind the wanted one are only counted.
class FrameSource {
public:
    explicit FrameSource(const Decoder& decoder)
        : m_decoder(decoder), m_pixelsAllowed(4 * static_cast<std::uint64_t>(kMaxPixels)) {}

    // Moves in front of the next frame's pixels; false at the end and where the file breaks off.
    bool Next() {
        auto* gif = m_decoder.Get();
        m_control = {DISPOSAL_UNSPECIFIED, false, 0, NO_TRANSPARENT_COLOR};
        GifRecordType record = UNDEFINED_RECORD_TYPE;
        while (DGifGetRecordType(gif, &record) != GIF_ERROR) {
            if (record == IMAGE_DESC_RECORD_TYPE) return DGifGetImageDesc(gif) != GIF_ERROR;
            if (record != EXTENSION_RECORD_TYPE || !ReadExtension(gif, m_control)) return false;
        }
        return false;
    }
    bool Skip() { return SkipCodes(m_decoder.Get()); }
    /// Of the frame that `Next` moved to, in 1/100 s.
    [[nodiscard]] int Delay() const { return m_control.DelayTime; }

    // The frame's pixels; false when they are not all there.
    bool Read(Frame& frame) {
        auto* gif = m_decoder.Get();
        const auto& image = gif->Image;
        frame.place = {image.Left, image.Top, image.Left + image.Width, image.Top + image.Height};
        if (!IsPictureSize(image.Width, image.Height)) return false;
        const auto pixels = static_cast<std::uint64_t>(image.Width) * static_cast<std::uint64_t>(image.Height);
        if (pixels / kPixelsOfByte > m_decoder.BytesLeft() || pixels > m_pixelsAllowed) return false;
        m_pixelsAllowed -= pixels;
        frame.disposal = m_control.DisposalMode;
        frame.delay = m_control.DelayTime;
        frame.transparent = m_control.TransparentColor;
        TakeColors(gif, frame);
        return ReadIndices(gif, frame);
    }

private:
    const Decoder& m_decoder;
    std::uint64_t m_pixelsAllowed;
    GraphicsControlBlock m_control{};
};

// The animation's screen, on which frames are drawn one over the other.
class Screen {
public:
    explicit Screen(Size size) : m_surface(size.width, size.height) {}

    explicit operator bool() const { return static_cast<bool>(m_surface); }
    [[nodiscard]] const Surface& Picture() const { return m_surface; }

    void Draw(const Frame& frame) {
        Dispose();
        m_place = frame.place.Intersect({0, 0, m_surface.Width(), m_surface.Height()});
        m_disposal = frame.disposal;
        if (m_disposal == DISPOSE_PREVIOUS) m_before = Copy(m_place);
        for (int y = m_place.top; y < m_place.bottom; ++y) {
            const auto* from = frame.Row(y - frame.place.top);
            auto* to = m_surface.PictureRow(y);
            for (int x = m_place.left; x < m_place.right; ++x) {
                const int index = from[x - frame.place.left];
                if (frame.Shows(index)) {
                    StoreU32LE(to + std::ptrdiff_t{4} * x, 0xFF000000u | frame.Color(static_cast<std::size_t>(index)));
                }
            }
        }
    }

private:
    void Dispose() {
        // A frame beside the screen leaves nothing behind.
        if ((m_disposal != DISPOSE_BACKGROUND && m_disposal != DISPOSE_PREVIOUS) || m_place.Empty()) return;
        const auto bytes = static_cast<std::size_t>(m_place.Width()) * 4;
        for (int y = m_place.top; y < m_place.bottom; ++y) {
            auto* row = m_surface.PictureRow(y) + std::ptrdiff_t{4} * m_place.left;
            if (m_disposal == DISPOSE_BACKGROUND) {
                std::memset(row, 0, bytes);
            } else {
                std::memcpy(row, m_before.data() + static_cast<std::size_t>(y - m_place.top) * bytes, bytes);
            }
        }
    }
    [[nodiscard]] Bytes Copy(const Rect& place) {
        Bytes copy;
        if (place.Empty()) return copy;
        for (int y = place.top; y < place.bottom; ++y) {
            const auto* row = m_surface.PictureRow(y) + std::ptrdiff_t{4} * place.left;
            copy.insert(copy.end(), row, row + std::ptrdiff_t{4} * place.Width());
        }
        return copy;
    }

    Surface m_surface;
    Rect m_place;
    int m_disposal = DISPOSAL_UNSPECIFIED;
    Bytes m_before;
};

// The index for what the frame leaves free of the screen; -1 when all 256 are taken.
int FreeIndex(const Frame& frame) {
    if (frame.transparent >= 0) return frame.transparent;
    std::array<bool, 256> used{};
    for (const auto index : frame.indices) used[index] = true;
    for (std::size_t i = std::min<std::size_t>(frame.colors.size(), 255); i < 256; ++i) {
        if (!used[i]) return static_cast<int>(i);
    }
    const auto unused = std::find(used.begin(), used.end(), false);
    return unused == used.end() ? -1 : static_cast<int>(unused - used.begin());
}

// The first frame at 8 bits; empty when the screen cannot be told in 256 indices.
DibBlock IndexedPicture(const Frame& frame, Size screen, PictureFacts& facts) {
    const bool covers = frame.place.left == 0 && frame.place.top == 0 && frame.place.right >= screen.width &&
                        frame.place.bottom >= screen.height;
    const int free = covers ? frame.transparent : FreeIndex(frame);
    if (!covers && free < 0) return {};
    auto block = CreateDIB(screen.width, screen.height, 8);
    const DibRows rows(block);
    if (!rows) return {};
    if (!covers) std::memset(rows.Row(0), free, rows.Stride() * static_cast<std::size_t>(screen.height));
    const auto place = frame.place.Intersect({0, 0, screen.width, screen.height});
    for (int y = place.top; y < place.bottom && !place.Empty(); ++y) {
        std::memcpy(rows.PictureRow(y) + place.left, frame.Row(y - frame.place.top),
                    static_cast<std::size_t>(place.Width()));
    }
    std::vector<Rgb> table = frame.colors;
    table.resize(256);
    SetDIBTable(block, table);
    facts.transparentIndex = free;
    facts.paletteBits = frame.colorBits;
    while (free >= 1 << facts.paletteBits) ++facts.paletteBits;
    return block;
}

// A screen without a size, or one that its first frame does not fit on, is as large as that frame needs.
Size ScreenSize(const GifFileType* gif) {
    const auto& image = gif->Image;
    return {std::max(gif->SWidth, image.Left + image.Width), std::max(gif->SHeight, image.Top + image.Height)};
}

} // namespace

bool IsGif(ByteSpan file) {
    const ByteReader in(file);
    return in.StartsWith("GIF87a") || in.StartsWith("GIF89a");
}

DibBlock ReadGif(ByteSpan file, const PictureRequest& request, PictureFacts& facts) {
    const Decoder decoder(file);
    if (!decoder.Get() || request.frame < 0) return {};
    ProgressScope progress(request.progress, ReadingText("GIF"), static_cast<std::uint64_t>(request.frame) + 1);
    FrameSource source(decoder);
    DibBlock result;
    Size size;
    Screen screen({});
    int count = 0;
    for (; source.Next(); ++count, facts.delaysMs.push_back(source.Delay() * 10)) {
        if (count > request.frame) {
            if (!source.Skip()) break;
            continue;
        }
        if (count == 0) size = ScreenSize(decoder.Get());
        Frame frame;
        if (!IsPictureSize(size.width, size.height) || !source.Read(frame) || progress.StopAsked()) return {};
        if (request.frame == 0) result = IndexedPicture(frame, size, facts);
        if (!result) {
            if (!screen) screen = Screen(size);
            screen.Draw(frame);
        }
        if (count == request.frame) facts.delay = frame.delay;
        progress.Step(static_cast<std::uint64_t>(count) + 1);
    }
    if (count <= request.frame) return {};
    facts.frames = count;
    if (count == 1) facts.delaysMs.clear();
    facts.width = size.width;
    facts.height = size.height;
    facts.bits = 8;
    return result ? std::move(result) : DIBFromSurface(screen.Picture());
}

} // namespace pelorin
