#include "formats/jpeg2000.h"
#include "formats/save_image.h"
#include "support/dib_builder.h"

#include <gtest/gtest.h>
#include <openjpeg.h>

namespace pelorin {
namespace {

using test::At;

constexpr int kKind = 36;

DibBlock Noise(int width, int height, int bits) {
    auto block = CreateDIB(width, height, bits);
    const DibRows rows(block);
    std::uint32_t seed = 1;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width * bits / 8; ++x) {
            seed = seed * 1664525 + 1013904223;
            // Smooth with a little noise, as pictures are.
            rows.Row(y)[x] = static_cast<std::uint8_t>(x + y * 2 + static_cast<int>(seed >> 29));
        }
    }
    return block;
}

Bytes Encode(const DibBlock& block, PictureSaveOptions options = {}, int expected = 0) {
    Bytes file;
    EXPECT_EQ(EncodePicture(block, kKind, options, file), expected);
    return file;
}

bool SamePixels(const DibBlock& a, const DibBlock& b) {
    if (DIBWidth(a) != DIBWidth(b) || DIBHeight(a) != DIBHeight(b)) return false;
    for (int y = 0; y < DIBHeight(a); ++y) {
        for (int x = 0; x < DIBWidth(a); ++x) {
            if (At(a, x, y) != At(b, x, y)) return false;
        }
    }
    return true;
}

struct Foreign {
    OPJ_COLOR_SPACE space = OPJ_CLRSPC_SRGB;
    std::vector<int> samples; ///< one value a component
    OPJ_UINT32 precision = 8;
    bool isSigned = false;
    OPJ_UINT32 step = 1; ///< of the components behind the first
    OPJ_UINT32 origin = 0;
    bool bare = false;
};

// Flat 8 x 8 pictures as other programs may write them.
Bytes Make(const Foreign& f) {
    opj_image_cmptparm_t parts[8] = {};
    const auto count = static_cast<OPJ_UINT32>(f.samples.size());
    for (OPJ_UINT32 i = 0; i < count; ++i) {
        parts[i].dx = parts[i].dy = i == 0 ? 1 : f.step;
        parts[i].w = parts[i].h = 8 / parts[i].dx;
        parts[i].prec = f.precision;
        parts[i].sgnd = f.isSigned;
    }
    auto* image = opj_image_create(count, parts, f.space);
    image->x0 = image->y0 = f.origin;
    image->x1 = image->y1 = 8 + f.origin;
    for (OPJ_UINT32 i = 0; i < count; ++i) std::fill_n(image->comps[i].data, parts[i].w * parts[i].h, f.samples[i]);
    opj_cparameters_t parameters;
    opj_set_default_encoder_parameters(&parameters);
    parameters.tcp_numlayers = 1;
    parameters.cp_disto_alloc = 1;
    parameters.numresolution = 2;
    parameters.image_offset_x0 = parameters.image_offset_y0 = static_cast<int>(f.origin);
    auto* codec = opj_create_compress(f.bare ? OPJ_CODEC_J2K : OPJ_CODEC_JP2);
    auto* stream = opj_stream_default_create(OPJ_FALSE);
    struct Out {
        Bytes bytes;
        std::size_t pos = 0;
    } out;
    opj_stream_set_user_data(stream, &out, nullptr);
    opj_stream_set_write_function(stream, [](void* data, OPJ_SIZE_T n, void* user) {
        auto& o = *static_cast<Out*>(user);
        o.bytes.resize(std::max(o.bytes.size(), o.pos + n));
        std::memcpy(o.bytes.data() + o.pos, data, n);
        o.pos += n;
        return n;
    });
    opj_stream_set_seek_function(stream, [](OPJ_OFF_T pos, void* user) -> OPJ_BOOL {
        auto& o = *static_cast<Out*>(user);
        o.pos = static_cast<std::size_t>(pos);
        o.bytes.resize(std::max(o.bytes.size(), o.pos));
        return OPJ_TRUE;
    });
    opj_stream_set_skip_function(stream, [](OPJ_OFF_T n, void* user) {
        auto& o = *static_cast<Out*>(user);
        o.pos += static_cast<std::size_t>(n);
        o.bytes.resize(std::max(o.bytes.size(), o.pos));
        return n;
    });
    EXPECT_TRUE(opj_setup_encoder(codec, &parameters, image) && opj_start_compress(codec, image, stream) &&
                opj_encode(codec, stream) && opj_end_compress(codec, stream));
    opj_destroy_codec(codec);
    opj_stream_destroy(stream);
    opj_image_destroy(image);
    return out.bytes;
}

