#include "core/strings.h"
#include "formats/jpeg.h"
#include "formats/jpeg_error.h"
#include "pixel/visit_depth.h"

#include <cstdlib>

namespace pelorin {

namespace {

constexpr int kFailed = 3;

class Encoder {
public:
    Encoder() { m_codec.err = m_errors.Install(); }
    ~Encoder() {
        if (m_created) jpeg_destroy_compress(&m_codec);
        std::free(m_file);
    }
    Encoder(const Encoder&) = delete;
    Encoder& operator=(const Encoder&) = delete;

    [[nodiscard]] bool Start(int width, int height, int quality);
    [[nodiscard]] bool WriteRow(std::uint8_t* row);
    [[nodiscard]] bool Finish();
    [[nodiscard]] ByteSpan File() const { return {m_file, m_size}; }

private:
    JpegErrors m_errors{};
    jpeg_compress_struct m_codec{};
    unsigned char* m_file = nullptr;
    unsigned long m_size = 0;
    bool m_created = false;
};

bool Encoder::Start(int width, int height, int quality) {
    if (setjmp(m_errors.jump)) return false;
    jpeg_create_compress(&m_codec);
    m_created = true;
    jpeg_mem_dest(&m_codec, &m_file, &m_size);
    m_codec.image_width = static_cast<JDIMENSION>(width);
    m_codec.image_height = static_cast<JDIMENSION>(height);
    m_codec.input_components = 3;
    m_codec.in_color_space = JCS_RGB;
    jpeg_set_defaults(&m_codec);
    jpeg_set_quality(&m_codec, quality, TRUE);
    jpeg_start_compress(&m_codec, TRUE);
    return true;
}

bool Encoder::WriteRow(std::uint8_t* row) {
    if (setjmp(m_errors.jump)) return false;
    JSAMPROW rows[1] = {row};
    return jpeg_write_scanlines(&m_codec, rows, 1) == 1;
}

bool Encoder::Finish() {
    if (setjmp(m_errors.jump)) return false;
    jpeg_finish_compress(&m_codec);
    return true;
}

template <class Pixel>
bool WriteRows(Encoder& encoder, const DibView& view, const Pixel& pixel, ProgressScope& progress) {
    Bytes rgb(static_cast<std::size_t>(view.Width()) * 3);
    for (int y = 0; y < view.Height(); ++y) {
        const auto* from = view.PictureRow(y);
        auto* to = rgb.data();
        for (int x = 0; x < view.Width(); ++x, to += 3) {
            const Argb color = pixel(from, x);
            to[0] = static_cast<std::uint8_t>(color >> 16);
            to[1] = static_cast<std::uint8_t>(color >> 8);
            to[2] = static_cast<std::uint8_t>(color);
        }
        if (!encoder.WriteRow(rgb.data())) return false;
        progress.Step(static_cast<std::uint64_t>(y) + 1);
        if (progress.StopAsked()) return false;
    }
    return encoder.Finish();
}

} // namespace

int WriteJpeg(const DibBlock& block, const PictureSaveOptions& options, Bytes& out) {
    const DibView view(block);
    const int bits = view ? view.BitCount() : 0;
    if (bits != 1 && bits != 4 && bits != 8 && bits != 24) return kFailed;
    Encoder encoder;
    if (!encoder.Start(view.Width(), view.Height(), options.jpegQuality)) return kFailed;
    ProgressScope progress(options.progress, LoadText(str::kWritingJpeg), static_cast<std::uint64_t>(view.Height()));
    bool done = false;
    VisitDepth(view, [&](const auto& pixel) { done = WriteRows(encoder, view, pixel, progress); });
    if (!done) return kFailed;
    out.assign(encoder.File().begin(), encoder.File().end());
    return 0;
}

} // namespace pelorin
