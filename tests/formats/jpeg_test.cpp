#include "formats/jpeg.h"
#include "formats/jpeg_eighth.h"
#include "formats/save_image.h"
#include "support/dib_builder.h"
#include "support/foreign_jpeg.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace pelorin {
namespace {

using test::At;
using test::ForeignJpeg;

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
    const ForeignJpeg format{.width = 16, .height = 16, .quality = 100, .space = space, .adobe = adobe};
    const auto count = static_cast<std::size_t>(format.Components());
    return WriteForeignJpeg(format, [&](int, Bytes& row) {
        for (std::size_t i = 0; i < row.size(); ++i) row[i] = pixel[i % count];
    });
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
    // Sizes that so few bytes cannot be a part of.
    auto huge = file;
    const auto frame = AsText(huge).find("\xFF\xC0");
    std::fill_n(huge.begin() + static_cast<std::ptrdiff_t>(frame) + 5, 4, std::uint8_t{0x1F});
    EXPECT_FALSE(Read(huge, false, facts));
    EXPECT_FALSE(Read(huge, true, facts));
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
    errors.emit_message = [](j_common_ptr, int) {};
    jpeg_create_decompress(&codec);
    jpeg_mem_src(&codec, file.data(), file.size());
    jpeg_read_header(&codec, TRUE);
    codec.scale_num = 1;
    codec.scale_denom = 8;
    const bool inks = codec.num_components == 4;
    codec.out_color_space = inks ? JCS_CMYK : JCS_EXT_BGR;
    jpeg_start_decompress(&codec);
    auto block = CreateDIB(static_cast<int>(codec.output_width), static_cast<int>(codec.output_height), 24);
    const DibRows rows(block);
    Bytes row(codec.output_width * 4);
    JSAMPROW to[1] = {row.data()};
    for (int y = 0; y < rows.Height(); ++y) {
        jpeg_read_scanlines(&codec, to, 1);
        for (std::size_t i = 0; i < codec.output_width * 3; ++i) {
            const auto* pixel = row.data() + i / 3 * 4;
            rows.PictureRow(y)[i] = inks ? static_cast<std::uint8_t>(pixel[2 - i % 3] * pixel[3] / 255) : row[i];
        }
    }
    jpeg_destroy_decompress(&codec);
    return block;
}

using Script = std::vector<jpeg_scan_info>;

jpeg_scan_info Scan(std::initializer_list<int> components, int from, int to, int high, int low) {
    jpeg_scan_info scan{static_cast<int>(components.size()), {}, from, to, high, low};
    std::copy(components.begin(), components.end(), scan.component_index);
    return scan;
}

// A grainy picture, grainiest above.
Bytes MakeGrain(const ForeignJpeg& format) {
    auto seed = static_cast<std::uint32_t>(format.width * format.quality);
    return WriteForeignJpeg(format, [&](int y, Bytes& row) {
        for (std::size_t x = 0; x < row.size(); ++x) {
            seed = seed * 1664525 + 1013904223;
            const auto edge = x / 40 % 3 == 0 ? 200u : 30u;
            const auto grain = (seed >> 24) / (1 + static_cast<unsigned>(y) / 64);
            row[x] = static_cast<std::uint8_t>(std::min<std::size_t>(255, edge + grain + x % 3 * 20));
        }
    });
}

// Whole components one by one; a progressive file with chroma in bands of their own, with tables of their own.
const Script kOneByOne = {Scan({0}, 0, 63, 0, 0), Scan({2}, 0, 63, 0, 0), Scan({1}, 0, 63, 0, 0)};
const Script kBands = {
    Scan({0, 1, 2}, 0, 0, 0, 2), Scan({0}, 1, 63, 0, 0), Scan({1}, 1, 5, 0, 2),       Scan({1}, 6, 63, 0, 2),
    Scan({2}, 1, 63, 0, 1),      Scan({1}, 1, 63, 2, 1), Scan({0}, 0, 0, 2, 1),       Scan({1, 2}, 0, 0, 2, 1),
    Scan({1}, 1, 63, 1, 0),      Scan({2}, 1, 63, 1, 0), Scan({0, 1, 2}, 0, 0, 1, 0),
};

