#include "formats/jpeg.h"
#include "formats/save_image.h"
#include "support/dib_builder.h"

#include <gtest/gtest.h>
#include <jpeglib.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace pelorin {
namespace {

using test::At;

// Bands of colour, wide enough that the codec leaves their middles alone.
DibBlock Bands(int width, int height) {
    auto block = CreateDIB(width, height, 24);
    const DibRows rows(block);
    constexpr std::array<Rgb, 4> colors = {0xC02020, 0x20C020, 0x2020C0, 0x808080};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const auto c = colors[static_cast<std::size_t>(y * 4 / height)];
            auto* p = rows.PictureRow(y) + std::ptrdiff_t{3} * x;
            for (int i = 0; i < 3; ++i) p[i] = static_cast<std::uint8_t>(c >> (8 * i));
        }
    }
    return block;
}

Bytes Encode(const DibBlock& block, int quality = 95) {
    Bytes file;
    EXPECT_EQ(EncodePicture(block, 10, {.jpegQuality = quality}, file), 0);
    return file;
}

int Distance(Argb a, Argb b) {
    int sum = 0;
    for (const int shift : {0, 8, 16})
        sum += std::abs(static_cast<int>(a >> shift & 255) - static_cast<int>(b >> shift & 255));
    return sum;
}

DibBlock Read(ByteSpan file, bool preview, PictureFacts& facts) {
    return ReadJpeg(file, {.preview = preview}, facts);
}

// A file with components as they are given, as other programs write them.
Bytes Foreign(J_COLOR_SPACE space, std::array<std::uint8_t, 4> pixel, bool adobe) {
    jpeg_compress_struct codec;
    jpeg_error_mgr errors;
    codec.err = jpeg_std_error(&errors);
    jpeg_create_compress(&codec);
    unsigned char* data = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&codec, &data, &size);
    codec.image_width = codec.image_height = 16;
    codec.input_components = space == JCS_GRAYSCALE ? 1 : 4;
    codec.in_color_space = space;
    jpeg_set_defaults(&codec);
    jpeg_set_colorspace(&codec, space);
    jpeg_set_quality(&codec, 100, TRUE);
    codec.write_Adobe_marker = adobe;
    jpeg_start_compress(&codec, TRUE);
    Bytes row;
    for (int x = 0; x < 16; ++x) row.insert(row.end(), pixel.begin(), pixel.begin() + codec.input_components);
    JSAMPROW rows[1] = {row.data()};
    for (int y = 0; y < 16; ++y) jpeg_write_scanlines(&codec, rows, 1);
    jpeg_finish_compress(&codec);
    jpeg_destroy_compress(&codec);
    Bytes file(data, data + size);
    std::free(data);
    return file;
}

TEST(Jpeg, WrittenPicturesReadBack) {
    const auto source = Bands(61, 64);
    PictureFacts facts;
    const auto back = Read(Encode(source), false, facts);
    ASSERT_EQ(DIBBitCount(back), 24);
    EXPECT_EQ(DIBWidth(back), 61);
    for (const int y : {4, 24, 40, 60}) EXPECT_LT(Distance(At(source, 30, y), At(back, 30, y)), 16) << y;
    EXPECT_LT(Encode(source, 10).size(), Encode(source, 100).size());
}

TEST(Jpeg, DepthsThatAreWritten) {
    Bytes file;
    auto mono = CreateDIB(16, 16, 1);
    SetDIBTable(mono, std::array<Rgb, 2>{0xFF0000, 0x0000FF});
    PictureFacts facts;
    EXPECT_LT(Distance(At(Read(Encode(mono), false, facts), 8, 8), 0xFFFF0000), 10);
    EXPECT_EQ(EncodePicture(CreateDIB(4, 4, 32), 10, {}, file), 3);
    EXPECT_EQ(EncodePicture({}, 10, {}, file), 3);
}

