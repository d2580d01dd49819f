#include "formats/jpeg2000.h"
#include "formats/jpeg2000_shape.h"
#include "formats/reader_support.h"

#include <openjpeg.h>

#include <memory>

namespace pelorin {

namespace {

using Codec = std::unique_ptr<opj_codec_t, decltype(&opj_destroy_codec)>;
using Stream = std::unique_ptr<opj_stream_t, decltype(&opj_stream_destroy)>;
using Image = std::unique_ptr<opj_image_t, decltype(&opj_image_destroy)>;

constexpr auto kEnd = static_cast<OPJ_SIZE_T>(-1);

OPJ_SIZE_T ReadBytes(void* buffer, OPJ_SIZE_T count, void* user) {
    const auto bytes = static_cast<ByteReader*>(user)->TakeUpTo(count);
    if (bytes.empty()) return kEnd;
    std::copy(bytes.begin(), bytes.end(), static_cast<std::uint8_t*>(buffer));
    return bytes.size();
}

OPJ_OFF_T SkipBytes(OPJ_OFF_T count, void* user) {
    auto& in = *static_cast<ByteReader*>(user);
    if (count < 0) return -1;
    return in.TakeUpTo(static_cast<std::uint64_t>(count)).empty() && count > 0 ? -1 : count;
}

OPJ_BOOL SeekBytes(OPJ_OFF_T pos, void* user) {
    auto& in = *static_cast<ByteReader*>(user);
    if (pos < 0 || static_cast<std::uint64_t>(pos) > in.Size()) return OPJ_FALSE;
    in.Seek(static_cast<std::uint64_t>(pos));
    return OPJ_TRUE;
}

Stream OpenStream(ByteReader& in) {
    Stream stream(opj_stream_default_create(OPJ_TRUE), opj_stream_destroy);
    if (!stream) return stream;
    opj_stream_set_user_data(stream.get(), &in, nullptr);
    opj_stream_set_user_data_length(stream.get(), in.Size());
    opj_stream_set_read_function(stream.get(), ReadBytes);
    opj_stream_set_skip_function(stream.get(), SkipBytes);
    opj_stream_set_seek_function(stream.get(), SeekBytes);
    return stream;
}

Image Decode(ByteSpan file, bool bare, int leaveOut) {
    Image none(nullptr, opj_image_destroy);
    ByteReader in(file);
    const auto stream = OpenStream(in);
    const Codec codec(opj_create_decompress(bare ? OPJ_CODEC_J2K : OPJ_CODEC_JP2), opj_destroy_codec);
    if (!stream || !codec) return none;
    opj_dparameters_t parameters;
    opj_set_default_decoder_parameters(&parameters);
    parameters.cp_reduce = static_cast<OPJ_UINT32>(leaveOut);
    if (!opj_setup_decoder(codec.get(), &parameters)) return none;

    opj_image_t* raw = nullptr;
    const bool header = opj_read_header(stream.get(), codec.get(), &raw);
    Image image(raw, opj_image_destroy);
    if (!header || !image || !opj_decode(codec.get(), stream.get(), image.get())) return none;
    return image;
}

enum class Family { Gray, Rgb, Other };

Family FamilyOf(const opj_image_t& image, bool bare) {
    if (bare) return image.numcomps >= 3 ? Family::Rgb : Family::Gray;
    if (image.color_space == OPJ_CLRSPC_GRAY) return Family::Gray;
    if (image.color_space == OPJ_CLRSPC_SRGB) return Family::Rgb;
    // A file with a colour profile names its family there.
    constexpr std::size_t familyAt = 16;
    if (image.icc_profile_buf && image.icc_profile_len >= familyAt + 4) {
        const auto family = AsText({image.icc_profile_buf + familyAt, 4});
        if (family == "GRAY") return Family::Gray;
        if (family == "RGB ") return Family::Rgb;
    }
    return Family::Other;
}

// Every component lies on the picture point by point.
bool ComponentsFit(const opj_image_t& image) {
    if (image.numcomps == 0 || image.x0 != 0 || image.y0 != 0) return false;
    for (OPJ_UINT32 i = 0; i < image.numcomps; ++i) {
        const auto& c = image.comps[i];
        if (!c.data || c.prec > 8 || c.dx != 1 || c.dy != 1 || c.x0 != 0 || c.y0 != 0) return false;
        if (c.w != image.comps[0].w || c.h != image.comps[0].h) return false;
    }
    return true;
}

// The components in the order of the block's bytes; empty when one is missing.
std::vector<const opj_image_comp_t*> PickComponents(const opj_image_t& image, Family family) {
    std::vector<const opj_image_comp_t*> colors;
    for (OPJ_UINT32 i = 0; i < image.numcomps; ++i) {
        if (image.comps[i].alpha == 0) colors.push_back(&image.comps[i]);
    }
    if (family == Family::Gray && !colors.empty()) return {colors[0]};
    if (family != Family::Rgb || colors.size() < 3) return {};
    std::vector<const opj_image_comp_t*> picked = {colors[2], colors[1], colors[0]};
    if (image.numcomps == 4) {
        for (OPJ_UINT32 i = 0; i < 4; ++i) {
            const auto* c = &image.comps[i];
            if (std::find(picked.begin(), picked.begin() + 3, c) == picked.begin() + 3) picked.push_back(c);
        }
    }
    return picked;
}

// Widening to 16 bits by repeating the sample: its low byte is the sample again at 8 bits, and below.
std::uint8_t SampleByte(OPJ_INT32 sample, OPJ_UINT32 precision) {
    const auto factor = precision >= 16 ? 1u : (1u << (16 - precision)) + 1;
    return static_cast<std::uint8_t>(static_cast<std::uint32_t>(sample) * factor);
}

void FillRows(const DibRows& rows, const std::vector<const opj_image_comp_t*>& picked) {
    const auto width = static_cast<std::size_t>(rows.Width());
    for (int y = 0; y < rows.Height(); ++y) {
        auto* row = rows.PictureRow(y);
        for (std::size_t c = 0; c < picked.size(); ++c) {
            const auto* samples = picked[c]->data + width * static_cast<std::size_t>(y);
            for (std::size_t x = 0; x < width; ++x)
                row[x * picked.size() + c] = SampleByte(samples[x], picked[c]->prec);
        }
    }
}

// Levels to leave out of a preview.
int PreviewLevels(const Jpeg2000Shape& shape) {
    const auto side = std::min(shape.width, shape.height);
    return std::min(side < 100 ? 0 : side < 200 ? 1 : side < 300 ? 2 : 3, shape.levels);
}

bool IsBareCodestream(ByteSpan file) {
    return AsText(file).starts_with("\xFF\x4F\xFF\x51");
}

} // namespace

bool IsJpeg2000(ByteSpan file) {
    using namespace std::string_view_literals;
    return IsBareCodestream(file) || AsText(file).starts_with("\0\0\0\x0CjP  \r\n\x87\n"sv);
}

DibBlock ReadJpeg2000(ByteSpan file, const PictureRequest& request, PictureFacts& facts) {
    if (!IsJpeg2000(file) || request.frame != 0 || request.layer > 0) return {};
    Jpeg2000Shape shape;
    if (!ReadJpeg2000Shape(file, shape)) return {};
    facts.width = static_cast<int>(shape.width);
    facts.height = static_cast<int>(shape.height);

    const ProgressScope progress(request.progress, ReadingText("JPEG 2000"), 1);
    const bool bare = IsBareCodestream(file);
    const auto image = Decode(file, bare, request.preview ? PreviewLevels(shape) : 0);
    if (!image || !ComponentsFit(*image)) return {};
    const auto picked = PickComponents(*image, FamilyOf(*image, bare));
    if (picked.empty()) return {};

    const auto& first = *picked[0];
    auto block = CreateDIB(static_cast<int>(first.w), static_cast<int>(first.h), static_cast<int>(picked.size()) * 8);
    const DibRows rows(block);
    if (!rows) return {};
    if (picked.size() == 1) {
        std::array<Rgb, 256> ramp{};
        for (std::uint32_t i = 0; i < 256; ++i) ramp[i] = i * 0x010101u;
        SetDIBTable(block, ramp);
    }
    FillRows(rows, picked);
    facts.bits = DIBBitCount(block);
    return block;
}

DibBlock ReadJpeg2000(ByteSpan file) {
    PictureFacts facts;
    return ReadJpeg2000(file, {}, facts);
}

} // namespace pelorin
