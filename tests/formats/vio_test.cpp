#include "formats/vio.h"
#include "formats/vnzb.h"
#include "support/dib_builder.h"
#include "support/hostile.h"
#include "support/random_pictures.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

using test::At;

CVniLayer Raster(int left, int top, int width, std::initializer_list<Argb> pixels) {
    CVniLayer layer;
    const auto block = test::Picture32(width, pixels);
    layer.m_RasterSize = {DIBWidth(block), DIBHeight(block)};
    layer.m_Raster = RasterFromDIB(block);
    layer.m_Rect = {left, top, left + width - 1, top + DIBHeight(block) - 1};
    return layer;
}

CVniImage Image(Size size, std::vector<CVniLayer> layers) {
    CVniImage image;
    image.m_Size = size;
    for (auto& layer : layers) image.m_arrLayers.push_back(std::move(layer));
    return image;
}

std::vector<CVniLayer> Layers(CVniLayer a, CVniLayer b) {
    std::vector<CVniLayer> layers;
    layers.push_back(std::move(a));
    layers.push_back(std::move(b));
    return layers;
}

ImageObject FullObject() {
    ImageObject object;
    object.version = 7;
    object.size = {30, 20};
    object.section = {1, 2, 3};
    object.info = {"A title", "", "Me", "http://a", "k1, k2", "free", "", "p1", "p2", 3, -4, 5};
    auto layer = Raster(-1, 2, 2, {0xFF112233, 0x80445566});
    layer.m_strName = "One";
    layer.m_nId = 9;
    layer.m_nOpacity = 50;
    layer.m_bVisible = false;
    layer.m_nReserved = 11;
    layer.m_strText = "text";
    layer.m_Shadow = {true, 0x010203, 1, 2, 3, 4};
    layer.m_Glow = {true, 0x040506, 5, 6, 7};
    layer.m_Effect = {true, 0x070809, 8, 9, 10};
    object.images.push_back(Image({4, 4}, Layers(std::move(layer), CVniLayer())));
    object.images.back().m_strName = "Image1";
    object.images.back().m_strSecondName = "second";
    object.images.push_back(Image({2, 2}, {}));
    return object;
}

TEST(Vio, TheBytesOfARecord) {
    ImageObject object;
    object.size = {3, 2};
    object.images.push_back(Image({1, 1}, {}));
    object.images[0].m_strName = "ab";
    auto& layer = object.images[0].m_arrLayers.emplace_back();
    layer.m_strName = "L";
    layer.m_Shadow.color = 0x030201;
    const auto file = WriteImageObject(object);

    ByteWriter expected;
    expected.Text("VNHO");
    expected.U16LE(1);
    for (const int v : {3, 2, 0}) expected.I32LE(v);
    const auto info = CompressVnzbHeadless(AsBytes(FormatVioInfo({})));
    expected.U32LE(static_cast<std::uint32_t>(info.size()));
    expected.Raw(info);
    expected.Raw(Bytes{1, 0, 0, 0, 3, 0, 0, 0, 'a', 'b', 0, 0, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0});
    expected.Raw(Bytes{2, 0, 0, 0, 'L', 0});
    for (const int v : {0, 100}) expected.I32LE(v);
    expected.U8(1);
    for (const int v : {0, 0, 0, 0, /*raster and text*/ 0, 0, /*rectangle*/ 0, 0, 0, 0}) expected.I32LE(v);
    expected.Raw(Bytes{0, 1, 2, 3});
    for (const int v : {75, 135, 5, 5}) expected.I32LE(v);
    expected.Zeros(4);
    for (const int v : {75, 10, 10}) expected.I32LE(v);
    expected.Zeros(4);
    for (const int v : {75, 5, 5}) expected.I32LE(v);
    EXPECT_EQ(file, expected.Take());
}

TEST(Vio, WhatIsWrittenReadsBackTheSame) {
    const auto object = FullObject();
    const auto file = WriteImageObject(object);
    ImageObject again;
    ASSERT_TRUE(ReadImageObject(file, again));
    EXPECT_EQ(again.version, 7);
    EXPECT_EQ(again.size, (Size{30, 20}));
    EXPECT_EQ(again.section, object.section);
    EXPECT_EQ(again.info, object.info);
    ASSERT_EQ(again.images.size(), 2u);
    EXPECT_EQ(again.images[0].m_strName, "Image1");
    EXPECT_EQ(again.images[0].m_strSecondName, "second");
    ASSERT_EQ(again.images[0].m_arrLayers.size(), 2u);
    for (std::size_t i = 0; i < 2; ++i) {
        const VniLayerFields& was = object.images[0].m_arrLayers[i];
        EXPECT_EQ(static_cast<const VniLayerFields&>(again.images[0].m_arrLayers[i]), was) << i;
    }
    EXPECT_EQ(WriteImageObject(again), file);
}

