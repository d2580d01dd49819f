#include "formats/psd.h"
#include "support/dib_builder.h"
#include "support/hostile.h"
#include "support/psd_builder.h"
#include "support/random_pictures.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using test::At;
using test::ReadCopy;
using namespace test::psd;

const Bytes kMerged2x1 = {0, 0, 10, 11, 20, 21, 30, 31, 40, 41};

TEST(Psd, TheMergedImage) {
    struct Case {
        const char* what;
        Shape shape;
        Bytes merged;
        int bits;
        std::vector<Argb> pixels;
    };
    const Case cases[] = {
        {"four channels", {4, 2, 1}, kMerged2x1, 32, {0x280A141E, 0x290B151F}},
        {"three are on white", {3, 2, 1}, kMerged2x1, 24, {0xFF0A141E, 0xFF0B151F}},
        {"one channel is red", {1, 2, 1}, kMerged2x1, 32, {0xFF0A0000, 0xFF0B0000}},
        {"a fifth channel is left", {5, 2, 1}, kMerged2x1, 32, {0x280A141E, 0x290B151F}},
        {"no channels at all", {0, 2, 1}, {0, 0}, 32, {0xFF000000, 0xFF000000}},
        {"runs over row borders, a byte of nothing",
         {3, 2, 2},
         {0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFD, 7, 128, 3, 1, 2, 3, 4, 0xFE, 8, 0, 9},
         24,
         {0xFF070108, 0xFF070208, 0xFF070308, 0xFF070409}},
        {"a run ends with its plane", {2, 2, 1}, {0, 1, 0, 0, 0, 0, 0xF0, 7, 1, 5, 6}, 32, {0xFF070500, 0xFF070600}},
    };
    for (const auto& c : cases) {
        const auto block = ReadCopy(ReadPsd, MakeFile(c.shape, {}, c.merged));
        ASSERT_TRUE(block) << c.what;
        EXPECT_EQ(DIBBitCount(block), c.bits) << c.what;
        for (int i = 0; i < static_cast<int>(c.pixels.size()); ++i) {
            EXPECT_EQ(At(block, i % c.shape.width, i / c.shape.width), c.pixels[static_cast<std::size_t>(i)])
                << c.what << ", pixel " << i;
        }
    }
}

TEST(Psd, RefusesWhatItDoesNotRead) {
    for (const auto& shape : std::vector<Shape>{{17, 2, 1},
                                                {4, 2, 1, 16},
                                                {4, 2, 1, 8, 4},
                                                {4, 2, 1, 8, 2},
                                                {4, 2, 1, 8, 3, 2},
                                                {4, 0, 1},
                                                {4, -2, 1},
                                                {4, 300000, 300000},
                                                {4, 8000, 8000}}) {
        EXPECT_FALSE(ReadCopy(ReadPsd, MakeFile(shape, {}, kMerged2x1)))
            << shape.channels << " channels, " << shape.width << " x " << shape.height << ", mode " << shape.mode;
    }
    auto merged = kMerged2x1;
    merged[1] = 2;
    EXPECT_FALSE(ReadCopy(ReadPsd, MakeFile({4, 2, 1}, {}, merged))) << "an unknown compression";
}

