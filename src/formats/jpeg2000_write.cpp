#include "base/text.h"
#include "core/strings.h"
#include "formats/jpeg2000.h"

#include <openjpeg.h>

#include <bit>
#include <memory>
#include <new>

namespace pelorin {

namespace {

enum Code : int { kDone = 0, kNoImage = 2, kNoBlock = 3, kNotEncoded = 6 };

using Codec = std::unique_ptr<opj_codec_t, decltype(&opj_destroy_codec)>;
using Stream = std::unique_ptr<opj_stream_t, decltype(&opj_stream_destroy)>;
using Image = std::unique_ptr<opj_image_t, decltype(&opj_image_destroy)>;

// The file as it grows; the library goes back to fill in lengths.
struct Target {
    Bytes bytes;
    std::size_t pos = 0;

    // False when memory fails, for the library must not see an exception.
    bool Reach(std::size_t end) {
        try {
            if (end > bytes.size()) bytes.resize(end);
            return true;
        } catch (const std::bad_alloc&) {
            return false;
        }
    }
};

OPJ_SIZE_T WriteBytes(void* buffer, OPJ_SIZE_T count, void* user) {
    auto& target = *static_cast<Target*>(user);
    if (!target.Reach(target.pos + count)) return static_cast<OPJ_SIZE_T>(-1);
    std::memcpy(target.bytes.data() + target.pos, buffer, count);
    target.pos += count;
    return count;
}

OPJ_BOOL SeekTo(OPJ_OFF_T pos, void* user) {
    auto& target = *static_cast<Target*>(user);
    if (pos < 0 || !target.Reach(static_cast<std::size_t>(pos))) return OPJ_FALSE;
    target.pos = static_cast<std::size_t>(pos);
    return OPJ_TRUE;
}

OPJ_OFF_T SkipOver(OPJ_OFF_T count, void* user) {
    return SeekTo(static_cast<OPJ_OFF_T>(static_cast<Target*>(user)->pos) + count, user) ? count : -1;
}

Image MakeImage(const DibView& view) {
    const int count = view.BitCount() / 8;
    opj_image_cmptparm_t parts[4] = {};
    for (auto& part : parts) {
        part.dx = part.dy = 1;
        part.w = static_cast<OPJ_UINT32>(view.Width());
        part.h = static_cast<OPJ_UINT32>(view.Height());
        part.prec = 8;
    }
    Image image(opj_image_create(static_cast<OPJ_UINT32>(count), parts, count == 1 ? OPJ_CLRSPC_GRAY : OPJ_CLRSPC_SRGB),
                opj_image_destroy);
    if (!image) return image;
    image->x1 = parts[0].w;
    image->y1 = parts[0].h;
    if (count == 4) image->comps[3].alpha = 1;
    for (int c = 0; c < count; ++c) {
        // Bytes are blue, green, red, alpha.
        const int place = count >= 3 && c < 3 ? 2 - c : c;
        auto* to = image->comps[c].data;
        for (int y = 0; y < view.Height(); ++y) {
            const auto* from = view.PictureRow(y) + place;
            for (int x = 0; x < view.Width(); ++x, from += count) *to++ = *from;
        }
    }
    return image;
}

opj_cparameters_t Parameters(const DibView& view, double rate) {
    opj_cparameters_t parameters;
    opj_set_default_encoder_parameters(&parameters);
    parameters.tcp_numlayers = 1;
    parameters.cp_disto_alloc = 1;
    parameters.tcp_rates[0] = rate > 0 ? static_cast<float>(1 / rate) : 0;
    parameters.tcp_mct = view.BitCount() >= 24 ? 1 : 0;
    // Each level halves the picture; a side of 1 has none to give.
    const auto side = static_cast<unsigned>(std::min(view.Width(), view.Height()));
    parameters.numresolution = std::min(6, static_cast<int>(std::bit_width(side)));
    return parameters;
}

bool Encode(opj_image_t& image, opj_cparameters_t parameters, bool bare, Target& target) {
    const Codec codec(opj_create_compress(bare ? OPJ_CODEC_J2K : OPJ_CODEC_JP2), opj_destroy_codec);
    const Stream stream(opj_stream_default_create(OPJ_FALSE), opj_stream_destroy);
    if (!codec || !stream || !opj_setup_encoder(codec.get(), &parameters, &image)) return false;
    opj_stream_set_user_data(stream.get(), &target, nullptr);
    opj_stream_set_write_function(stream.get(), WriteBytes);
    opj_stream_set_skip_function(stream.get(), SkipOver);
    opj_stream_set_seek_function(stream.get(), SeekTo);
    return opj_start_compress(codec.get(), &image, stream.get()) && opj_encode(codec.get(), stream.get()) &&
           opj_end_compress(codec.get(), stream.get());
}

bool WantsCodestream(std::string_view extension) {
    return EqualsNoCase(extension, "j2k") || EqualsNoCase(extension, "j2c") || EqualsNoCase(extension, "jpc");
}

} // namespace

int WriteJpeg2000(const DibBlock& block, const PictureSaveOptions& options, Bytes& out) {
    const int bits = DIBBitCount(block);
    if (bits != 1 && bits != 4 && bits != 8 && bits != 24 && bits != 32) return kNoBlock;
    const bool asItIs = bits >= 24 || (bits == 8 && options.jp2Gray);
    const auto converted = asItIs ? DibBlock() : ConvertDIBTo24(block);
    const DibView view(asItIs ? block : converted);
    if (!view) return kNoBlock;

    // The line of the JPEG writer is shown for this format too.
    const ProgressScope progress(options.progress, LoadText(str::kWritingJpeg), 1);
    const auto image = MakeImage(view);
    if (!image) return kNoImage;
    Target target;
    if (!Encode(*image, Parameters(view, options.jp2Rate), WantsCodestream(options.extension), target))
        return kNotEncoded;
    out = std::move(target.bytes);
    return kDone;
}

double Jpeg2000Rate(int compression, std::uint64_t pixelBytes) {
    const double factor = pixelBytes < 10000 ? 0.6 : pixelBytes < 30000 ? 0.4 : pixelBytes < 70000 ? 0.3 : 0.2;
    return (compression / 22.0 + 0.03) * factor;
}

} // namespace pelorin
