#include "formats/iff.h"
#include "support/dib_builder.h"
#include "support/hostile.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using test::At;
using test::ReadCopy;

struct Shape {
    int width, height, planes, masking = 0, compression = 0, transparent = 0;
    bool chunky = false;
    std::uint32_t mode = 0; // 0: no chunk
    Bytes colors = {};
};

void PutChunk(ByteWriter& out, std::string_view name, ByteSpan bytes) {
    out.Text(name);
    out.U32BE(static_cast<std::uint32_t>(bytes.size()));
    out.Raw(bytes);
    out.AlignTo(2);
}

Bytes MakeForm(const Shape& shape, const Bytes& body) {
    ByteWriter header, mode, form, out;
    header.U16BE(static_cast<std::uint32_t>(shape.width));
    header.U16BE(static_cast<std::uint32_t>(shape.height));
    header.U32BE(0);
    for (const int value : {shape.planes, shape.masking, shape.compression, 0})
        header.U8(static_cast<std::uint32_t>(value));
    header.U16BE(static_cast<std::uint32_t>(shape.transparent));
    header.Zeros(6);
    mode.U32BE(shape.mode);
    form.Text(shape.chunky ? "PBM " : "ILBM");
    PutChunk(form, "BMHD", header.View());
    PutChunk(form, "ANNO", AsBytes("odd"));
    if (!shape.colors.empty()) PutChunk(form, "CMAP", shape.colors);
    if (shape.mode != 0) PutChunk(form, "CAMG", mode.View());
    PutChunk(form, "BODY", body);
    PutChunk(out, "FORM", form.View());
    return out.Take();
}

constexpr Argb kBlack = 0xFF000000;
const Bytes kFour = {1, 2, 3, 10, 20, 30, 40, 50, 60, 70, 80, 90};

TEST(Iff, PlanesBytesAndSpecialModes) {
    // 16 colours of which number 5 is 0x112233, then hold-and-modify pixels in six planes.
    Bytes sixteen(48);
    sixteen[15] = 0x11, sixteen[16] = 0x22, sixteen[17] = 0x33;
    Bytes thirtyTwo(96);
    thirtyTwo[3] = 0x81, thirtyTwo[4] = 0x40, thirtyTwo[5] = 0xFF;
    struct Case {
        const char* what;
        Shape shape;
        Bytes body;
        int bits;
        std::vector<Argb> row;
    };
    const Case cases[] = {
        {"one plane", {3, 1, 1, 0, 0, 0, false, 0, kFour}, {0x40, 0}, 1, {0xFF010203, 0xFF0A141E, 0xFF010203}},
        {"two planes",
         {4, 1, 2, 0, 0, 0, false, 0, kFour},
         {0x50, 0, 0x30, 0},
         4,
         {0xFF010203, 0xFF0A141E, 0xFF28323C, 0xFF46505A}},
        {"greys where no colours are given", {2, 1, 2}, {0x40, 0, 0x40, 0}, 4, {0xFF000000, 0xFFFFFFFF}},
        {"bytes, odd width",
         {3, 1, 8, 0, 0, 0, true, 0, kFour},
         {3, 0, 1, 99},
         8,
         {0xFF46505A, 0xFF010203, 0xFF0A141E}},
        {"a mask plane", {2, 1, 1, 1, 0, 0, false, 0, kFour}, {0x40, 0, 0x80, 0}, 32, {0xFF010203, 0x000A141E}},
        {"a transparent index", {2, 1, 1, 2, 0, 1, false, 0, kFour}, {0x40, 0}, 32, {0xFF010203, 0x000A141E}},
        {"packed runs, literals and a no-op",
         {16, 2, 1, 0, 1, 0, false, 0, kFour},
         {0x80, 0x01, 0x80, 0x00, 0xFF, 0xFF},
         1,
         {0xFF0A141E, 0xFF010203}},
        {"hold and modify: index 5, blue 15, red 8, green 1",
         {4, 1, 6, 0, 0, 0, false, 0x800, sixteen},
         {0xD0, 0, 0x40, 0, 0xC0, 0, 0x60, 0, 0x50, 0, 0x30, 0},
         24,
         {0xFF112233, 0xFF1122FF, 0xFF8822FF, 0xFF8811FF}},
        {"half-brite without being told",
         {2, 1, 6, 0, 0, 0, false, 0, thirtyTwo},
         {0xC0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x40, 0},
         8,
         {0xFF8140FF, 0xFF40207F}},
        {"colours are taken as they stand",
         {1, 1, 1, 0, 0, 0, false, 0, {0, 0, 0, 0xF0, 0x80, 0x10}},
         {0x80, 0},
         1,
         {0xFFF08010}},
        {"colours that are not there are black", {2, 1, 8, 0, 0, 0, true, 0, kFour}, {4, 255}, 8, {kBlack, kBlack}},
        {"bytes have no mask plane, nor does the index count then",
         {2, 1, 8, 1, 0, 1, true, 0, kFour},
         {0, 1},
         8,
         {0xFF010203, 0xFF0A141E}},
    };
    for (const auto& c : cases) {
        const auto block = ReadCopy(ReadIff, MakeForm(c.shape, c.body));
        ASSERT_TRUE(block) << c.what;
        EXPECT_EQ(DIBBitCount(block), c.bits) << c.what;
        for (int x = 0; x < static_cast<int>(c.row.size()); ++x) {
            EXPECT_EQ(At(block, x, 0), c.row[static_cast<std::size_t>(x)]) << c.what << ", column " << x;
        }
    }
}

