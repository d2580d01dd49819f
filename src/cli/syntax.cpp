#include "cli/syntax.h"

#include "base/text.h"
#include "cli/suggestion.h"
#include "cli/usage_error.h"

#include <fmt/format.h>

#include <charconv>
#include <cmath>

namespace pelorin::cli {

namespace {

struct NamedColor {
    std::string_view name;
    std::uint32_t argb;
};
constexpr NamedColor kNamedColors[] = {
    {"black", 0xFF000000}, {"maroon", 0xFF800000},  {"green", 0xFF008000},   {"olive", 0xFF808000},
    {"navy", 0xFF000080},  {"purple", 0xFF800080},  {"teal", 0xFF008080},    {"silver", 0xFFC0C0C0},
    {"gray", 0xFF808080},  {"red", 0xFFFF0000},     {"lime", 0xFF00FF00},    {"yellow", 0xFFFFFF00},
    {"blue", 0xFF0000FF},  {"fuchsia", 0xFFFF00FF}, {"magenta", 0xFFFF00FF}, {"aqua", 0xFF00FFFF},
    {"cyan", 0xFF00FFFF},  {"white", 0xFFFFFFFF},   {"orange", 0xFFFFA500},  {"transparent", 0x00000000},
};

template <class T>
bool WholeNumber(std::string_view text, T& value, int base = 10) {
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value, base);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

[[noreturn]] void Refuse(std::string_view text, std::string_view wanted) {
    throw UsageError(fmt::format("\"{}\" is not {}", text, wanted));
}

bool IsSide(int side) {
    return side >= 1 && side <= 32768;
}

} // namespace

void ParseValue(std::string_view text, std::string& value) {
    value = text;
}

void ParseValue(std::string_view text, int& value) {
    if (!WholeNumber(text, value)) Refuse(text, "a whole number");
}

void ParseValue(std::string_view text, double& value) {
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool whole = result.ec == std::errc() && result.ptr == text.data() + text.size();
    if (!whole || !std::isfinite(value)) Refuse(text, "a number");
}

void ParseValue(std::string_view text, Size& value) {
    const auto parts = Split(ToLower(text), 'x');
    const bool good = parts.size() <= 2 && WholeNumber<int>(parts.front(), value.width) &&
                      WholeNumber<int>(parts.back(), value.height) && IsSide(value.width) && IsSide(value.height);
    if (!good) Refuse(text, "a size; write WxH, as 48x32, or one number");
}

void ParseValue(std::string_view text, IconFormat& value) {
    const auto parts = Split(ToLower(text), 'x');
    const bool good = parts.size() == 3 && WholeNumber(parts[0], value.width) && WholeNumber(parts[1], value.height) &&
                      WholeNumber(parts[2], value.bits) && IsSide(value.width) && IsSide(value.height);
    if (!good) Refuse(text, "a format; write WIDTHxHEIGHTxBITS, as 48x48x32");
    if (!IsIconDepth(value.bits)) Refuse(text, "a format: the depth is one of 1, 4, 8, 24 and 32 bits");
}

void ParseValue(std::string_view text, Color& value) {
    const auto digits = text.starts_with('#') ? text.substr(1) : text;
    std::uint32_t number = 0;
    if ((digits.size() == 6 || digits.size() == 8) && WholeNumber(digits, number, 16)) {
        value.argb = digits.size() == 6 ? 0xFF000000 | number : number << 24 | number >> 8;
        return;
    }
    std::vector<std::string> names;
    for (const auto& color : kNamedColors) {
        if (EqualsNoCase(text, color.name)) {
            value.argb = color.argb;
            return;
        }
        names.emplace_back(color.name);
    }
    Refuse(text, "a colour; write RRGGBB, #RRGGBB or a name" + DidYouMean(text, names));
}

std::string ColorText(std::uint32_t argb, bool withAlpha) {
    const auto rgb = argb & 0xFFFFFF;
    return withAlpha ? fmt::format("#{:06X}{:02X}", rgb, argb >> 24) : fmt::format("#{:06X}", rgb);
}

} // namespace pelorin::cli
