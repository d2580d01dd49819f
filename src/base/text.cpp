#include "base/text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace pelorin {

char AsciiLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

char AsciiUpper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
}

std::string ToLower(std::string_view text) {
    std::string out(text);
    std::transform(out.begin(), out.end(), out.begin(), AsciiLower);
    return out;
}

std::string ToUpper(std::string_view text) {
    std::string out(text);
    std::transform(out.begin(), out.end(), out.begin(), AsciiUpper);
    return out;
}

bool EqualsNoCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && CompareNoCase(a, b) == 0;
}

bool StartsWithNoCase(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() && EqualsNoCase(text.substr(0, prefix.size()), prefix);
}

int CompareNoCase(std::string_view a, std::string_view b) {
    const auto common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i) {
        const int difference =
            static_cast<unsigned char>(AsciiLower(a[i])) - static_cast<unsigned char>(AsciiLower(b[i]));
        if (difference != 0) return difference;
    }
    return a.size() < b.size() ? -1 : a.size() > b.size() ? 1 : 0;
}

std::string_view Trim(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n\v\f";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::vector<std::string> Split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    for (;;) {
        const auto at = text.find(separator);
        parts.emplace_back(text.substr(0, at));
        if (at == std::string_view::npos) return parts;
        text.remove_prefix(at + 1);
    }
}

std::string ReplaceAll(std::string text, std::string_view what, std::string_view with) {
    if (what.empty()) return text;
    for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size())) {
        text.replace(at, what.size(), with);
    }
    return text;
}

namespace {

// Length of the well-formed UTF-8 sequence at the start of `text`, 0 if there is none.
std::size_t SequenceLength(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const auto lead = byte(0);
    if (lead < 0x80) return 1;
    const std::size_t length = lead >= 0xC2 && lead < 0xE0   ? 2
                               : lead >= 0xE0 && lead < 0xF0 ? 3
                               : lead >= 0xF0 && lead < 0xF5 ? 4
                                                             : 0;
    if (length == 0 || text.size() < length) return 0;
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) return 0;
    }
    // Overlong forms, surrogates and values above U+10FFFF show in the second byte.
    const bool bad = (lead == 0xE0 && byte(1) < 0xA0) || (lead == 0xED && byte(1) > 0x9F) ||
                     (lead == 0xF0 && byte(1) < 0x90) || (lead == 0xF4 && byte(1) > 0x8F);
    return bad ? 0 : length;
}

// Windows-1252 differs from Latin-1 in these 32 places; the five that it leaves open keep their control codes.
constexpr std::array<char32_t, 32> kWindows1252High = {0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                       0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D,   0x017D, 0x8F,
                                                       0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                       0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

} // namespace

bool IsValidUtf8(std::string_view text) {
    while (!text.empty()) {
        const auto length = SequenceLength(text);
        if (length == 0) return false;
        text.remove_prefix(length);
    }
    return true;
}

std::string Counted(std::size_t count, std::string_view one) {
    return std::to_string(count).append(" ").append(one).append(count == 1 ? "" : "s");
}

std::string Counted(int count, std::string_view one) {
    return Counted(static_cast<std::size_t>(count), one);
}

std::string Windows1252ToUtf8(std::string_view text) {
    std::string out;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        AppendUtf8(out, byte >= 0x80 && byte < 0xA0 ? kWindows1252High[byte - 0x80u] : byte);
    }
    return out;
}

std::string DecodeText(std::string_view text) {
    return IsValidUtf8(text) ? std::string(text) : Windows1252ToUtf8(text);
}

std::string Utf16ToUtf8(std::u16string_view text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t c = text[i];
        if (c >= 0xD800 && c < 0xE000) {
            const bool paired = c < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000;
            c = paired ? 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00u) : 0xFFFD;
        }
        AppendUtf8(out, c);
    }
    return out;
}