TEST(Iff, TwentyFourAndThirtyTwoPlanes) {
    // One pixel: red 0x81, green 0x01, blue 0xFF, alpha 0x80, the lowest bit of each first.
    Bytes body;
    for (const unsigned level : {0x81u, 0x01u, 0xFFu, 0x80u}) {
        for (unsigned bit = 0; bit < 8; ++bit) {
            body.push_back(static_cast<std::uint8_t>((level >> bit & 1) << 7));
            body.push_back(0);
        }
    }
    EXPECT_EQ(At(ReadCopy(ReadIff, MakeForm({1, 1, 32}, body)), 0, 0), 0x808101FFu);
    body.resize(48);
    const auto block = ReadCopy(ReadIff, MakeForm({1, 1, 24}, body));
    EXPECT_EQ(DIBBitCount(block), 24);
    EXPECT_EQ(At(block, 0, 0), 0xFF8101FFu);
}

TEST(Iff, LassoReachesInFromTheEdges) {
    // 5 x 3, index 0 transparent; the 0 in the middle is shut in.
    const auto block = ReadCopy(ReadIff, MakeForm({5, 3, 1, 3, 0, 0, false, 0, kFour}, {0x70, 0, 0x50, 0, 0x70, 0}));
    ASSERT_EQ(DIBBitCount(block), 32);
    EXPECT_EQ(At(block, 0, 1) >> 24, 0u);
    EXPECT_EQ(At(block, 4, 0) >> 24, 0u);
    EXPECT_EQ(At(block, 2, 1), 0xFF010203u);
    EXPECT_EQ(At(block, 1, 1), 0xFF0A141Eu);
}

TEST(Iff, FindsThePictureInsideOtherForms) {
    const auto inner = MakeForm({2, 1, 1, 0, 0, 0, false, 0, kFour}, {0x40, 0});
    ByteWriter anim, out;
    anim.Text("ANIM");
    PutChunk(anim, "ANNO", AsBytes("x"));
    anim.Raw(inner);
    PutChunk(out, "FORM", anim.View());
    EXPECT_EQ(At(ReadCopy(ReadIff, out.View()), 1, 0), 0xFF0A141Eu);

    // Boxes in boxes end somewhere.
    Bytes nested = inner;
    for (int i = 0; i < 5000; ++i) {
        ByteWriter list;
        list.Text("LIST");
        list.U32BE(static_cast<std::uint32_t>(nested.size() + 4));
        list.Text("ILBM");
        nested.insert(nested.begin(), list.View().begin(), list.View().end());
    }
    (void)ReadCopy(ReadIff, nested);
}

TEST(Iff, RefusesWhatMakesNoSense) {
    EXPECT_FALSE(ReadCopy(ReadIff, MakeForm({2, 2, 1}, {0x40, 0}))) << "the second row is missing";
    EXPECT_FALSE(ReadCopy(ReadIff, MakeForm({2, 1, 12}, Bytes(24))));
    EXPECT_FALSE(ReadCopy(ReadIff, MakeForm({2, 1, 1, 0, 7}, Bytes(24))));
    EXPECT_FALSE(ReadCopy(ReadIff, MakeForm({65535, 65535, 1}, Bytes(24))));
    EXPECT_FALSE(ReadCopy(ReadIff, MakeForm({65535, 1000, 32, 0, 1}, {0x81, 0}))) << "two bytes cannot hold that";
}

TEST(Iff, SurvivesDamage) {
    test::ExpectSurvivesDamage(
        ReadIff, MakeForm({16, 2, 6, 1, 1, 0, false, 0x800, kFour}, {0x90, 0, 0x03, 1, 2, 3, 4, 0x90, 7}));
    test::ExpectSurvivesDamage(ReadIff, MakeForm({5, 3, 1, 3, 0, 0, false, 0, kFour}, {0x70, 0, 0x50, 0, 0x70, 0}));
    test::ExpectSurvivesDamage(ReadIff, MakeForm({3, 1, 8, 2, 1, 0, true, 0, kFour}, {3, 3, 0, 1, 99}));
}

} // namespace
} // namespace pelorin
