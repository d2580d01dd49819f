// How values are written on the command line. Every function throws `UsageError` for a text that is no such value.
#pragma once

#include "base/geometry.h"
#include "icon/icon_format.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pelorin::cli {

/// 0xAARRGGBB, alpha 255 where the text has none.
struct Color {
    std::uint32_t argb = 0xFF000000;
    [[nodiscard]] std::uint32_t Rgb() const { return argb & 0xFFFFFF; }
    friend bool operator==(const Color&, const Color&) = default;
};

void ParseValue(std::string_view text, std::string& value);
void ParseValue(std::string_view text, int& value);
/// With a point as the decimal sign, whatever the language.
void ParseValue(std::string_view text, double& value);
/// "WxH", or one number for a square; both sides from 1 to 32,768.
void ParseValue(std::string_view text, Size& value);
/// "WIDTHxHEIGHTxBITS" with bits 1, 4, 8, 24 or 32.
void ParseValue(std::string_view text, IconFormat& value);
/// "RRGGBB", "#RRGGBB", the same with two more digits of alpha, or a colour's name.
void ParseValue(std::string_view text, Color& value);

template <class T>
void ParseValue(std::string_view text, std::optional<T>& value) {
    T parsed{};
    ParseValue(text, parsed);
    value = std::move(parsed);
}
/// Appends one value for each part between commas.
template <class T>
void ParseValue(std::string_view text, std::vector<T>& values) {
    for (;;) {
        const auto comma = text.find(',');
        ParseValue(text.substr(0, comma), values.emplace_back());
        if (comma == std::string_view::npos) return;
        text.remove_prefix(comma + 1);
    }
}

/// "#RRGGBB", or "#RRGGBBAA" when `withAlpha`.
[[nodiscard]] std::string ColorText(std::uint32_t argb, bool withAlpha = false);

} // namespace pelorin::cli