TEST(Psd, LayersComeOnTheCanvas) {
    const auto layers = LayerBlock(-2, {{{0, 0, 2, 1}, FlatPlanes(2, 1, 2, 3), "ground"},
                                        {{1, -1, 3, 1},
                                         {{-1, Plain({9, 9, 100, 9})},
                                          {5, Plain({1, 2, 3, 4})},
                                          {0, {0, 1, 0, 2, 0, 3, 0xFD, 50}},
                                          {1, Plain({0, 0, 60, 0})},
                                          {2, Plain({0, 0, 70, 0})}}}});
    const auto file = MakeFile({4, 2, 1}, layers, kMerged2x1);
    PictureFacts facts;
    PictureRequest request;
    EXPECT_EQ(At(ReadPsd(file, request, facts), 0, 0), 0x280A141Eu) << "the composite";
    EXPECT_EQ(facts.layers, (std::vector<std::string>{"ground", "Layer 2"}));

    request.layer = 0;
    auto block = ReadPsd(file, request, facts);
    EXPECT_EQ(At(block, 1, 0), 0xFF010203u) << "opaque without an alpha channel";
    request.layer = 1;
    block = ReadPsd(file, request, facts);
    EXPECT_EQ(DIBWidth(block), 2);
    EXPECT_EQ(At(block, 0, 0), 0u);
    EXPECT_EQ(At(block, 1, 0), 0x64323C46u) << "the second row of the layer, cut at the canvas";
    request.layer = 2;
    EXPECT_FALSE(ReadPsd(file, request, facts));
}

TEST(Psd, OneLayerStandsForThePicture) {
    Layer layer{{1, 0, 2, 1}, FlatPlanes(1, 5, 6, 7)};
    auto block = ReadCopy(ReadPsd, MakeFile({3, 2, 1}, LayerBlock(1, {layer}), kMerged2x1));
    EXPECT_EQ(DIBBitCount(block), 32);
    EXPECT_EQ(At(block, 0, 0), 0u);
    EXPECT_EQ(At(block, 1, 0), 0xFF050607u);

    layer.signature = "8BIX";
    block = ReadCopy(ReadPsd, MakeFile({3, 2, 1}, LayerBlock(1, {layer}), kMerged2x1));
    EXPECT_EQ(At(block, 0, 0), 0xFF0A141Eu) << "a layer with a strange signature is dropped";
}

TEST(Psd, MasksStayApartUntilTheyAreWanted) {
    auto planes = FlatPlanes(2, 5, 6, 7);
    planes.push_back({-2, Plain({128})});
    const auto read = [&](std::uint8_t flags, CPsdLayers& layers, Bytes& file) {
        file = MakeFile({3, 2, 1}, LayerBlock(1, {{{0, 0, 2, 1}, planes, "", Mask{{1, 0, 2, 1}, flags}}}), kMerged2x1);
        return ReadPsdImage(file, &layers);
    };
    CPsdLayers layers;
    Bytes file;
    ASSERT_TRUE(read(0, layers, file));
    ASSERT_EQ(layers.size(), 1u);
    EXPECT_EQ(layers[0].m_strName, "mul ");
    EXPECT_EQ(layers[0].m_nMaskColor, 255);
    const auto mask = PsdMaskOnCanvas(layers[0], {2, 1});
    EXPECT_EQ(At(mask, 0, 0), 0xFF000000u);
    EXPECT_EQ(At(mask, 1, 0), 0xFF808080u);
    EXPECT_EQ(At(PsdLayerOnCanvas(layers[0], {2, 1}, false), 1, 0), 0xFF050607u);
    EXPECT_EQ(At(PsdLayerOnCanvas(layers[0], {2, 1}, true), 1, 0), 0x7F050607u);
    EXPECT_EQ(At(PsdLayerOnCanvas(layers[0], {2, 1}, true), 0, 0), 0x00050607u);
    ASSERT_TRUE(read(kPsdMaskDisabled, layers, file));
    EXPECT_EQ(At(PsdLayerOnCanvas(layers[0], {2, 1}, true), 0, 0), 0xFF050607u);
    ASSERT_TRUE(read(kPsdMaskInverted, layers, file));
    EXPECT_EQ(At(PsdLayerOnCanvas(layers[0], {2, 1}, true), 0, 0), 0xFE050607u);
}

