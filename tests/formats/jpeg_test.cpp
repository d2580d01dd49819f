#include "formats/jpeg.h"
#include "formats/save_image.h"
#include "support/dib_builder.h"

#include <gtest/gtest.h>
#include <jpeglib.h>

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

} // namespace
} // namespace pelorin
