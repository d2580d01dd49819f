#include "cli/icon_choice.h"

#include "base/files.h"
#include "base/text.h"

#include <fmt/format.h>

#include <charconv>
#include <set>

namespace pelorin::cli {

namespace {

std::optional<int> WholeNumber(std::string_view text) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < 0) return {};
    return value;
}

/// First and last position, from 1, of "3" and "3-5".
std::optional<std::pair<int, int>> Positions(std::string_view text) {
    const auto dash = text.find('-');
    const auto first = WholeNumber(text.substr(0, dash));
    const auto last = dash == std::string_view::npos ? first : WholeNumber(text.substr(dash + 1));
    if (!first || !last) return {};
    return std::pair(*first, *last);
}

void Choose(std::span<const IconLabel> icons, const std::string& text, std::set<int>& chosen) {
    const int count = static_cast<int>(icons.size());
    const auto named = [&](const auto& wanted) {
        bool any = false;
        for (int i = 0; i < count; ++i) {
            if (!wanted(icons[static_cast<std::size_t>(i)])) continue;
            chosen.insert(i);
            any = true;
        }
        return any;
    };
    if (named([&](const IconLabel& icon) { return !icon.name.empty() && EqualsNoCase(icon.name, text); })) return;
    if (text.starts_with('#')) {
        const auto id = WholeNumber(std::string_view(text).substr(1));
        if (id && named([&](const IconLabel& icon) { return icon.id == *id; })) return;
        throw FileException(fmt::format("there is no icon with the number \"{}\"", text));
    }
    const auto positions = Positions(text);
    if (!positions) throw FileException(fmt::format("there is no icon called \"{}\"", text));
    if (positions->first < 1 || positions->second > count || positions->first > positions->second) {
        throw FileException(fmt::format("there is no icon {}, the last is {}", text, count));
    }
    for (int i = positions->first; i <= positions->second; ++i) chosen.insert(i - 1);
}

} // namespace

std::vector<int> ChooseIcons(std::span<const IconLabel> icons, const std::vector<std::string>& texts,
                             std::optional<int> language) {
    std::set<int> chosen;
    for (const auto& text : texts) Choose(icons, text, chosen);
    if (language) {
        std::erase_if(chosen, [&](int i) { return icons[static_cast<std::size_t>(i)].language != *language; });
        if (chosen.empty()) throw FileException(fmt::format("no such icon is in language {}", *language));
    }
    return {chosen.begin(), chosen.end()};
}

} // namespace pelorin::cli