TEST(Psd, UnknownCompressionEndsTheLayers) {
    auto second = FlatPlanes(2, 3, 3, 3);
    second[1].data[1] = 2;
    const auto block = LayerBlock(
        3, {{{0, 0, 2, 1}, FlatPlanes(2, 1, 1, 1)}, {{0, 0, 2, 1}, second}, {{0, 0, 2, 1}, FlatPlanes(2, 9, 9, 9)}});
    const auto file = MakeFile({4, 2, 1}, block, kMerged2x1);
    CPsdLayers layers;
    EXPECT_TRUE(ReadPsdImage(file, &layers));
    ASSERT_EQ(layers.size(), 2u);
    EXPECT_EQ(At(PsdLayerPixels(layers[1]), 0, 0), 0xFF030000u) << "red was there before";

    const auto many = LayerBlock(1, {{{0, 0, 2, 1}, std::vector<Plane>(31, {0, Plain({1, 2})})}});
    EXPECT_FALSE(ReadCopy(ReadPsd, MakeFile({4, 2, 1}, many, kMerged2x1)));
    EXPECT_TRUE(ReadPsdImage(MakeFile({4, 2, 1}, many, kMerged2x1), nullptr)) << "nobody looks at the layers";
}

TEST(Psd, WritesTheDefinedBytes) {
    Bytes out;
    ASSERT_EQ(WritePsd(test::Picture32(1, {0x80102030, 0x05060708}), {}, out), 0);
    ByteWriter expected;
    expected.Text("8BPS");
    expected.Raw(Bytes{0, 1, 0, 0, 0, 0, 0, 0, 0, 4, 0, 0, 0, 2, 0, 0, 0, 1, 0, 8, 0, 3});
    expected.Zeros(8);
    expected.Raw(Bytes{0, 0, 0, 84, 0, 0, 0, 76, 0, 1});
    expected.Raw(Bytes{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 0, 0, 0, 1, 0, 4});
    expected.Raw(Bytes{0, 0, 0, 0, 0, 4, 0, 1, 0, 0, 0, 4, 0, 2, 0, 0, 0, 4, 0xFF, 0xFF, 0, 0, 0, 4});
    expected.Text("8BIMnorm");
    expected.Raw(Bytes{255, 0, 0xC0, 0, 0, 0, 0, 0});
    expected.Raw(Bytes{0, 0, 0x10, 6, 0, 0, 0x20, 7, 0, 0, 0x30, 8, 0, 0, 0x80, 5});
    expected.U32BE(0);
    expected.Raw(Bytes{0, 0, 0x10, 6, 0x20, 7, 0x30, 8, 0x80, 5});
    EXPECT_EQ(out, expected.Take());
}

TEST(Psd, EveryDepthReadsBackAsItWas) {
    const auto block = DIBFromSurface(test::RandomSurface(37, 11, 1));
    Bytes file;
    ASSERT_EQ(WritePsd(block, {}, file), 0);
    EXPECT_EQ(test::BytesOf(ReadCopy(ReadPsd, file)), test::BytesOf(block));

    auto indexed = CreateDIB(2, 1, 4);
    DibRows(indexed).Row(0)[0] = 0x9F;
    ASSERT_EQ(WritePsd(indexed, {}, file), 0);
    EXPECT_EQ(At(ReadCopy(ReadPsd, file), 0, 0), 0xFFFF0000u);
    EXPECT_EQ(WritePsd(CreateDIB(2, 1, 16), {}, file), 1);
    EXPECT_EQ(WritePsd({}, {}, file), 1);
}

TEST(Psd, SurvivesDamage) {
    auto planes = FlatPlanes(2, 1, 2, 3);
    planes.push_back({-1, {0, 1, 0, 2, 0xFF, 9}});
    planes.push_back({-2, Plain({7})});
    const auto file =
        MakeFile({4, 2, 1}, LayerBlock(1, {{{0, 0, 2, 1}, planes, "name", Mask{{0, 0, 1, 1}}}}), kMerged2x1);
    test::ExpectSurvivesDamage(ReadPsd, file);
    for (std::size_t size = 0; size < file.size(); ++size) {
        EXPECT_FALSE(ReadCopy(ReadPsd, ByteSpan(file).first(size))) << size << " bytes";
    }
}

} // namespace
} // namespace pelorin
