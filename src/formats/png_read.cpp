#include "formats/png.h"
#include "formats/png_library.h"
#include "formats/reader_support.h"

#include <algorithm>

namespace pelorin {

namespace {

// The steepest that deflate can pack: a file cannot hold more row bytes than this many times its size.
constexpr std::uint64_t kMaxDeflateRatio = 1032;
constexpr double kScreenGamma = 2.2, kUnknownFileGamma = 0.45;

// A read structure and its info; both are released with the object.
class PngReadSession {
public:
    explicit PngReadSession(ByteSpan file)
        : m_file(file),
          m_png(png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, PngFailed, PngWarned)),
          m_info(m_png ? png_create_info_struct(m_png) : nullptr) {
        if (m_png) png_set_read_fn(m_png, this, Fetch);
    }
    ~PngReadSession() { png_destroy_read_struct(&m_png, &m_info, nullptr); }
    PngReadSession(const PngReadSession&) = delete;
    PngReadSession& operator=(const PngReadSession&) = delete;

    explicit operator bool() const { return m_info != nullptr; }
    [[nodiscard]] png_structp Png() const { return m_png; }
    [[nodiscard]] png_infop Info() const { return m_info; }

    // Set by ReadHeader.
    int width = 0, height = 0, passes = 1;
    int pixelBits = 0; ///< of a pixel as the rows come
    bool isGray = false;

private:
    static void Fetch(png_structp png, png_bytep out, std::size_t count) {
        auto& session = *static_cast<PngReadSession*>(png_get_io_ptr(png));
        if (count > session.m_file.size()) png_error(png, "the file ends too early");
        std::memcpy(out, session.m_file.data(), count);
        session.m_file = session.m_file.subspan(count);
    }

    ByteSpan m_file;
    png_structp m_png;
    png_infop m_info;
};

void AskForTransformations(png_structp png, png_infop info) {
    const int type = png_get_color_type(png, info), depth = png_get_bit_depth(png, info);
    const bool transparent = png_get_valid(png, info, PNG_INFO_tRNS) != 0;
    png_set_strip_16(png);
    if (transparent || (type == PNG_COLOR_TYPE_GRAY && depth == 2)) png_set_expand(png);
    double fileGamma = 0;
    if (png_get_gAMA(png, info, &fileGamma) == 0) fileGamma = kUnknownFileGamma;
    png_set_gamma(png, kScreenGamma, fileGamma);
    if (depth == 2) png_set_packing(png);
    if ((type & PNG_COLOR_MASK_COLOR) != 0) png_set_bgr(png);
    if (transparent) png_set_tRNS_to_alpha(png);
    // Gray with alpha has no block of its own.
    if (type == PNG_COLOR_TYPE_GRAY_ALPHA || (type == PNG_COLOR_TYPE_GRAY && transparent)) png_set_gray_to_rgb(png);
}

bool ReadHeader(PngReadSession& session, std::size_t fileSize) {
    auto* const png = session.Png();
    auto* const info = session.Info();
    return PngGuarded(png, [&] {
        png_set_user_limits(png, 0x7FFFFFFF, 0x7FFFFFFF);
        png_read_info(png, info);
        const auto width = png_get_image_width(png, info), height = png_get_image_height(png, info);
        const auto fileBits = static_cast<unsigned>(png_get_bit_depth(png, info) * png_get_channels(png, info));
        const auto pixels = std::uint64_t{width} * height;
        if (pixels > static_cast<std::uint64_t>(kMaxPixels)) png_error(png, "the picture is too large");
        if (pixels * fileBits / 8 / kMaxDeflateRatio > fileSize) {
            png_error(png, "the file is too small for its picture");
        }
        session.width = static_cast<int>(width);
        session.height = static_cast<int>(height);
        AskForTransformations(png, info);
        session.passes = png_set_interlace_handling(png);
        png_read_update_info(png, info);
        session.pixelBits = png_get_bit_depth(png, info) * png_get_channels(png, info);
        session.isGray = (png_get_color_type(png, info) & PNG_COLOR_MASK_COLOR) == 0;
    });
}

void FillTable(const PngReadSession& session, DibBlock& block) {
    if (session.pixelBits > 8) return;
    std::array<Rgb, 256> table{};
    const int count = 1 << session.pixelBits;
    png_colorp palette = nullptr;
    int entries = 0;
    if (session.isGray || session.pixelBits == 1) {
        for (int i = 0; i < count; ++i)
            table[static_cast<unsigned>(i)] = static_cast<Rgb>(i * 255 / (count - 1)) * 0x010101u;
    } else if (png_get_PLTE(session.Png(), session.Info(), &palette, &entries) != 0) {
        for (int i = 0; i < std::min(entries, count); ++i) {
            table[static_cast<unsigned>(i)] = Rgb{palette[i].red} << 16 | Rgb{palette[i].green} << 8 | palette[i].blue;
        }
    }
    SetDIBTable(block, std::span(table).first(static_cast<std::size_t>(count)));
}

// The rows of a fresh block are 0, so that the passes of an interlaced picture add up.
bool ReadRows(PngReadSession& session, const DibRows& rows, ProgressScope& progress) {
    auto* const png = session.Png();
    bool stopped = false;
    const bool good = PngGuarded(png, [&] {
        for (int pass = 0; pass < session.passes && !stopped; ++pass) {
            for (int y = 0; y < session.height && !stopped; ++y) {
                png_read_row(png, rows.PictureRow(y), nullptr);
                progress.Step(static_cast<std::uint64_t>(pass) * static_cast<unsigned>(session.height) +
                              static_cast<unsigned>(y) + 1);
                stopped = progress.StopAsked();
            }
        }
    });
    return good && !stopped;
}

} // namespace

bool IsPng(ByteSpan file) {
    return ByteReader(file).StartsWith("\x89PNG\r\n\x1A\n");
}

DibBlock ReadPng(ByteSpan file, const PictureRequest& request, PictureFacts&) {
    PngReadSession session(file);
    if (!session || request.frame != 0 || request.layer > 0 || !ReadHeader(session, file.size())) return {};
    auto block = CreateDIB(session.width, session.height, session.pixelBits);
    const DibRows rows(block);
    if (!rows || rows.BitCount() != session.pixelBits) return {};
    FillTable(session, block);
    ProgressScope progress(request.progress, ReadingText("PNG"),
                           static_cast<std::uint64_t>(session.passes) * static_cast<unsigned>(session.height));
    if (!ReadRows(session, rows, progress)) return {};
    return block;
}

DibBlock ReadPng(ByteSpan file) {
    PictureFacts facts;
    return ReadPng(file, {}, facts);
}

} // namespace pelorin