TEST(Jpeg, PreviewIsDecodedSmaller) {
    struct Case {
        int width, height, smallWidth, smallHeight;
    };
    // The smaller side decides; the library rounds up.
    for (const auto& c : {Case{99, 500, 99, 500}, {199, 400, 100, 200}, {500, 299, 125, 75}, {301, 300, 38, 38}}) {
        PictureFacts facts;
        const auto block = Read(Encode(Bands(c.width, c.height)), true, facts);
        EXPECT_EQ(DIBWidth(block), c.smallWidth) << c.width;
        EXPECT_EQ(DIBHeight(block), c.smallHeight) << c.width;
        EXPECT_EQ(facts.width, c.width);
        EXPECT_EQ(facts.height, c.height);
        EXPECT_EQ(facts.bits, 24);
    }
}

TEST(Jpeg, ComponentsOfOtherPrograms) {
    PictureFacts facts;
    EXPECT_EQ(At(Read(Foreign(JCS_GRAYSCALE, {77}, false), false, facts), 3, 3), 0xFF4D4D4Du);
    // Inks as Adobe stores them: inverted, so they are light already.
    EXPECT_LT(Distance(At(Read(Foreign(JCS_CMYK, {255, 128, 0, 255}, true), false, facts), 3, 3), 0xFFFF8000), 6);
    EXPECT_LT(Distance(At(Read(Foreign(JCS_CMYK, {0, 127, 255, 0}, false), false, facts), 3, 3), 0xFFFF8000), 6);
}

TEST(Jpeg, EightBitPath) {
    const auto file = Encode(Bands(64, 64));
    const auto own = ReadJpegIndexed(file, nullptr);
    ASSERT_EQ(DIBBitCount(own), 8);
    EXPECT_LT(Distance(At(own, 30, 24), 0xFF20C020), 30);

    CPalette palette{{0x000000, 0xFFFFFF}};
    const auto mono = ReadJpegIndexed(file, &palette);
    const DibView view(mono);
    EXPECT_EQ(view.Color(1), 0xFFFFFFu);
    int white = 0;
    for (int x = 0; x < 64; ++x) white += view.PictureRow(56)[x] == 1;
    EXPECT_NEAR(white, 32, 6) << "half grey is half white";

    const auto grey = ReadJpegIndexed(Foreign(JCS_GRAYSCALE, {77}, false), nullptr);
    EXPECT_LT(Distance(At(grey, 3, 3), 0xFF4D4D4D), 10);
    EXPECT_EQ(At(ReadJpegIndexed(Foreign(JCS_GRAYSCALE, {0}, false), &palette), 3, 3), 0xFF000000u);
    EXPECT_FALSE(ReadJpegIndexed(Foreign(JCS_CMYK, {0, 0, 0, 0}, true), nullptr));
}

TEST(Jpeg, DamagedFilesNeverCrash) {
    const auto file = Encode(Bands(40, 40), 50);
    PictureFacts facts;
    for (std::size_t size = 0; size < file.size(); ++size) {
        const auto block = Read(ByteSpan(file).first(size), false, facts);
        EXPECT_TRUE(!block || DIBWidth(block) == 40) << size;
    }
    for (std::size_t i = 2; i < file.size(); ++i) {
        auto damaged = file;
        damaged[i] ^= 0x55;
        const auto block = Read(damaged, false, facts);
        EXPECT_TRUE(!block || DibView(block));
    }
}

// What the library makes of a file at an eighth.
DibBlock LibraryEighth(const Bytes& file) {
    jpeg_decompress_struct codec;
    jpeg_error_mgr errors;
    codec.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&codec);
    jpeg_mem_src(&codec, file.data(), file.size());
    jpeg_read_header(&codec, TRUE);
    codec.scale_num = 1;
    codec.scale_denom = 8;
    codec.out_color_space = JCS_EXT_BGR;
    jpeg_start_decompress(&codec);
    auto block = CreateDIB(static_cast<int>(codec.output_width), static_cast<int>(codec.output_height), 24);
    const DibRows rows(block);
    for (int y = 0; y < rows.Height(); ++y) {
        JSAMPROW row[1] = {rows.PictureRow(y)};
        jpeg_read_scanlines(&codec, row, 1);
    }
    jpeg_destroy_decompress(&codec);
    return block;
}

