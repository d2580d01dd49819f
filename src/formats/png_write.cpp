#include "core/strings.h"
#include "formats/png.h"
#include "formats/png_library.h"

namespace pelorin {

namespace {

class PngWriteSession {
public:
    PngWriteSession()
        : m_png(png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, PngFailed, PngWarned)),
          m_info(m_png ? png_create_info_struct(m_png) : nullptr) {
        if (m_png) png_set_write_fn(m_png, this, Store, [](png_structp) {});
    }
    ~PngWriteSession() { png_destroy_write_struct(&m_png, &m_info); }
    PngWriteSession(const PngWriteSession&) = delete;
    PngWriteSession& operator=(const PngWriteSession&) = delete;

    explicit operator bool() const { return m_info != nullptr; }
    [[nodiscard]] png_structp Png() const { return m_png; }
    [[nodiscard]] png_infop Info() const { return m_info; }
    [[nodiscard]] Bytes Take() { return std::move(m_file); }

private:
    static void Store(png_structp png, png_bytep data, std::size_t count) {
        auto& session = *static_cast<PngWriteSession*>(png_get_io_ptr(png));
        bool stored = true;
        try {
            session.m_file.insert(session.m_file.end(), data, data + count);
        } catch (const std::exception&) {
            stored = false;
        }
        if (!stored) png_error(png, "out of memory");
    }

    Bytes m_file;
    png_structp m_png;
    png_infop m_info;
};

// The palette goes out by hand: the library refuses one with more entries than the depth can use, though readers take
// it.
void WritePalette(png_structp png, const DibView& view) {
    std::array<png_byte, 768> triples;
    for (int i = 0; i < 256; ++i) {
        const auto color = view.Color(i);
        for (int channel = 0; channel < 3; ++channel) {
            triples[static_cast<unsigned>(i * 3 + channel)] = static_cast<png_byte>(color >> (16 - 8 * channel));
        }
    }
    png_set_check_for_invalid_index(png, 0);
    constexpr png_byte name[5] = "PLTE";
    png_write_chunk(png, name, triples.data(), triples.size());
}

void WriteHeader(png_structp png, png_infop info, const DibView& view) {
    const int bits = view.BitCount();
    const int type = bits <= 8 ? PNG_COLOR_TYPE_PALETTE : bits == 24 ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_RGB_ALPHA;
    png_set_user_limits(png, 0x7FFFFFFF, 0x7FFFFFFF);
    png_set_IHDR(png, info, static_cast<png_uint_32>(view.Width()), static_cast<png_uint_32>(view.Height()),
                 bits <= 8 ? bits : 8, type, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (bits <= 8) {
        png_write_info_before_PLTE(png, info);
        WritePalette(png, view);
        return;
    }
    if (bits == 24) {
        png_color_8 significant{};
        significant.red = significant.green = significant.blue = 8;
        png_set_sBIT(png, info, &significant);
    }
    png_write_info(png, info);
    png_set_bgr(png);
}

bool IsPngDepth(int bits) {
    return bits == 1 || bits == 4 || bits == 8 || bits == 24 || bits == 32;
}

void SetEffort(png_structp png, PngEffort effort, int bits) {
    constexpr int kBestLevel = 9, kQuickLevel = 5;
    if (effort == PngEffort::Smallest) {
        png_set_compression_level(png, kBestLevel);
        if (bits > 8) png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_ALL_FILTERS);
    } else if (effort == PngEffort::Small) {
        png_set_compression_level(png, kQuickLevel);
        png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_NONE);
    }
}

} // namespace

int WritePng(const DibBlock& block, const PictureSaveOptions& options, Bytes& out) {
    const DibView view(block);
    PngWriteSession session;
    if (!view || !IsPngDepth(view.BitCount()) || !session) return 1;
    ProgressScope progress(options.progress, LoadText(str::kWritingPng), static_cast<std::uint64_t>(view.Height()));
    auto* const png = session.Png();
    const bool good = PngGuarded(png, [&] {
        SetEffort(png, options.png, view.BitCount());
        WriteHeader(png, session.Info(), view);
        for (int y = 0; y < view.Height(); ++y) {
            png_write_row(png, view.PictureRow(y));
            progress.Step(static_cast<std::uint64_t>(y) + 1);
        }
        png_write_end(png, nullptr);
    });
    if (!good) return 1;
    out = session.Take();
    return 0;
}

} // namespace pelorin
