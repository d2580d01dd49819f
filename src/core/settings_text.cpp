// Options as a person reads and writes them.

#include "base/text.h"
#include "core/settings.h"

#include <fmt/format.h>

#include <charconv>

namespace pelorin {

namespace {

struct SpecialColor {
    std::string_view name;
    std::uint32_t value;
};

constexpr SpecialColor kSpecialColors[] = {{"none", 0xFF000000}, {"transparent", 0xF1000000}, {"inverted", 0xF2000000}};

struct FlagWord {
    std::string_view word;
    bool value;
};

constexpr FlagWord kFlagWords[] = {{"1", true},  {"yes", true}, {"on", true},   {"true", true},
                                   {"0", false}, {"no", false}, {"off", false}, {"false", false}};

// Red and blue change places: people write RRGGBB.
constexpr std::uint32_t SwapRedAndBlue(std::uint32_t color) {
    return (color & 0xFF) << 16 | (color & 0xFF00) | (color >> 16 & 0xFF);
}

std::string ColorForPerson(std::uint32_t color) {
    for (const auto& special : kSpecialColors) {
        if (special.value == color) return std::string(special.name);
    }
    return fmt::format("#{:06X}", SwapRedAndBlue(color));
}

// From the stored form; colours alone differ in the two.
std::string ForPerson(const Setting& setting, const std::string& stored) {
    if (!std::holds_alternative<std::uint32_t*>(setting.value)) return stored;
    std::int64_t color = 0;
    (void)std::from_chars(stored.data(), stored.data() + stored.size(), color);
    return ColorForPerson(static_cast<std::uint32_t>(color));
}

std::optional<std::uint32_t> ColorFromPerson(std::string_view text) {
    for (const auto& special : kSpecialColors) {
        if (EqualsNoCase(special.name, text)) return special.value;
    }
    if (text.starts_with('#')) text.remove_prefix(1);
    std::uint32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
    if (text.size() != 6 || error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return SwapRedAndBlue(value);
}

std::optional<std::string> SetFlag(bool& flag, std::string_view text) {
    for (const auto& word : kFlagWords) {
        if (!EqualsNoCase(word.word, text)) continue;
        flag = word.value;
        return std::nullopt;
    }
    return "takes 0 or 1 (or yes, no, on, off, true, false)";
}

std::optional<std::string> SetNumber(int& number, const Setting& setting, std::string_view text) {
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc::invalid_argument || end != text.data() + text.size()) return "takes a whole number";
    if (error != std::errc{} || value < setting.least || value > setting.most) {
        return fmt::format("takes a number from {} to {}", setting.least, setting.most);
    }
    number = static_cast<int>(value);
    return std::nullopt;
}

} // namespace

std::string_view TypeName(const Setting& setting) {
    static constexpr std::string_view kNames[] = {"flag", "number", "text", "colour"};
    return kNames[setting.value.index()];
}

std::string DisplayText(const Setting& setting) {
    return ForPerson(setting, StoredText(setting));
}

std::string DefaultDisplayText(const Setting& setting) {
    return ForPerson(setting, DefaultStored(setting));
}

std::optional<std::string> SetFromPerson(const Setting& setting, std::string_view text) {
    if (auto* const* flag = std::get_if<bool*>(&setting.value)) return SetFlag(**flag, text);
    if (auto* const* number = std::get_if<int*>(&setting.value)) return SetNumber(**number, setting, text);
    if (auto* const* own = std::get_if<std::string*>(&setting.value)) {
        **own = text;
        return std::nullopt;
    }
    const auto color = ColorFromPerson(text);
    if (!color) return "takes a colour, RRGGBB or #RRGGBB, or one of none, transparent, inverted";
    **std::get_if<std::uint32_t*>(&setting.value) = *color;
    return std::nullopt;
}

} // namespace pelorin