TEST(Vio, InformationText) {
    const auto info = ParseVioInfo("<Type> 12x</Type><Title></Title><Author>a<b</Author><Keywords>open");
    EXPECT_EQ(info, (VioInfo{.author = "a<b", .type = 12}));
    EXPECT_EQ(FormatVioInfo({.title = "t", .type = -1}).substr(0, 31), "<Title>t</Title><Type>-1</Type>");
    using Told = std::vector<std::pair<std::string, std::string>>;
    EXPECT_EQ(DescribeVioInfo({.authorUrl = "u", .mainPassword = "p", .accessType = 3}),
              (Told{{"author_url", "u"}, {"access_type", "3"}}));
}

TEST(Vio, PicturesBecomeImages) {
    ImageObject object;
    ASSERT_TRUE(AddVniPicture(object, test::Picture32(2, {0x80102030, 0xFF405060})));
    ASSERT_TRUE(AddVniPicture(object, CreateDIB(3, 5, 8)));
    EXPECT_FALSE(AddVniPicture(object, {}));
    EXPECT_EQ(object.size, (Size{2, 1}));
    ASSERT_EQ(object.images.size(), 2u);
    EXPECT_EQ(object.images[1].m_strName, "Image2");
    EXPECT_EQ(object.images[1].m_Size, (Size{3, 5}));
    EXPECT_EQ(object.images[1].m_arrLayers[0].m_strName, "Background");
    EXPECT_EQ(At(object.images[0].Composite(), 0, 0), 0x80102030u);
    EXPECT_EQ(At(object.images[1].Composite(), 2, 4), 0xFF000000u);
}

TEST(Vio, Blending) {
    struct Case {
        const char* what;
        Argb under, over, expected;
        int opacity = 100;
    };
    const Case cases[] = {
        {"over empty ground the alpha is not scaled", 0, 0x80102030, 0x80102030, 50},
        {"nothing over nothing is grey", 0x00112233, 0x00102030, 0x00808080},
        {"nothing over something", 0x40112233, 0x00102030, 0x40112233},
        {"an opacity of 0", 0x40112233, 0xFF102030, 0x40112233, 0},
        {"an opacity of 0 over empty ground", 0, 0xFF102030, 0x00808080, 0},
        {"opaque", 0x40112233, 0xFF102030, 0xFF102030},
        // a 127, rest (128 x 255 + 127) / 255 = 128; (127 x 255 + 127 + 128 x 0) / 255
        {"half over opaque", 0xFF000000, 0xFFFF0000, 0xFF7F0000, 50},
        // a 128, rest (127 x 64 + 127) / 255 = 32, alpha 160
        {"half over a quarter", 0x400000FF, 0x80FF0000, 0xA0CC0033},
        {"never above 255", 0x01FFFFFF, 0x01FFFFFF, 0x02FFFFFF},
    };
    for (const auto& c : cases) {
        auto under = Raster(0, 0, 1, {c.under}), over = Raster(0, 0, 1, {c.over});
        over.m_nOpacity = c.opacity;
        EXPECT_EQ(At(over.GetRendered(), 0, 0), (c.over >> 24) != 0 ? c.over : 0x00808080u) << "keeps its own pixels";
        auto image = Image({1, 1}, Layers(std::move(under), std::move(over)));
        EXPECT_EQ(At(image.Composite(), 0, 0), c.expected) << c.what;
    }
}

TEST(Vio, LayersLieWhereTheySay) {
    auto hidden = Raster(0, 0, 1, {0xFFFFFFFF});
    hidden.m_bVisible = false;
    auto image =
        Image({2, 2}, Layers(Raster(-1, 1, 2, {0xFF000001, 0xFF000002, 0xFF000003, 0xFF000004}), std::move(hidden)));
    const auto block = image.Composite();
    EXPECT_EQ(At(block, 0, 0), 0u);
    EXPECT_EQ(At(block, 0, 1), 0xFF000002u) << "cut at the left and below";
    EXPECT_EQ(At(block, 1, 1), 0u);

    auto text = Raster(0, 0, 1, {0xFFFFFFFF});
    text.m_nKind = 1;
    EXPECT_EQ(At(text.GetRendered(), 0, 0), 0u) << "texts are not drawn";
    auto stretched = Raster(0, 0, 1, {0xFF0A0B0C});
    stretched.m_Rect = {3, 3, 6, 4};
    EXPECT_EQ(DIBWidth(stretched.GetRendered()), 4);
    EXPECT_EQ(At(stretched.GetRendered(), 3, 1) & 0xFFFFFF, 0x0A0B0Cu);
}

