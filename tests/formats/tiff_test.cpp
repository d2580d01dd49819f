#include "formats/load_image.h"
#include "formats/tiff.h"
#include "support/dib_builder.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <tiffio.h>

namespace pelorin {
namespace {

using test::At;

// A picture of 5 x 3 pixels whose samples are given by a rule, as another program would store it.
struct Shape {
    int bits = 8, samples = 3, photometric = PHOTOMETRIC_RGB;
    int compression = COMPRESSION_NONE;
    int extra = -1; ///< meaning of the sample behind the colour's
    bool separate = false, tiled = false;
    int orientation = 1, rowsPerStrip = 2;
    const char* mode = "w";
    int pages = 1;
};

constexpr int kWidth = 5, kHeight = 3;

// The sample: page * 50 + y * 30 + x * 10 + sample, held below the depth's maximum.
unsigned Sample(const Shape& s, int page, int x, int y, int sample) {
    const unsigned value = static_cast<unsigned>(page * 50 + y * 30 + x * 10 + sample * 3);
    return s.bits >= 8 ? value << (s.bits - 8) : value & ((1u << s.bits) - 1);
}

// Packs samples of one row from the high bit down; 16 bits in this machine's order, as the library wants them.
Bytes Pack(const Shape& s, const std::vector<unsigned>& values) {
    Bytes row((values.size() * static_cast<std::size_t>(s.bits) + 7) / 8);
    std::size_t at = 0;
    for (const auto v : values) {
        if (s.bits == 16) {
            const auto word = static_cast<std::uint16_t>(v);
            std::memcpy(&row[at / 8], &word, 2);
        } else {
            for (int b = 0; b < s.bits; ++b) {
                if (v >> (s.bits - 1 - b) & 1)
                    row[(at + static_cast<std::size_t>(b)) / 8] |=
                        static_cast<std::uint8_t>(0x80 >> (at + static_cast<std::size_t>(b)) % 8);
            }
        }
        at += static_cast<std::size_t>(s.bits);
    }
    return row;
}

Bytes RowOf(const Shape& s, int page, int y, int width, int plane) {
    std::vector<unsigned> values;
    for (int x = 0; x < width; ++x) {
        for (int c = 0; c < s.samples; ++c) {
            if (plane < 0 || plane == c) values.push_back(x < kWidth && y < kHeight ? Sample(s, page, x, y, c) : 0);
        }
    }
    return Pack(s, values);
}

void WritePage(TIFF* file, const Shape& s, int page) {
    TIFFSetField(file, TIFFTAG_IMAGEWIDTH, kWidth);
    TIFFSetField(file, TIFFTAG_IMAGELENGTH, kHeight);
    TIFFSetField(file, TIFFTAG_BITSPERSAMPLE, s.bits);
    TIFFSetField(file, TIFFTAG_SAMPLESPERPIXEL, s.samples);
    TIFFSetField(file, TIFFTAG_PHOTOMETRIC, s.photometric);
    TIFFSetField(file, TIFFTAG_COMPRESSION, s.compression);
    TIFFSetField(file, TIFFTAG_ORIENTATION, s.orientation);
    TIFFSetField(file, TIFFTAG_PLANARCONFIG, s.separate ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
    if (s.photometric == PHOTOMETRIC_YCBCR) TIFFSetField(file, TIFFTAG_YCBCRSUBSAMPLING, 1, 1);
    if (s.extra >= 0) {
        const auto kind = static_cast<std::uint16_t>(s.extra);
        TIFFSetField(file, TIFFTAG_EXTRASAMPLES, 1, &kind);
    }
    std::vector<std::uint16_t> ramp(std::size_t{1} << s.bits), none(ramp.size());
    for (std::size_t i = 0; i < ramp.size(); ++i) ramp[i] = static_cast<std::uint16_t>(i * 0x0101 + 0x8000);
    if (s.photometric == PHOTOMETRIC_PALETTE)
        TIFFSetField(file, TIFFTAG_COLORMAP, ramp.data(), none.data(), none.data());
    const int planes = s.separate ? s.samples : 1;
    if (s.tiled) {
        TIFFSetField(file, TIFFTAG_TILEWIDTH, 16);
        TIFFSetField(file, TIFFTAG_TILELENGTH, 16);
        for (int p = 0; p < planes; ++p) {
            Bytes tile;
            for (int y = 0; y < 16; ++y) {
                const auto row = RowOf(s, page, y, 16, s.separate ? p : -1);
                tile.insert(tile.end(), row.begin(), row.end());
            }
            TIFFWriteEncodedTile(file, static_cast<std::uint32_t>(p), tile.data(), static_cast<tmsize_t>(tile.size()));
        }
    } else {
        TIFFSetField(file, TIFFTAG_ROWSPERSTRIP, s.rowsPerStrip);
        for (int p = 0; p < planes; ++p) {
            for (int y = 0; y < kHeight; ++y) {
                auto row = RowOf(s, page, y, kWidth, s.separate ? p : -1);
                TIFFWriteScanline(file, row.data(), static_cast<std::uint32_t>(y), static_cast<std::uint16_t>(p));
            }
        }
    }
    TIFFWriteDirectory(file);
}

Bytes Make(const Shape& s) {
    const test::TempFolder folder;
    const auto path = folder.Path("a.tif");
    auto* file = TIFFOpen(path.c_str(), s.mode);
    for (int page = 0; page < s.pages; ++page) WritePage(file, s, page);
    TIFFClose(file);
    return ReadFileStart(path, 1 << 20);
}

DibBlock Read(ByteSpan file, int page = 0) {
    PictureFacts facts;
    PictureRequest request;
    request.frame = page;
    return ReadTiff(file, request, facts);
}

// What the rule above makes of the pixel at (2, 1): samples 50, 53, 56, 59 at 8 bits.
TEST(Tiff, LayoutsAndDepths) {
    struct Case {
        const char* what;
        Shape shape;
        int bits;
        Argb color;
    };
    const Case cases[] = {
        {"colours", {}, 24, 0xFF323538},
        {"big-endian", {.mode = "wb"}, 24, 0xFF323538},
        {"64-bit offsets", {.mode = "w8"}, 24, 0xFF323538},
        {"LZW", {.compression = COMPRESSION_LZW}, 24, 0xFF323538},
        {"deflate in tiles", {.compression = COMPRESSION_ADOBE_DEFLATE, .tiled = true}, 24, 0xFF323538},
        {"pack bits, a plane a sample", {.compression = COMPRESSION_PACKBITS, .separate = true}, 24, 0xFF323538},
        {"tiles, a plane a sample", {.separate = true, .tiled = true}, 24, 0xFF323538},
        {"16 bits", {.bits = 16}, 24, 0xFF323538},
        {"16 bits, big-endian", {.bits = 16, .mode = "wb"}, 24, 0xFF323538},
        {"12 bits", {.bits = 12}, 24, 0xFF323538},
        {"4 bits a sample: 2, 5, 8 of 15", {.bits = 4}, 24, 0xFF225588},
        {"alpha", {.samples = 4, .extra = EXTRASAMPLE_UNASSALPHA}, 32, 0x3B323538},
        {"alpha in a plane of its own",
         {.samples = 4, .extra = EXTRASAMPLE_UNASSALPHA, .separate = true},
         32,
         0x3B323538},
        {"premultiplied alpha", {.samples = 4, .extra = EXTRASAMPLE_ASSOCALPHA}, 32, 0x3BD8E5F2},
        {"fourth sample of no meaning", {.samples = 4, .extra = EXTRASAMPLE_UNSPECIFIED}, 24, 0xFF323538},
        {"fourth sample without a word", {.samples = 4}, 32, 0x3B323538},
        {"grey", {.samples = 1, .photometric = PHOTOMETRIC_MINISBLACK}, 8, 0xFF323232},
        {"grey of 16 bits", {.bits = 16, .samples = 1, .photometric = PHOTOMETRIC_MINISBLACK}, 8, 0xFF323232},
        {"grey, white first", {.samples = 1, .photometric = PHOTOMETRIC_MINISWHITE}, 8, 0xFFCDCDCD},
        {"grey of 4 bits: 2", {.bits = 4, .samples = 1, .photometric = PHOTOMETRIC_MINISBLACK}, 4, 0xFF222222},
        {"grey of 2 bits: 2", {.bits = 2, .samples = 1, .photometric = PHOTOMETRIC_MINISBLACK}, 4, 0xFFAAAAAA},
        {"fax black on white",
         {.bits = 1, .samples = 1, .photometric = PHOTOMETRIC_MINISWHITE, .compression = COMPRESSION_CCITTFAX4},
         1,
         0xFFFFFFFF},
        {"grey of 4 bits with alpha: 2, 5",
         {.bits = 4, .samples = 2, .photometric = PHOTOMETRIC_MINISBLACK, .extra = EXTRASAMPLE_UNASSALPHA},
         32,
         0x55222222},
        {"palette", {.samples = 1, .photometric = PHOTOMETRIC_PALETTE}, 8, 0xFFB20000},
        {"palette of 4 bits: 2", {.bits = 4, .samples = 1, .photometric = PHOTOMETRIC_PALETTE}, 4, 0xFF820000},
        {"inks", {.samples = 4, .photometric = PHOTOMETRIC_SEPARATED}, 24, 0xFF9D9B98},
        {"inks of 16 bits with alpha",
         {.bits = 16, .samples = 5, .photometric = PHOTOMETRIC_SEPARATED, .extra = EXTRASAMPLE_UNASSALPHA},
         32,
         0x3E9D9B98},
    };
    for (const auto& c : cases) {
        const auto block = Read(Make(c.shape));
        EXPECT_EQ(DIBBitCount(block), c.bits) << c.what;
        EXPECT_EQ(DIBWidth(block), kWidth) << c.what;
        if (block) {
            EXPECT_EQ(At(block, 2, 1), c.color) << c.what;
        }
    }
}

TEST(Tiff, OrientationIsUndone) {
    // Where the stored pixel (4, 0), which has 40, comes to stand.
    constexpr Point places[] = {{4, 0}, {0, 0}, {0, 2}, {4, 2}, {0, 4}, {2, 4}, {2, 0}, {0, 0}};
    for (int orientation = 1; orientation <= 8; ++orientation) {
        Shape shape;
        shape.orientation = orientation;
        const auto block = Read(Make(shape));
        const auto place = places[orientation - 1];
        EXPECT_EQ(DIBWidth(block), orientation < 5 ? 5 : 3) << orientation;
        EXPECT_EQ(At(block, place.x, place.y), 0xFF282B2Eu) << orientation;
    }
}

TEST(Tiff, PagesAndFacts) {
    Shape shape;
    shape.pages = 3;
    const auto file = Make(shape);
    PictureFacts facts;
    ASSERT_TRUE(ReadPicture(file, 0, {}, facts));
    EXPECT_EQ(facts.frames, 3);
    EXPECT_EQ(facts.format, "TIFF");
    EXPECT_EQ(At(Read(file, 2), 0, 0), 0xFF64676Au);
    EXPECT_FALSE(Read(file, 3));
    EXPECT_FALSE(Read(file, -1));
}

TEST(Tiff, LumaAndChromaBecomeColours) {
    Shape shape;
    shape.photometric = PHOTOMETRIC_YCBCR;
    const auto block = Read(Make(shape));
    ASSERT_EQ(DIBBitCount(block), 24);
    // Luma 50, blue difference 53 - 128, red difference 56 - 128.
    EXPECT_EQ(At(block, 2, 1), 0xFF007F00u);
}

TEST(Tiff, DamagedFilesAreRefused) {
    for (const bool tiled : {false, true}) {
        Shape shape;
        shape.compression = COMPRESSION_LZW;
        shape.tiled = tiled;
        const auto file = Make(shape);
        for (std::size_t size = 0; size < file.size(); ++size) (void)Read(ByteSpan(file).first(size));
        for (std::size_t i = 0; i < file.size(); ++i) {
            for (const int value : {0, 1, 0x40, 0xFF}) {
                auto damaged = file;
                damaged[i] = static_cast<std::uint8_t>(value);
                const auto block = Read(damaged);
                EXPECT_TRUE(!block || DibView(block)) << i;
            }
        }
    }
}

} // namespace
} // namespace pelorin