std::u16string Utf8ToUtf16(std::string_view text) {
    std::u16string out;
    while (!text.empty()) {
        const auto length = SequenceLength(text);
        char32_t c = 0xFFFD;
        if (length != 0) {
            c = static_cast<unsigned char>(text[0]);
            if (length > 1) c &= (0x7Fu >> length);
            for (std::size_t i = 1; i < length; ++i) c = c << 6 | (static_cast<unsigned char>(text[i]) & 0x3F);
        }
        if (c >= 0x10000) {
            out.push_back(static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)));
            out.push_back(static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
        } else {
            out.push_back(static_cast<char16_t>(c));
        }
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return out;
}

namespace {

// Small letters: every `step`th character from `first` on has its capital `distance` before it.
struct SmallLetters {
    char16_t first, last;
    int step, distance;
};
constexpr SmallLetters kSmallLetters[] = {
    {u'a', u'z', 1, 32},     {0x00E0, 0x00F6, 1, 32}, {0x00F8, 0x00FE, 1, 32}, {0x00FF, 0x00FF, 1, -121},
    {0x0101, 0x012F, 2, 1},  {0x0133, 0x0137, 2, 1},  {0x013A, 0x0148, 2, 1},  {0x014B, 0x0177, 2, 1},
    {0x017A, 0x017E, 2, 1},  {0x03AC, 0x03AC, 1, 38}, {0x03AD, 0x03AF, 1, 37}, {0x03B1, 0x03C1, 1, 32},
    {0x03C3, 0x03CB, 1, 32}, {0x03CC, 0x03CC, 1, 64}, {0x03CD, 0x03CE, 1, 63}, {0x0430, 0x044F, 1, 32},
    {0x0450, 0x045F, 1, 80},
};

char16_t Raised(char16_t letter) {
    for (const auto& small : kSmallLetters) {
        if (letter < small.first || letter > small.last || (letter - small.first) % small.step != 0) continue;
        return static_cast<char16_t>(letter - small.distance);
    }
    return letter;
}

} // namespace

std::u16string ToUpper(std::u16string text) {
    std::ranges::transform(text, text.begin(), Raised);
    return text;
}

std::string RaiseFirstLetter(std::string_view text) {
    auto characters = Utf8ToUtf16(text.substr(0, SequenceLength(text)));
    if (characters.empty()) return std::string(text);
    characters.front() = Raised(characters.front());
    return Utf16ToUtf8(characters).append(text.substr(SequenceLength(text)));
}

void AppendUtf8(std::string& out, char32_t c) {
    const auto put = [&](char32_t byte) { out.push_back(static_cast<char>(byte)); };
    if (c < 0x80) {
        put(c);
    } else if (c < 0x800) {
        put(0xC0 | c >> 6);
        put(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        put(0xE0 | c >> 12);
        put(0x80 | (c >> 6 & 0x3F));
        put(0x80 | (c & 0x3F));
    } else {
        put(0xF0 | c >> 18);
        put(0x80 | (c >> 12 & 0x3F));
        put(0x80 | (c >> 6 & 0x3F));
        put(0x80 | (c & 0x3F));
    }
}

std::string_view ClipUtf8(std::string_view text, std::size_t maxBytes) {
    if (text.size() <= maxBytes) return text;
    // Bytes that are no text are not stepped over.
    for (std::size_t back = 0; back < 4 && back <= maxBytes; ++back) {
        if ((static_cast<unsigned char>(text[maxBytes - back]) & 0xC0) != 0x80) return text.substr(0, maxBytes - back);
    }
    return text.substr(0, maxBytes);
}

std::size_t EditDistance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> before, above, row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
    const auto same = [&](std::size_t i, std::size_t j) { return AsciiLower(a[i - 1]) == AsciiLower(b[j - 1]); };
    for (std::size_t i = 1; i <= a.size(); ++i) {
        before = std::exchange(above, row);
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            row[j] = std::min({above[j] + 1, row[j - 1] + 1, above[j - 1] + (same(i, j) ? 0 : 1)});
            const bool swapped = i > 1 && j > 1 && same(i, j - 1) && same(i - 1, j);
            if (swapped) row[j] = std::min(row[j], before[j - 2] + 1);
        }
    }
    return row[b.size()];
}

} // namespace pelorin