TEST(Vio, MarginsOfEffects) {
    struct Case {
        VniShadow shadow;
        VniGlow glow;
        int left, top, right, bottom;
    };
    const Case cases[] = {
        {{true, 0, 75, 180, 5, 2}, {}, 0, 2, 7, 2}, // cos 0: five to the right
        {{true, 0, 75, 90, 5, 2}, {}, 2, 7, 2, 0},  // sin -90: five up
        {{true, 0, 75, 135, 5, 5}, {}, 1, 9, 9, 1},
        {{true, 0, 75, 180, 5, 2}, {true, 0, 75, 2, 3}, 3, 3, 7, 3},
        {{}, {}, 0, 0, 0, 0},
    };
    for (const auto& c : cases) {
        auto layer = Raster(0, 0, 1, {0xFF010101});
        layer.m_Shadow = c.shadow;
        layer.m_Glow = c.glow;
        const auto& block = layer.GetRendered();
        EXPECT_EQ(DIBWidth(block), 1 + c.left + c.right) << c.shadow.angle;
        EXPECT_EQ(DIBHeight(block), 1 + c.top + c.bottom) << c.shadow.angle;
        EXPECT_EQ(At(block, c.left, c.top), 0xFF010101u) << c.shadow.angle;
    }
}

TEST(Vio, AsAPicture) {
    const auto file = WriteImageObject(FullObject());
    PictureFacts facts;
    PictureRequest request;
    EXPECT_EQ(DIBWidth(ReadVio(file, request, facts)), 4);
    EXPECT_EQ(facts.frames, 2);
    EXPECT_EQ(facts.layers, (std::vector<std::string>{"One", "Layer 2"}));
    request.layer = 0;
    EXPECT_TRUE(ReadVio(file, request, facts)) << "a hidden layer too";
    request.layer = 2;
    EXPECT_FALSE(ReadVio(file, request, facts));
    request = {};
    request.frame = 2;
    EXPECT_FALSE(ReadVio(file, request, facts));

    ImageObject empty;
    empty.size = {5, 6};
    ImageObject again;
    ASSERT_TRUE(ReadImageObject(WriteImageObject(empty), again));
    EXPECT_EQ(again.size, (Size{5, 6}));
    EXPECT_FALSE(ReadVio(WriteImageObject(empty), {}, facts));
}

TEST(Vio, SurvivesDamage) {
    auto object = FullObject();
    object.images[0].m_arrLayers[0].m_bVisible = true;
    const auto file = WriteImageObject(object);
    test::ExpectSurvivesDamage(ReadVio, file);
    ImageObject read;
    for (std::size_t size = 0; size < file.size(); ++size) {
        EXPECT_FALSE(ReadImageObject(ByteSpan(file).first(size), read)) << size << " bytes";
    }
    object.images[0].m_arrLayers[0].m_RasterSize.height = 2;
    EXPECT_FALSE(ReadImageObject(WriteImageObject(object), read)) << "a raster without all of its rows";

    // A layer that is one pixel in the file and huge when it is drawn; a larger image may have it.
    auto layer = Raster(0, 0, 1, {0xFF000000});
    layer.m_Rect = {0, 0, 2047, 2048};
    std::vector<CVniLayer> one;
    one.push_back(std::move(layer));
    auto image = Image({1, 1}, std::move(one));
    EXPECT_FALSE(image.Composite());
    image.m_Size = {1000, 1000};
    EXPECT_TRUE(image.Composite());
}

TEST(Vio, RastersAndBlocks) {
    const auto block = DIBFromSurface(test::RandomSurface(5, 3, 2));
    const auto raster = RasterFromDIB(block);
    EXPECT_EQ(LoadU32BE(raster.data()) >> 24, At(block, 0, 0) >> 16 & 0xFF) << "red of the top left pixel comes first";
    EXPECT_EQ(test::BytesOf(DIBFromRaster(raster, {5, 3})), test::BytesOf(block));
    EXPECT_EQ(RasterFromDIB(test::Picture32(1, {0xFF102030})),
              RasterFromDIB(ConvertDIBTo24(test::Picture32(1, {0xFF102030}))));
    EXPECT_FALSE(DIBFromRaster(raster, {5, 4}));
    EXPECT_TRUE(RasterFromDIB({}).empty());
}

} // namespace
} // namespace pelorin
