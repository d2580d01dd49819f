// Text: UTF-8 everywhere inside; 8-bit text of files and UTF-16 of resources are turned into it at the edge.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace pelorin {

/// ASCII letters only; every other byte stays, so that UTF-8 passes unharmed.
[[nodiscard]] char AsciiLower(char c);
[[nodiscard]] char AsciiUpper(char c);
[[nodiscard]] std::string ToLower(std::string_view text);
[[nodiscard]] std::string ToUpper(std::string_view text);
/// Letters of the Latin, Greek and Cyrillic alphabets.
[[nodiscard]] std::u16string ToUpper(std::u16string text);
[[nodiscard]] bool EqualsNoCase(std::string_view a, std::string_view b);
[[nodiscard]] bool StartsWithNoCase(std::string_view text, std::string_view prefix);
/// Negative, 0 or positive, by ASCII-folded bytes.
[[nodiscard]] int CompareNoCase(std::string_view a, std::string_view b);

/// Without blanks, tabs and line ends at both ends.
[[nodiscard]] std::string_view Trim(std::string_view text);
/// The parts between the separators; an empty text has one empty part.
[[nodiscard]] std::vector<std::string> Split(std::string_view text, char separator);
[[nodiscard]] std::string ReplaceAll(std::string text, std::string_view what, std::string_view with);
/// "1 icon", "3 icons".
[[nodiscard]] std::string Counted(std::size_t count, std::string_view one);
[[nodiscard]] std::string Counted(int count, std::string_view one);

[[nodiscard]] bool IsValidUtf8(std::string_view text);
[[nodiscard]] std::string Windows1252ToUtf8(std::string_view text);
/// 8-bit text out of a file: as it is where it is valid UTF-8, else taken as Windows-1252.
[[nodiscard]] std::string DecodeText(std::string_view text);
/// Unpaired surrogates become U+FFFD.
[[nodiscard]] std::string Utf16ToUtf8(std::u16string_view text);
[[nodiscard]] std::u16string Utf8ToUtf16(std::string_view text);
/// Appends one code point.
void AppendUtf8(std::string& out, char32_t codePoint);
/// The whole characters of `text` that fit into `maxBytes`.
[[nodiscard]] std::string_view ClipUtf8(std::string_view text, std::size_t maxBytes);

/// The first letter turned to upper case, in the Latin, Greek and Cyrillic alphabets.
[[nodiscard]] std::string RaiseFirstLetter(std::string_view text);

/// Edits that turn `a` into `b` (one character added, taken away or changed, or two neighbours swapped), letters
/// compared without case.
[[nodiscard]] std::size_t EditDistance(std::string_view a, std::string_view b);

} // namespace pelorin