// A grainy picture as another program may write it.
struct Grain {
    int width, height, across = 1, down = 1, quality = 75;
    bool grey = false, optimal = false, progressive = false;
    unsigned restart = 0;
};

Bytes MakeGrain(const Grain& g) {
    jpeg_compress_struct codec;
    jpeg_error_mgr errors;
    codec.err = jpeg_std_error(&errors);
    jpeg_create_compress(&codec);
    unsigned char* data = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&codec, &data, &size);
    codec.image_width = static_cast<JDIMENSION>(g.width);
    codec.image_height = static_cast<JDIMENSION>(g.height);
    codec.input_components = g.grey ? 1 : 3;
    codec.in_color_space = g.grey ? JCS_GRAYSCALE : JCS_RGB;
    jpeg_set_defaults(&codec);
    jpeg_set_quality(&codec, g.quality, TRUE);
    codec.comp_info[0].h_samp_factor = g.across;
    codec.comp_info[0].v_samp_factor = g.down;
    codec.optimize_coding = g.optimal;
    codec.restart_interval = g.restart;
    if (g.progressive) jpeg_simple_progression(&codec);
    jpeg_start_compress(&codec, TRUE);
    std::uint32_t seed = static_cast<std::uint32_t>(g.width * g.quality);
    Bytes row(static_cast<std::size_t>(g.width * codec.input_components));
    JSAMPROW rows[1] = {row.data()};
    for (int y = 0; y < g.height; ++y) {
        for (std::size_t x = 0; x < row.size(); ++x) {
            seed = seed * 1664525 + 1013904223;
            const auto edge = x / 40 % 3 == 0 ? 200u : 30u;
            const auto grain = (seed >> 24) / (1 + static_cast<unsigned>(y) / 64);
            row[x] = static_cast<std::uint8_t>(std::min<std::size_t>(255, edge + grain + x % 3 * 20));
        }
        jpeg_write_scanlines(&codec, rows, 1);
    }
    jpeg_finish_compress(&codec);
    jpeg_destroy_compress(&codec);
    Bytes file(data, data + size);
    std::free(data);
    return file;
}

TEST(Jpeg, EighthIsTheLibrarysToTheByte) {
    const Grain cases[] = {
        {320, 304},
        {333, 301, 2, 2},
        {333, 301, 2, 1},
        {333, 301, 1, 2},
        {317, 309, 2, 2, 100, false, true},
        {317, 309, 1, 1, 98, false, true},
        {400, 300, 2, 2, 5},
        {301, 347, 1, 1, 60, true},
        {301, 347, 2, 2, 60, true, true},
        {333, 301, 2, 2, 90, false, false, false, 3},
        {333, 301, 1, 1, 90, true, true, false, 1},
        {333, 301, 4, 1},
        {333, 301, 2, 2, 75, false, true, true},
    };
    for (const auto& g : cases) {
        const auto file = MakeGrain(g);
        PictureFacts facts;
        const auto block = Read(file, true, facts), library = LibraryEighth(file);
        ASSERT_EQ(DIBWidth(block), DIBWidth(library));
        EXPECT_TRUE(std::ranges::equal(block.Span(), library.Span()))
            << g.width << "x" << g.height << " " << g.across << g.down << " " << g.quality;
    }
}

TEST(Jpeg, DamagedPreviewsGoTheLibrarysWay) {
    const auto file = MakeGrain({301, 301, 2, 2, 50, false, true, false, 20});
    PictureFacts facts;
    for (std::size_t size = 600; size < file.size(); size += 997)
        EXPECT_EQ(DIBWidth(Read(ByteSpan(file).first(size), true, facts)), 38);
    for (std::size_t i = 600; i < file.size(); i += 211) {
        auto damaged = file;
        damaged[i] ^= 0x5A;
        const auto block = Read(damaged, true, facts);
        EXPECT_TRUE(!block || DibView(block));
    }
}

} // namespace
} // namespace pelorin
