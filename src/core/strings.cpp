#include "core/strings.h"

#include <algorithm>
#include <iterator>

namespace pelorin {

namespace {

struct Row {
    int number;
    std::string_view text;
};

constexpr Row kTexts[] = {
#define STRING(number, name, text) {number, text},
#include "core/strings.def"
#undef STRING
};

static_assert(std::ranges::adjacent_find(kTexts, [](const Row& a, const Row& b) { return a.number >= b.number; }) ==
                  std::end(kTexts),
              "strings.def is ascending by number, each number once");

std::map<int, std::string> g_languageTexts;

} // namespace

std::string_view BuiltInText(int number) {
    const auto row = std::ranges::lower_bound(kTexts, number, {}, &Row::number);
    return row != std::end(kTexts) && row->number == number ? row->text : std::string_view{};
}

std::string LoadText(int number) {
    const auto own = g_languageTexts.find(number);
    return own != g_languageTexts.end() ? own->second : std::string(BuiltInText(number));
}

void SetLanguageTexts(std::map<int, std::string> texts) {
    g_languageTexts = std::move(texts);
}

TitledText SplitAtBar(std::string_view message) {
    const auto bar = message.find('|');
    if (bar == std::string_view::npos) return {LoadText(str::kProgramName), std::string(message)};
    return {std::string(message.substr(0, bar)), std::string(message.substr(bar + 1))};
}

} // namespace pelorin
