// The program's texts by number.
//
// The built-in English stands in `strings.def`; a language module puts its own texts in front. Numbers that nothing
// knows give an empty text.
#pragma once

#include <fmt/printf.h>

#include <map>
#include <string>
#include <string_view>

namespace pelorin {

/// The numbers by name: `str::kUntitled`.
namespace str {
#define STRING(number, name, text) inline constexpr int k##name = number;
#include "core/strings.def"
#undef STRING
} // namespace str

/// The text of the language in use.
[[nodiscard]] std::string LoadText(int number);
/// The built-in text; it lives as long as the program.
[[nodiscard]] std::string_view BuiltInText(int number);

/// Texts of a language module, by number. From here on they stand before the built-in ones; an empty table brings
/// English back. Not to be called while other threads look texts up.
void SetLanguageTexts(std::map<int, std::string> texts);

/// Puts the arguments into a text of the table. A module's text whose places do not fit the arguments gives way to the
/// built-in one.
template <class... Args>
[[nodiscard]] std::string FormatText(int number, const Args&... args) {
    for (const auto& text : {LoadText(number), std::string(BuiltInText(number))}) {
        try {
            return fmt::sprintf(text, args...);
        } catch (const fmt::format_error&) {
            continue;
        }
    }
    return LoadText(number);
}

/// A message in two parts: what stands before the first bar is the title. Without a bar the title is the program's
/// name.
struct TitledText {
    std::string title;
    std::string text;
};
[[nodiscard]] TitledText SplitAtBar(std::string_view message);

} // namespace pelorin
