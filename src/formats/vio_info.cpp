#include "formats/vio.h"

#include <fmt/format.h>

#include <charconv>
#include <variant>

namespace pelorin {

namespace {

struct InfoField {
    std::string_view tag, word; ///< no word: nothing that is told
    std::variant<std::string VioInfo::*, int VioInfo::*> value;
};

// In the order in which they are written.
constexpr InfoField kFields[] = {
    {"Title", "title", &VioInfo::title},
    {"Type", "type", &VioInfo::type},
    {"Description", "description", &VioInfo::description},
    {"Author", "author", &VioInfo::author},
    {"AuthorURL", "author_url", &VioInfo::authorUrl},
    {"Keywords", "keywords", &VioInfo::keywords},
    {"LicenseType", "license_type", &VioInfo::licenseType},
    {"AccessType", "access_type", &VioInfo::accessType},
    {"LicenseText", "license_text", &VioInfo::licenseText},
    {"PurchaseURL", "purchase_url", &VioInfo::purchaseUrl},
    {"FileInfoPassword", "", &VioInfo::fileInfoPassword},
    {"MainPassword", "", &VioInfo::mainPassword},
};

std::string_view FindField(std::string_view text, std::string_view tag) {
    const auto open = fmt::format("<{}>", tag), close = fmt::format("</{}>", tag);
    auto from = text.find(open);
    if (from == std::string_view::npos) return {};
    from += open.size();
    const auto to = text.find(close, from);
    return to == std::string_view::npos ? std::string_view() : text.substr(from, to - from);
}

int NumberOf(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
    int number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

} // namespace

VioInfo ParseVioInfo(std::string_view text) {
    VioInfo info;
    for (const auto& [tag, word, value] : kFields) {
        const auto found = FindField(text, tag);
        if (const auto* string = std::get_if<std::string VioInfo::*>(&value)) {
            info.** string = found;
        } else {
            info.*std::get<int VioInfo::*>(value) = NumberOf(found);
        }
    }
    return info;
}

std::string FormatVioInfo(const VioInfo& info) {
    std::string text;
    for (const auto& field : kFields) {
        std::visit([&](auto member) { text += fmt::format("<{0}>{1}</{0}>", field.tag, info.*member); }, field.value);
    }
    return text;
}

std::vector<std::pair<std::string, std::string>> DescribeVioInfo(const VioInfo& info) {
    std::vector<std::pair<std::string, std::string>> told;
    const auto empty = VioInfo();
    for (const auto& field : kFields) {
        std::visit(
            [&](auto member) {
                if (field.word.empty() || info.*member == empty.*member) return;
                told.emplace_back(field.word, fmt::format("{}", info.*member));
            },
            field.value);
    }
    return told;
}

} // namespace pelorin
