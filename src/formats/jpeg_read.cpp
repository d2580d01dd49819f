#include "core/strings.h"
#include "formats/jpeg.h"
#include "formats/jpeg_colors.h"
#include "formats/jpeg_eighth.h"
#include "formats/jpeg_error.h"

namespace pelorin {

namespace {

// A progressive file may go over the picture as often as it likes; a scan costs a few bytes of file and the whole
// picture in work.
constexpr int kMaxScans = 100;
// A block of 64 pixels takes a bit at the very least, and more than a sixteenth of a picture has to be there: the rest
// would be filled with grey.
constexpr std::uint64_t kMostPixelsPerByte = std::uint64_t{64} * 8 * 16;

/// One decompression; the members in the order of their use. Each returns false when the library failed.
class Decoder {
public:
    Decoder() { m_codec.err = m_errors.Install(); }
    ~Decoder() {
        if (m_created) jpeg_destroy_decompress(&m_codec);
    }
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    [[nodiscard]] bool ReadHeader(ByteSpan file);
    [[nodiscard]] bool Inks() const { return m_codec.num_components == 4; }
    [[nodiscard]] bool InvertedInks() const { return m_codec.saw_Adobe_marker; }
    [[nodiscard]] int Width() const { return static_cast<int>(m_codec.image_width); }
    [[nodiscard]] int Height() const { return static_cast<int>(m_codec.image_height); }
    [[nodiscard]] Size OutputSize() const {
        return {static_cast<int>(m_codec.output_width), static_cast<int>(m_codec.output_height)};
    }

    /// The short way to an eighth of the size; empty when there is only the library's.
    [[nodiscard]] DibBlock ReadEighth(ByteSpan file) const { return ReadJpegEighth(file, m_codec); }
    [[nodiscard]] bool Start(J_COLOR_SPACE space, unsigned scale);
    [[nodiscard]] bool StartIndexed(const Rgb* palette);
    /// Entry `i` of the colour map in use.
    [[nodiscard]] Rgb MapColor(int i) const;
    [[nodiscard]] int MapCount() const { return m_codec.actual_number_of_colors; }
    [[nodiscard]] bool ReadRow(std::uint8_t* row);

private:
    static void CountScans(j_common_ptr codec) {
        if (reinterpret_cast<j_decompress_ptr>(codec)->input_scan_number > kMaxScans) JpegErrors::Leave(codec);
    }