DibBlock ShortEighth(const Bytes& file) {
    jpeg_decompress_struct codec;
    jpeg_error_mgr errors;
    codec.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&codec);
    jpeg_mem_src(&codec, file.data(), file.size());
    jpeg_read_header(&codec, TRUE);
    auto block = ReadJpegEighth(file, codec);
    jpeg_destroy_decompress(&codec);
    return block;
}

bool IsTheLibrarys(const Bytes& file) {
    PictureFacts facts;
    return std::ranges::equal(Read(file, true, facts).Span(), LibraryEighth(file).Span());
}

TEST(Jpeg, EighthIsTheLibrarysToTheByte) {
    const ForeignJpeg cases[] = {
        {320, 304},
        {333, 301, 2, 2},
        {333, 301, 2, 1},
        {333, 301, 1, 2},
        {317, 309, 2, 2, 100, JCS_YCbCr, true},
        {317, 309, 1, 1, 98, JCS_YCbCr, true},
        {400, 300, 2, 2, 5},
        {301, 347, 1, 1, 60, JCS_GRAYSCALE},
        {301, 347, 2, 2, 60, JCS_GRAYSCALE, true},
        {333, 301, 2, 2, 90, JCS_YCbCr, false, false, 3},
        {333, 301, 1, 1, 90, JCS_GRAYSCALE, true, false, 1},
        {333, 301, 4, 1},
        {333, 301, 4, 2},
        {1200, 301, 2, 2, 100, JCS_RGB},
        {333, 301, 2, 2, 80, JCS_CMYK},
        {333, 301, 2, 2, 80, JCS_YCCK},
        {333, 301, 2, 2, 75, JCS_YCbCr, true, true},
        {333, 301, 2, 2, 97, JCS_YCbCr, true, true, 5},
        {333, 301, 1, 1, 97, JCS_YCCK, true, true},
        {333, 301, 2, 2, 80, JCS_YCbCr, true, false, 0, kOneByOne},
        {333, 301, 2, 1, 80, JCS_YCbCr, false, false, 4, kOneByOne},
        {333, 301, 2, 2, 90, JCS_YCbCr, true, false, 7, kBands},
        {333, 301, 1, 1, 90, JCS_YCbCr, true, false, 0, kBands},
    };
    for (const auto& g : cases) {
        const auto file = MakeGrain(g);
        EXPECT_TRUE(std::ranges::equal(ShortEighth(file).Span(), LibraryEighth(file).Span()))
            << g.width << "x" << g.height << " " << g.across << g.down << " " << g.quality << " " << g.space;
    }
}

TEST(Jpeg, DamagedPreviewsAreTheLibrarysToo) {
    for (const auto& script : {Script{}, kOneByOne}) {
        const auto file = MakeGrain({301, 301, 2, 1, 50, JCS_YCbCr, true, false, 20, script});
        for (std::size_t size = 700; size < file.size(); size += 2997)
            EXPECT_TRUE(IsTheLibrarys(Bytes(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size)))) << size;
        for (std::size_t i = 700; i < file.size(); i += 611) {
            auto damaged = file;
            damaged[i] ^= 0x5A;
            EXPECT_TRUE(IsTheLibrarys(damaged)) << i;
        }
    }
}

// What is left out may be missing: the means have come before.
TEST(Jpeg, ProgressivePreviewsNeedTheMeansOnly) {
    const auto file = MakeGrain({304, 304, 1, 1, 90, JCS_YCbCr, true, false, 0, kBands});
    const auto head = MakeGrain({304, 304, 1, 1, 90, JCS_YCbCr, true, false, 0, {kBands.begin(), kBands.begin() + 1}});
    PictureFacts facts;
    const auto whole = Read(file, true, facts), early = Read(Bytes(file.begin(), file.begin() + 9000), true, facts);
    ASSERT_EQ(DIBWidth(early), 38);
    EXPECT_LT(head.size(), 9000u);
    for (int y = 0; y < 38; ++y) {
        for (int x = 0; x < 38; ++x) EXPECT_LT(Distance(At(whole, x, y), At(early, x, y)), 24) << x << " " << y;
    }
    for (std::size_t i = 700; i < file.size(); i += 311) {
        auto damaged = file;
        damaged[i] ^= 0x5A;
        const auto block = Read(damaged, true, facts);
        EXPECT_TRUE(!block || DibView(block));
    }
}

} // namespace
} // namespace pelorin