TEST(Jpeg2000, LosslessRoundTripsAreExact) {
    for (const char* extension : {"jp2", "jpc", "J2K"}) {
        for (const int bits : {24, 32}) {
            for (const Size size : {Size{67, 41}, Size{1, 1}, Size{1, 9}}) {
                const auto source = Noise(size.width, size.height, bits);
                PictureSaveOptions options;
                options.extension = extension;
                const auto file = Encode(source, options);
                EXPECT_EQ(file[0], std::string_view(extension) == "jp2" ? 0 : 0xFF);
                const auto back = ReadJpeg2000(file);
                EXPECT_EQ(DIBBitCount(back), bits);
                EXPECT_TRUE(SamePixels(source, back)) << extension << bits << " " << size.width;
            }
        }
    }
}

TEST(Jpeg2000, IndexedBlocks) {
    auto block = CreateDIB(9, 5, 8);
    DibRows(block).PictureRow(2)[3] = 9; // red among the standard colours
    EXPECT_EQ(DIBBitCount(ReadJpeg2000(Encode(block))), 24);
    EXPECT_TRUE(SamePixels(block, ReadJpeg2000(Encode(block))));
    PictureSaveOptions gray;
    gray.jp2Gray = true;
    const auto back = ReadJpeg2000(Encode(block, gray));
    EXPECT_EQ(DIBBitCount(back), 8);
    EXPECT_EQ(At(back, 3, 2), 0xFF090909u) << "the sample is the index, the table a ramp";
    EXPECT_EQ(DIBBitCount(ReadJpeg2000(Encode(CreateDIB(4, 4, 4), gray))), 24);
    EXPECT_TRUE(Encode(CreateDIB(4, 4, 16), {}, 3).empty());
    EXPECT_TRUE(Encode({}, {}, 3).empty());
}

TEST(Jpeg2000, RateBoundsTheSize) {
    const auto source = Noise(128, 128, 24);
    const auto raw = 128 * 128 * 3.0;
    const auto lossless = Encode(source).size();
    for (const double rate : {0.05, 0.1, 0.2}) {
        PictureSaveOptions options;
        options.jp2Rate = rate;
        const auto size = static_cast<double>(Encode(source, options).size());
        EXPECT_LE(size, raw * rate + 200) << rate;
        EXPECT_GE(size, raw * rate / 2) << rate;
        EXPECT_LT(size, static_cast<double>(lossless));
    }
    EXPECT_DOUBLE_EQ(Jpeg2000Rate(11, 9999), (0.5 + 0.03) * 0.6);
    EXPECT_DOUBLE_EQ(Jpeg2000Rate(11, 10000), (0.5 + 0.03) * 0.4);
    EXPECT_DOUBLE_EQ(Jpeg2000Rate(11, 30000), (0.5 + 0.03) * 0.3);
    EXPECT_DOUBLE_EQ(Jpeg2000Rate(0, 70000), 0.03 * 0.2);
}