    JpegErrors m_errors{};
    jpeg_progress_mgr m_monitor{};
    jpeg_decompress_struct m_codec{};
    bool m_created = false;
};

bool Decoder::ReadHeader(ByteSpan file) {
    if (setjmp(m_errors.jump)) return false;
    jpeg_create_decompress(&m_codec);
    m_created = true;
    m_monitor.progress_monitor = CountScans;
    m_codec.progress = &m_monitor;
    jpeg_mem_src(&m_codec, file.data(), static_cast<unsigned long>(file.size()));
    if (jpeg_read_header(&m_codec, TRUE) != JPEG_HEADER_OK) return false;
    const auto pixels = std::int64_t{m_codec.image_width} * m_codec.image_height;
    // Arithmetic coding has next to no price for a picture of one colour.
    return pixels <= kMaxPixels &&
           (m_codec.arith_code || static_cast<std::uint64_t>(pixels) / kMostPixelsPerByte <= file.size());
}

bool Decoder::Start(J_COLOR_SPACE space, unsigned scale) {
    if (setjmp(m_errors.jump)) return false;
    m_codec.out_color_space = space;
    m_codec.scale_num = 1;
    m_codec.scale_denom = scale;
    return jpeg_start_decompress(&m_codec);
}

bool Decoder::StartIndexed(const Rgb* palette) {
    if (setjmp(m_errors.jump)) return false;
    // The library takes a map only for three components.
    const bool grey = m_codec.num_components == 1 && !palette;
    m_codec.out_color_space = grey ? JCS_GRAYSCALE : JCS_RGB;
    m_codec.quantize_colors = TRUE;
    m_codec.desired_number_of_colors = 256;
    m_codec.dither_mode = JDITHER_FS;
    m_codec.two_pass_quantize = TRUE;
    if (palette) {
        auto* pool = reinterpret_cast<j_common_ptr>(&m_codec);
        m_codec.colormap = m_codec.mem->alloc_sarray(pool, JPOOL_IMAGE, 256, 3);
        for (int i = 0; i < 256; ++i) {
            for (int c = 0; c < 3; ++c) m_codec.colormap[c][i] = static_cast<JSAMPLE>(palette[i] >> (16 - 8 * c));
        }
        m_codec.actual_number_of_colors = 256;
    }
    return jpeg_start_decompress(&m_codec);
}

Rgb Decoder::MapColor(int i) const {
    const auto* const* map = m_codec.colormap;
    if (m_codec.out_color_components == 1) return map[0][i] * 0x010101u;
    return Rgb{map[0][i]} << 16 | Rgb{map[1][i]} << 8 | map[2][i];
}

bool Decoder::ReadRow(std::uint8_t* row) {
    if (setjmp(m_errors.jump)) return false;
    JSAMPROW rows[1] = {row};
    return jpeg_read_scanlines(&m_codec, rows, 1) == 1;
}

unsigned PreviewScale(int width, int height) {
    const int side = std::min(width, height);
    return side < 100 ? 1 : side < 200 ? 2 : side < 300 ? 4 : 8;
}

bool ReadRows(Decoder& decoder, const DibRows& rows, ProgressScope& progress) {
    Bytes inks(decoder.Inks() ? static_cast<std::size_t>(rows.Width()) * 4 : 0);
    for (int y = 0; y < rows.Height(); ++y) {
        auto* row = rows.PictureRow(y);
        if (!decoder.ReadRow(decoder.Inks() ? inks.data() : row)) return false;
        if (decoder.Inks()) PutJpegInks(inks.data(), row, rows.Width(), decoder.InvertedInks());
        progress.Step(static_cast<std::uint64_t>(y) + 1);
        if (progress.StopAsked()) return false;
    }
    return true;
}

} // namespace

bool IsJpeg(ByteSpan file) {
    return AsText(file).starts_with("\xFF\xD8\xFF");
}

DibBlock ReadJpeg(ByteSpan file, const PictureRequest& request, PictureFacts& facts) {
    Decoder decoder;
    if (!IsJpeg(file) || request.frame != 0 || request.layer > 0 || !decoder.ReadHeader(file)) return {};
    facts.width = decoder.Width();
    facts.height = decoder.Height();
    facts.bits = 24;
    const unsigned scale = request.preview ? PreviewScale(facts.width, facts.height) : 1;
    if (scale == 8) {
        if (auto block = decoder.ReadEighth(file)) return block;
    }
    if (!decoder.Start(decoder.Inks() ? JCS_CMYK : JCS_EXT_BGR, scale)) return {};

    const auto size = decoder.OutputSize();
    // A preview is made beside other work: it shows no bar.
    ProgressScope progress(request.preview ? nullptr : request.progress, LoadText(str::kReadingJpeg),
                           static_cast<std::uint64_t>(size.height));
    auto block = CreateDIB(size.width, size.height, 24);
    const DibRows rows(block);
    if (!rows || !ReadRows(decoder, rows, progress)) return {};
    return block;
}

DibBlock ReadJpegIndexed(ByteSpan file, const CPalette* palette, Progress* watcher) {
    Decoder decoder;
    if (!IsJpeg(file) || !decoder.ReadHeader(file) || decoder.Inks()) return {};
    std::array<Rgb, 256> colors{};
    if (palette)
        std::copy_n(palette->colors.begin(), std::min<std::size_t>(palette->colors.size(), 256), colors.begin());
    if (!decoder.StartIndexed(palette ? colors.data() : nullptr)) return {};

    ProgressScope progress(watcher, LoadText(str::kReadingJpeg), static_cast<std::uint64_t>(decoder.Height()));
    auto block = CreateDIB(decoder.Width(), decoder.Height(), 8);
    const DibRows rows(block);
    if (!rows || !ReadRows(decoder, rows, progress)) return {};
    for (int i = 0; i < 256; ++i)
        colors[static_cast<std::size_t>(i)] = i < decoder.MapCount() ? decoder.MapColor(i) : 0;
    SetDIBTable(block, colors);
    return block;
}

} // namespace pelorin
