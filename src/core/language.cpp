#include "core/language.h"

#include "core/strings.h"

#include <algorithm>
#include <iterator>

namespace pelorin {

namespace {

struct PrimaryLanguageRow {
    std::uint16_t primary;
    int index;
};

// Croatian (15) is missing: its primary language is Serbian's, and only the setting reaches it.
constexpr PrimaryLanguageRow kPrimaryLanguages[] = {
    {0x02, 16}, {0x04, 14}, {0x05, 6},  {0x06, 10}, {0x07, 5},  {0x08, 17}, {0x0A, 4},  {0x0B, 9},
    {0x0C, 2},  {0x0D, 18}, {0x0E, 19}, {0x10, 3},  {0x11, 20}, {0x12, 21}, {0x13, 7},  {0x14, 8},
    {0x15, 22}, {0x16, 11}, {0x19, 12}, {0x1A, 23}, {0x1B, 24}, {0x1D, 13}, {0x22, 26}, {0x24, 25},
};

} // namespace

int AutomaticLanguage(std::uint16_t primaryLanguage) {
    const auto row = std::ranges::find(kPrimaryLanguages, primaryLanguage, &PrimaryLanguageRow::primary);
    return row == std::end(kPrimaryLanguages) ? kEnglish : row->index;
}

std::string LanguageDisplayName(int index) {
    // From the built-in texts: a module must not rename the modules.
    return index < 0 || index >= kLanguageCount ? std::string{} : std::string(BuiltInText(str::kLanguage00 + index));
}

std::string LanguageModuleName(int index) {
    if (index <= kEnglish) return {};
    const auto name = LanguageDisplayName(index);
    const auto open = name.rfind('('), close = name.rfind(')');
    return open == std::string::npos || close < open ? std::string{} : name.substr(open + 1, close - open - 1);
}

} // namespace pelorin
