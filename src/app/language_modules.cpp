#include "app/language_modules.h"

#include "base/files.h"
#include "base/text.h"
#include "containers/resource_tree.h"

#include <fmt/format.h>

namespace pelorin {

namespace {

constexpr std::uint16_t kStringTable = 6, kVersionInfo = 16;
constexpr std::uint32_t kVersionSignature = 0xFEEF04BD;
constexpr int kStringsInBlock = 16;

// "0.1.0", from the first version resource; empty without one.
std::string ProductVersion(const ResourceTree& tree) {
    const auto* type = tree.Find(kVersionInfo);
    if (type == nullptr || type->names.empty() || type->names[0].languages.empty()) return {};
    ByteReader in(type->names[0].languages[0].bytes);
    in.Skip(40);
    const auto signature = in.U32LE();
    in.Skip(12);
    const auto high = in.U32LE(), low = in.U32LE();
    if (!in.Ok() || signature != kVersionSignature) return {};
    return fmt::format("{}.{}.{}", high >> 16, high & 0xFFFF, low >> 16);
}

void ReadBlock(ByteSpan bytes, int firstNumber, std::map<int, std::string>& texts) {
    ByteReader in(bytes);
    for (int i = 0; i < kStringsInBlock; ++i) {
        const auto length = in.U16LE();
        ByteReader characters(in.Take(std::uint64_t{length} * 2));
        if (!in.Ok()) return;
        std::u16string text;
        for (int c = 0; c < length; ++c) text += static_cast<char16_t>(characters.U16LE());
        if (!text.empty()) texts[firstNumber + i] = Utf16ToUtf8(text);
    }
}

} // namespace

std::map<int, std::string> ReadLanguageTexts(ByteSpan file, std::string_view version) {
    std::map<int, std::string> texts;
    const auto image = PeImage::Parse(file);
    if (!image) return texts;
    const auto tree = ReadResourceTree(*image);
    const auto* tables = tree.Find(kStringTable);
    if (tables == nullptr || ProductVersion(tree) != version) return texts;
    for (const auto& block : tables->names) {
        if (block.key.named || block.key.id == 0 || block.languages.empty()) continue;
        ReadBlock(block.languages[0].bytes, (block.key.id - 1) * kStringsInBlock, texts);
    }
    return texts;
}

std::map<int, std::string> PeLanguageModules::ReadTexts(const std::string& path) {
    constexpr std::uint64_t kLargestModule = 64u << 20;
    try {
        return ReadLanguageTexts(FileView::Open(path, kLargestModule).Data(), PELORIN_VERSION);
    } catch (const FileException&) {
        return {};
    }
}

} // namespace pelorin
