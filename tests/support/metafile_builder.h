// Metafiles record by record, and their pictures as text.
#pragma once

#include "formats/metafile.h"
#include "pixel/color.h"
#include "support/dib_builder.h"

#include <cstring>
#include <string>
#include <vector>

namespace pelorin::test {

inline constexpr Argb kClear = 0x00FFFFFF, kBlack = 0xFF000000, kRed = 0xFFFF0000, kBlue = 0xFF0000FF,
                      kMagenta = 0xFFFF00FF;

using Words = std::vector<int>;

struct WmfBuilder {
    ByteWriter out;

    void Header() {
        for (const int word : {1, 9, 0x300, 0, 0, 4, 0, 0, 0}) out.U16LE(static_cast<std::uint32_t>(word));
    }
    WmfBuilder& Record(int function, const Words& words = {}) {
        out.U32LE(static_cast<std::uint32_t>(words.size() + 3));
        out.U16LE(static_cast<std::uint32_t>(function));
        for (const int word : words) out.U16LE(static_cast<std::uint32_t>(word) & 0xFFFF);
        return *this;
    }
    // A brush of a colour and no pen, as objects `first` and `first` + 1, and chosen.
    WmfBuilder& Fill(int first, int blue, int green, int red) {
        Record(0x02FC, {0, red | green << 8, blue, 0}).Record(0x02FA, {5, 0, 0, 0, 0});
        return Record(0x012D, {first}).Record(0x012D, {first + 1});
    }
    Bytes Done() {
        Record(0);
        return out.Take();
    }
};

inline WmfBuilder Placeable(int width, int height, int perInch) {
    WmfBuilder file;
    file.out.U32LE(0x9AC6CDD7);
    for (const int word : {0, 0, 0, width, height, perInch, 0, 0, 0}) file.out.U16LE(static_cast<std::uint32_t>(word));
    file.Header();
    return file;
}

inline DibBlock Play(ByteSpan file, int box = 0, bool preview = false) {
    PictureRequest request;
    request.box = {box, box};
    request.preview = preview;
    PictureFacts facts;
    return ReadMetafile(file, request, facts);
}

inline Size SizeOf(const DibBlock& block) {
    return {DIBWidth(block), DIBHeight(block)};
}

/// An enhanced metafile; records are given in words of 32 bits.
struct EmfBuilder {
    ByteWriter out;

    // A device of 10 pixels to the millimetre and a picture of `width` x `height` pixels that begins at `left`, `top`.
    EmfBuilder(int width, int height, int left = 0, int top = 0) {
        for (const int value : {1, 88, 0, 0, 0, 0, left * 10, top * 10, (left + width) * 10, (top + height) * 10}) {
            out.I32LE(value);
        }
        out.Text(" EMF");
        out.Zeros(28);
        for (const int value : {3200, 2400, 320, 240}) out.I32LE(value);
    }
    EmfBuilder& Record(int type, const Words& values = {}) {
        out.I32LE(type);
        out.U32LE(static_cast<std::uint32_t>(8 + values.size() * 4));
        for (const int value : values) out.I32LE(value);
        return *this;
    }
    EmfBuilder& Fill(int color) {
        Record(39, {1, 0, color, 0}).Record(37, {1});
        return Record(37, {static_cast<int>(0x80000008u)});
    }
    Bytes Done() {
        Record(14, {0, 0, 20});
        return out.Take();
    }
};

inline int FloatBits(float value) {
    int bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

/// A bitmap of 32 bits with its header, the upper row first.
inline Words Bitmap(int width, int height, const Words& pixels) {
    Words words = {40, width, -height, 1 | 32 << 16, 0, 0, 0, 0, 0, 0};
    words.insert(words.end(), pixels.begin(), pixels.end());
    return words;
}

inline Words operator+(Words a, const Words& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

/// A letter a pixel, a line a row: '.' clear, k black, w white, r, g, b, m magenta, else '?'.
inline std::string Drawing(const DibBlock& block) {
    std::string text;
    for (int y = 0; y < DIBHeight(block); ++y) {
        for (int x = 0; x < DIBWidth(block); ++x) {
            switch (At(block, x, y)) {
            case kClear: text += '.'; break;
            case kBlack: text += 'k'; break;
            case 0xFFFFFFFF: text += 'w'; break;
            case kRed: text += 'r'; break;
            case 0xFF00FF00: text += 'g'; break;
            case kBlue: text += 'b'; break;
            case kMagenta: text += 'm'; break;
            default: text += '?';
            }
        }
        text += '\n';
    }
    return text;
}

} // namespace pelorin::test
