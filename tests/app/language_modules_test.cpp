#include "app/language_modules.h"
#include "support/pe_builder.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

Bytes VersionResource(std::uint32_t high, std::uint32_t low) {
    ByteWriter out;
    out.U16LE(92);
    out.U16LE(52);
    out.U16LE(0);
    for (const char c : std::string("VS_VERSION_INFO")) out.U16LE(static_cast<std::uint32_t>(c));
    out.Zeros(4);
    out.U32LE(0xFEEF04BD);
    out.Zeros(12);
    out.U32LE(high);
    out.U32LE(low);
    out.Zeros(28);
    return out.Take();
}

Bytes StringBlock(const std::vector<std::u16string>& texts) {
    ByteWriter out;
    for (std::size_t i = 0; i < 16; ++i) {
        const auto text = i < texts.size() ? texts[i] : std::u16string();
        out.U16LE(static_cast<std::uint32_t>(text.size()));
        for (const char16_t c : text) out.U16LE(c);
    }
    return out.Take();
}

// Strings 55712 and up, and a block that claims more than it has.
Bytes Module(std::uint32_t high, std::uint32_t low) {
    const auto version = VersionResource(high, low);
    const auto block = StringBlock({u"Bibliothèque d'icônes", u"", u"Icône"});
    const Bytes broken = {2, 0, 'o', 0, 'k', 0, 0xFF, 0xFF, 'x', 0};
    ResourceTree tree;
    tree.Set(std::uint16_t{6}, std::uint16_t{3483}, 1036, block);
    tree.Set(std::uint16_t{6}, std::uint16_t{1}, 1036, broken);
    tree.Set(std::uint16_t{16}, std::uint16_t{1}, 1036, version);
    tree.Sort();
    test::PeSpec spec;
    spec.sections.push_back({".rsrc", {}});
    const auto address = test::AddressOf(spec, 0);
    spec.sections[0].bytes = LayOutResourceTree(tree, address);
    spec.directories.push_back(
        {PeDirectory::Resources, address, static_cast<std::uint32_t>(spec.sections[0].bytes.size())});
    return test::BuildPe(spec);
}

TEST(LanguageModules, StringTablesByNumber) {
    const auto file = Module(0x00000001, 0x00000000);
    const auto texts = ReadLanguageTexts(file, "0.1.0");
    EXPECT_EQ(texts, (std::map<int, std::string>{{0, "ok"}, {55712, "Bibliothèque d'icônes"}, {55714, "Icône"}}));
    EXPECT_TRUE(ReadLanguageTexts(file, "0.2.0").empty());
    EXPECT_TRUE(ReadLanguageTexts(Module(0x00020003, 0x00040000), "0.1.0").empty());
    EXPECT_FALSE(ReadLanguageTexts(Module(0x00020003, 0x00040000), "2.3.4").empty());
    EXPECT_TRUE(ReadLanguageTexts(AsBytes("MZ and nothing else"), "0.1.0").empty());
    for (std::size_t size = 0; size < file.size(); size += 7) {
        (void)ReadLanguageTexts(ByteSpan(file).first(size), "0.1.0"); // what is cut off must not be reached for
    }

    const test::TempFolder folder;
    EXPECT_TRUE(PeLanguageModules().ReadTexts(folder.Path("ResFra.dll")).empty());
    WriteFileSafely(folder.Path("ResFra.dll"), file);
    EXPECT_EQ(PeLanguageModules().ReadTexts(folder.Path("ResFra.dll")).empty(),
              std::string_view(PELORIN_VERSION) != "0.1.0");
}

} // namespace
} // namespace pelorin
