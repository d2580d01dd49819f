// The languages: English is built in, the others come as modules "Res???.dll" that replace the texts.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace pelorin {

inline constexpr int kLanguageCount = 27; ///< index 0 is the automatic choice, 1 English
inline constexpr int kEnglish = 1;

/// The index for a primary language of the system; English for every one without a module of its own.
[[nodiscard]] int AutomaticLanguage(std::uint16_t primaryLanguage);
/// "Français (ResFra.dll)"; empty for an index out of range.
[[nodiscard]] std::string LanguageDisplayName(int index);
/// "ResFra.dll", what stands in the display name's parentheses; empty for the automatic choice, English, and an index
/// out of range.
[[nodiscard]] std::string LanguageModuleName(int index);

} // namespace pelorin