TEST(Jpeg2000, FamiliesPrecisionAndSampling) {
    struct Case {
        const char* what;
        Foreign file;
        int bits; ///< 0: refused
        Argb color;
    };
    const Case cases[] = {
        {"grey", {OPJ_CLRSPC_GRAY, {200}}, 8, 0xFFC8C8C8},
        {"grey with a second component", {OPJ_CLRSPC_GRAY, {200, 7}}, 8, 0xFFC8C8C8},
        {"colour", {OPJ_CLRSPC_SRGB, {1, 2, 3}}, 24, 0xFF010203},
        {"four components", {OPJ_CLRSPC_SRGB, {1, 2, 3, 4}}, 32, 0x04010203},
        {"five components", {OPJ_CLRSPC_SRGB, {1, 2, 3, 4, 5}}, 24, 0xFF010203},
        {"colour without blue", {OPJ_CLRSPC_SRGB, {1, 2}}, 0, 0},
        {"samples of four bits stay small", {OPJ_CLRSPC_SRGB, {15, 8, 1}, 4}, 24, 0xFF0F0801},
        {"samples of one bit", {OPJ_CLRSPC_GRAY, {1}, 1}, 8, 0xFF010101},
        {"negative samples wrap", {OPJ_CLRSPC_GRAY, {-1}, 8, true}, 8, 0xFFFFFFFF},
        {"twelve bits", {OPJ_CLRSPC_GRAY, {100}, 12}, 0, 0},
        {"luma and chroma", {OPJ_CLRSPC_SYCC, {1, 2, 3}}, 0, 0},
        {"subsampled", {OPJ_CLRSPC_SRGB, {1, 2, 3}, 8, false, 2}, 0, 0},
        {"not at the origin", {OPJ_CLRSPC_SRGB, {1, 2, 3}, 8, false, 1, 4}, 0, 0},
        {"codestream of one", {OPJ_CLRSPC_UNSPECIFIED, {9}, 8, false, 1, 0, true}, 8, 0xFF090909},
        {"codestream of three", {OPJ_CLRSPC_UNSPECIFIED, {1, 2, 3}, 8, false, 1, 0, true}, 24, 0xFF010203},
        {"codestream of four", {OPJ_CLRSPC_UNSPECIFIED, {1, 2, 3, 4}, 8, false, 1, 0, true}, 32, 0x04010203},
    };
    for (const auto& c : cases) {
        const auto block = ReadJpeg2000(Make(c.file));
        EXPECT_EQ(DIBBitCount(block), c.bits) << c.what;
        if (block && c.bits) {
            EXPECT_EQ(At(block, 5, 5), c.color) << c.what;
        }
    }
}

TEST(Jpeg2000, PreviewLeavesLevelsOut) {
    PictureFacts facts;
    const auto file = Encode(Noise(400, 320, 24));
    const auto small = ReadJpeg2000(file, {.preview = true}, facts);
    EXPECT_EQ(DIBWidth(small), 50);
    EXPECT_EQ(DIBHeight(small), 40);
    EXPECT_EQ(facts.width, 400);
    EXPECT_EQ(DIBWidth(ReadJpeg2000(Encode(Noise(99, 320, 24)), {.preview = true}, facts)), 99);
}

TEST(Jpeg2000, HostileFilesAreRefused) {
    const auto file = Encode(Noise(40, 40, 24));
    for (std::size_t size = 0; size < file.size(); size += size < 200 ? 1 : 13)
        (void)ReadJpeg2000(ByteSpan(file).first(size));
    for (std::size_t i = 0; i < std::min<std::size_t>(file.size(), 250); ++i) {
        for (const int value : {0, 1, 0x7F, 0xFF}) {
            auto damaged = file;
            damaged[i] = static_cast<std::uint8_t>(value);
            const auto block = ReadJpeg2000(damaged);
            EXPECT_TRUE(!block || DibView(block)) << i;
        }
    }
    // A million tiles of which there is no byte.
    PictureSaveOptions bare;
    bare.extension = "jpc";
    auto tiles = Encode(Noise(40, 40, 24), bare);
    for (const int at : {8, 12}) StoreU32BE(&tiles[static_cast<std::size_t>(at)], 8000);
    for (const int at : {24, 28}) StoreU32BE(&tiles[static_cast<std::size_t>(at)], 8);
    EXPECT_FALSE(ReadJpeg2000(tiles));
}

} // namespace
} // namespace pelorin
