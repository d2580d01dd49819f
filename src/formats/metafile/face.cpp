#include "formats/metafile/face.h"

#include <string_view>

namespace pelorin::metafile {

namespace {

// A point is a hexadecimal column and a letter for the height, 'A' being -3; blanks part strokes.
struct Glyph {
    int advance;
    std::string_view strokes;
};

constexpr Glyph kAscii[] = {
    {4, ""},
    {4, "2N2G 2E2D"},
    {5, "1N1K 3N3K"},
    {8, "2D3N 5D6N 1G7G 1K7K"},
    {8, "7L5M3M1L1J3I5H7G7F5E3E1F 4N4D"},
    {12, "9N3D 3N1M1K3J4K4M3N 9H8G8E9DAEAG9H"},
    {9, "8D2K2M3N4N5M5K1G1E2D5D8H"},
    {3, "1N1K"},
    {5, "4N2L1I1G2D4A"},
    {5, "1N3L4I4G3D1A"},
    {5, "2N2J 0M4K 4M0K"},
    {8, "4L4F 1I7I"},
    {4, "2E2D1B"},
    {5, "1H4H"},
    {4, "2D2E"},
    {4, "0D4N"},
    {8, "3D1F1L3N5N7L7F5D3D"},
    {8, "2L4N4D"},
    {8, "1L2N6N7L7K1D7D"},
    {8, "1M2N5N7M7K5I3I 5I7H7F5D2D1E"},
    {8, "6D6N1G8G"},
    {8, "7N2N1I3J5J7H7F5D2D1E"},
    {8, "6N4N2L1H1F3D5D7F7H5J3J1H"},
    {8, "1N7N3D"},
    {8, "3I1K1L3N5N7L7K5I3I1G1F3D5D7F7G5I"},
    {8, "7J5H3H1J1L3N5N7L7J6F4D2D"},
    {4, "2D2E 2J2K"},
    {4, "2E2D1B 2J2K"},
    {8, "7L1I7F"},
    {8, "1K7K 1G7G"},
    {8, "1L7I1F"},
    {8, "1L2N6N7L7J4H4G 4E4D"},
    {14, "9G8F6F5H5I6K8K9J9FBFCHCKAN5N2K2G5D9D"},
    {9, "0D4N5N9D 2H7H"},
    {9, "1D1N6N7M7K6I1I 6I8H8F6D1D"},
    {10, "9L7N4N1L1F4D7D9F"},
    {10, "1D1N6N9K9G6D1D"},
    {9, "8D1D1N8N 1I7I"},
    {8, "1D1N8N 1I6I"},
    {11, "9L7N4N1L1F4D7D9F9H6H"},
    {10, "1D1N 9D9N 1I9I"},
    {4, "2D2N"},
    {7, "5N5F4D2D1F"},
    {9, "1D1N 8N1G 4I8D"},
    {8, "1N1D7D"},
    {12, "1D1N6DBNBD"},
    {10, "1D1N9D9N"},
    {11, "4D1F1L4N7NALAF7D4D"},
    {9, "1D1N6N8M8J6I1I"},
    {11, "4D1F1L4N7NALAF7D4D 6GAC"},
    {10, "1D1N6N8M8J6I1I 5I9D"},
    {9, "8L6N3N1L1K2J7H8G8F6D3D1F"},
    {9, "0N8N 4N4D"},
    {10, "1N1F3D7D9F9N"},
    {9, "0N4D8N"},
    {13, "0N3D6N9DCN"},
    {9, "0D8N 0N8D"},
    {9, "0N4I8N 4I4D"},
    {9, "0N8N0D8D"},
    {4, "3N1N1A3A"},
    {4, "0N4D"},
    {4, "1N3N3A1A"},
    {7, "1J3N5J"},
    {8, "0B8B"},
    {5, "1N3L"},
    {8, "1J3K5K6J6D 6H3H1G1E3D4D6F"},
    {8, "1N1D 1I3K5K7I7F5D3D1F"},
    {7, "6J5K3K1I1F3D5D6E"},
    {8, "7N7D 7I5K3K1I1F3D5D7F"},
    {8, "1H7H7I5K3K1I1F3D5D7E"},
    {4, "4N3N2M2D 0K4K"},
    {8, "7K7C5A3A1B 7I5K3K1I1F3D5D7F"},
    {8, "1N1D 1I3K5K6J6D"},
    {3, "1K1D 1N1M"},
    {3, "1K1B0A 1N1M"},
    {7, "1N1D 6K1G 3H6D"},
    {3, "1N1D"},
    {12, "1K1D 1I3K5K6J6D 6I8KAKBJBD"},
    {8, "1K1D 1I3K5K6J6D"},
    {8, "3D1F1I3K5K7I7F5D3D"},
    {8, "1K1A 1I3K5K7I7F5D3D1F"},
    {8, "7K7A 7I5K3K1I1F3D5D7F"},
    {5, "1K1D 1I3K4K"},
    {7, "6J4K3K1J1I5H6G6E4D3D1E"},
    {4, "2M2E3D4D 0K4K"},
    {8, "1K1F3D4D6F 6K6D"},
    {7, "0K3D6K"},
    {10, "0K2D5K7DAK"},
    {7, "0D6K 0K6D"},
    {7, "0K3D 6K2A0A"},
    {7, "0K6K0D6D"},
    {5, "4N3N2M2J1I2H2B3A4A"},
    {4, "2N2A"},
    {5, "1N2N3M3J4I3H3B2A1A"},
    {8, "1H2I3I5G6G7H"},
};
constexpr Glyph kBox = {8, "1D1N7N7D1D"};

// U+00C0 to U+00FF: letter and mark. 'o' is a ring, ',' a cedilla, '/' a stroke.
constexpr std::string_view kLetters = "AAAAAAACEEEEIIIIDNOOOOOxOUUUUYPsaaaaaaaceeeeiiiidnooooo/ouuuuypy";
constexpr std::string_view kMarks = "`'^~:o ,`'^:`'^:-~`'^~: /`'^:'  `'^~:o ,`'^:`'^: ~`'^~: /`'^:' :";

struct Mark {
    char name;
    std::string_view strokes; // over a small letter, around column 3
};
constexpr Mark kMarkStrokes[] = {
    {'`', "2N4L"},       {'\'', "4N2L"},  {'^', "1L3N5L"}, {'~', "1L2M4L5M"}, {':', "1M1N 5M5N"},
    {'o', "2M3N4M3L2M"}, {',', "3D3B2A"}, {'/', "1D6K"},   {'-', "0I4I"},
};

struct Likeness {
    char32_t letter;
    char like;
};
constexpr Likeness kLikenesses[] = {
    {0xA0, ' '},   {0xA6, '|'},   {0xA9, 'c'},   {0xAB, '<'},    {0xAD, '-'},    {0xAE, 'r'},
    {0xB0, 'o'},   {0xB4, '\''},  {0xB5, 'u'},   {0xB7, '.'},    {0xB8, ','},    {0xBB, '>'},
    {0x2010, '-'}, {0x2013, '-'}, {0x2014, '-'}, {0x2018, '\''}, {0x2019, '\''}, {0x201A, ','},
    {0x201C, '"'}, {0x201D, '"'}, {0x2022, '*'}, {0x2026, '.'},  {0x2212, '-'},  {0x2009, ' '},
};

// The letter that a composed one stands on, and its mark.
struct Parts {
    char32_t letter;
    char mark = ' ';
};

Parts Decompose(char32_t letter) {
    if (letter >= 0xC0 && letter <= 0xFF) {
        return {static_cast<char32_t>(kLetters[letter - 0xC0]), kMarks[letter - 0xC0]};
    }
    for (const auto& row : kLikenesses) {
        if (row.letter == letter) return {static_cast<char32_t>(row.like)};
    }
    return {letter};
}

const Glyph& Find(char32_t letter) {
    return letter >= 32 && letter < 32 + std::size(kAscii) ? kAscii[letter - 32] : kBox;
}

void AddStrokes(std::vector<std::vector<PointF>>& out, std::string_view strokes, double shiftX, double shiftY) {
    for (std::size_t at = 0; at + 1 < strokes.size();) {
        out.emplace_back();
        for (; at + 1 < strokes.size() && strokes[at] != ' '; at += 2) {
            const char column = strokes[at];
            const int x = column >= 'A' ? column - 'A' + 10 : column - '0';
            out.back().push_back({x + shiftX, strokes[at + 1] - 'A' - 3 + shiftY});
        }
        ++at;
    }
}

} // namespace

double FaceAdvance(char32_t letter) {
    return Find(Decompose(letter).letter).advance;
}

std::vector<std::vector<PointF>> FaceStrokes(char32_t letter) {
    const auto parts = Decompose(letter);
    const auto& glyph = Find(parts.letter);
    std::vector<std::vector<PointF>> strokes;
    AddStrokes(strokes, glyph.strokes, 0, 0);
    for (const auto& mark : kMarkStrokes) {
        const bool capital = parts.letter >= 'A' && parts.letter <= 'Z',
                   above = mark.name != ',' && mark.name != '/' && mark.name != '-';
        if (mark.name == parts.mark)
            AddStrokes(strokes, mark.strokes, glyph.advance / 2.0 - 3.5, capital && above ? 2.5 : 0);
    }
    return strokes;
}

} // namespace pelorin::metafile
