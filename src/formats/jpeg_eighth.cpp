#include "formats/jpeg_eighth.h"

#include "formats/jpeg_codes.h"

#include <jpeglib.h>

#include <cstdio>

namespace pelorin {

namespace {

constexpr int kZigzag[64] = {0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,  12, 19, 26, 33, 40, 48,
                             41, 34, 27, 20, 13, 6,  7,  14, 21, 28, 35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23,
                             30, 37, 44, 51, 58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63};

// What the inverse transform leaves, as a sample. Values far outside wrap, as the library's do.
std::uint8_t ToSample(int value) {
    value = ((value & 1023) ^ 512) - 512;
    return static_cast<std::uint8_t>(std::clamp(value + 128, 0, 255));
}

int Descale(std::int64_t value, int bits) {
    return static_cast<int>((value + (1 << (bits - 1))) >> bits);
}

// Half of one dimension of the 2 x 2 transform: the even part is `even`, the odd part comes from coefficients 1, 3,
// 5, 7.
std::int64_t OddPart(std::int64_t c1, std::int64_t c3, std::int64_t c5, std::int64_t c7) {
    return c1 * 29692 - c3 * 10426 + c5 * 6967 - c7 * 5906; // in units of 1 / 8192
}

// The reduced inverse transform of an 8 x 8 block to 2 x 2, by columns, then rows. A bit of `columns` is set where a
// column has a coefficient; few have.
void Transform2x2(const std::int16_t* coefficients, unsigned columns, const std::uint16_t* quant, std::uint8_t* top,
                  std::uint8_t* bottom) {
    int rows[2][8] = {};
    for (const int x : {0, 1, 3, 5, 7}) {
        if ((columns >> x & 1) == 0) continue;
        const auto at = [&](int y) { return std::int64_t{coefficients[y * 8 + x]} * quant[y * 8 + x]; };
        const std::int64_t even = at(0) * (1 << 15), odd = OddPart(at(1), at(3), at(5), at(7));
        rows[0][x] = Descale(even + odd, 13);
        rows[1][x] = Descale(even - odd, 13);
    }
    std::uint8_t* out[2] = {top, bottom};
    for (int y = 0; y < 2; ++y) {
        const auto* r = rows[y];
        const std::int64_t even = std::int64_t{r[0]} * (1 << 15), odd = OddPart(r[1], r[3], r[5], r[7]);
        out[y][0] = ToSample(Descale(even + odd, 20));
        out[y][1] = ToSample(Descale(even - odd, 20));
    }
}

struct Component {
    int across = 1, down = 1; ///< blocks in a group
    const std::uint16_t* quant = nullptr;
    JpegCodeTable dc, ac;
    bool fourPixels = false; ///< a block gives 2 x 2 samples, not one
    std::int16_t lastDc = 0;
    std::size_t stride = 0;
    Bytes samples;

    std::int16_t NextDc(int difference) {
        lastDc = static_cast<std::int16_t>(lastDc + difference);
        return lastDc;
    }
};

class Decoder {
public:
    [[nodiscard]] bool Prepare(const jpeg_decompress_struct& codec);
    [[nodiscard]] bool Decode();
    [[nodiscard]] DibBlock Picture() const;

private:
    [[nodiscard]] bool PrepareComponent(const jpeg_decompress_struct& codec, int index);
    bool DecodeBlock(Component& c, std::size_t x, std::size_t y);
    bool DecodeGroup(std::size_t x, std::size_t y);

    Size m_size; ///< of the small picture
    int m_count = 1;
    std::array<Component, 3> m_components;
    std::size_t m_groupsAcross = 0, m_groupsDown = 0;
    unsigned m_restart = 0;
    JpegBits m_bits;
};

bool Decoder::PrepareComponent(const jpeg_decompress_struct& codec, int index) {
    const auto& info = *codec.cur_comp_info[index];
    auto& c = m_components[static_cast<std::size_t>(index)];
    const bool known = info.dc_tbl_no >= 0 && info.dc_tbl_no < NUM_HUFF_TBLS && info.ac_tbl_no >= 0 &&
                       info.ac_tbl_no < NUM_HUFF_TBLS && info.quant_tbl_no >= 0 && info.quant_tbl_no < NUM_QUANT_TBLS;
    if (!known || info.component_index != index) return false;
    const auto* dc = codec.dc_huff_tbl_ptrs[info.dc_tbl_no];
    const auto* ac = codec.ac_huff_tbl_ptrs[info.ac_tbl_no];
    const auto* quant = codec.quant_tbl_ptrs[info.quant_tbl_no];
    if (!dc || !ac || !quant || !c.dc.Build(dc->bits, dc->huffval) || !c.ac.Build(ac->bits, ac->huffval)) return false;
    c.quant = quant->quantval;
    if (m_count == 1) return true;
    c.across = info.h_samp_factor;
    c.down = info.v_samp_factor;
    return index == 0 ? c.across <= 2 && c.down <= 2 : c.across == 1 && c.down == 1;
}

bool Decoder::Prepare(const jpeg_decompress_struct& codec) {
    const bool grey = codec.num_components == 1 && codec.jpeg_color_space == JCS_GRAYSCALE;
    const bool colors = codec.num_components == 3 && codec.jpeg_color_space == JCS_YCbCr;
    if (codec.progressive_mode || codec.arith_code || codec.data_precision != 8 || !(grey || colors)) return false;
    if (codec.comps_in_scan != codec.num_components) return false;
    m_count = codec.num_components;
    for (int i = 0; i < m_count; ++i) {
        if (!PrepareComponent(codec, i)) return false;
    }
    const auto& first = m_components[0];
    const std::size_t groupWidth = 8u * static_cast<unsigned>(first.across),
                      groupHeight = 8u * static_cast<unsigned>(first.down);
    m_groupsAcross = (codec.image_width + groupWidth - 1) / groupWidth;
    m_groupsDown = (codec.image_height + groupHeight - 1) / groupHeight;
    m_size = {static_cast<int>((codec.image_width + 7) / 8), static_cast<int>((codec.image_height + 7) / 8)};
    m_restart = codec.restart_interval;
    for (int i = 0; i < m_count; ++i) {
        auto& c = m_components[static_cast<std::size_t>(i)];
        // Chroma of four blocks of luma still has the samples for all of them.
        c.fourPixels = i > 0 && first.across == 2 && first.down == 2;
        const std::size_t side = c.fourPixels ? 2 : 1;
        c.stride = m_groupsAcross * static_cast<unsigned>(c.across) * side;
        c.samples.resize(c.stride * m_groupsDown * static_cast<unsigned>(c.down) * side);
    }
    m_bits.Open({codec.src->next_input_byte, codec.src->bytes_in_buffer});
    return true;
}

bool Decoder::DecodeBlock(Component& c, std::size_t x, std::size_t y) {
    int difference = 0;
    if (!c.fourPixels) {
        if (!m_bits.ReadFirst(c.dc, c.ac, difference)) return false;
        c.samples[y * c.stride + x] = ToSample(Descale(c.NextDc(difference) * c.quant[0], 3));
        return true;
    }
    std::int16_t coefficients[64] = {};
    unsigned columns = 1;
    bool flat = true;
    const bool good = m_bits.ReadAll(c.dc, c.ac, difference, [&](int k, int value) {
        coefficients[kZigzag[k]] = static_cast<std::int16_t>(value);
        columns |= 1u << (kZigzag[k] & 7);
        flat = false;
    });
    if (!good) return false;
    coefficients[0] = c.NextDc(difference);
    auto* top = c.samples.data() + 2 * y * c.stride + 2 * x;
    if (flat) {
        top[0] = top[1] = top[c.stride] = top[c.stride + 1] = ToSample(Descale(coefficients[0] * c.quant[0], 3));
    } else {
        Transform2x2(coefficients, columns, c.quant, top, top + c.stride);
    }
    return true;
}

bool Decoder::DecodeGroup(std::size_t x, std::size_t y) {
    for (int i = 0; i < m_count; ++i) {
        auto& c = m_components[static_cast<std::size_t>(i)];
        const auto across = static_cast<unsigned>(c.across), down = static_cast<unsigned>(c.down);
        for (unsigned v = 0; v < down; ++v) {
            for (unsigned h = 0; h < across; ++h) {
                if (!DecodeBlock(c, x * across + h, y * down + v)) return false;
            }
        }
    }
    return m_bits.Inside();
}

bool Decoder::Decode() {
    unsigned left = m_restart;
    for (std::size_t y = 0; y < m_groupsDown; ++y) {
        for (std::size_t x = 0; x < m_groupsAcross; ++x) {
            if (m_restart != 0 && left-- == 0) {
                if (!m_bits.Restart()) return false;
                for (auto& c : m_components) c.lastDc = 0;
                left = m_restart - 1;
            }
            if (!DecodeGroup(x, y)) return false;
        }
    }
    return true;
}

// Luma and chroma to red, green and blue with the library's roundings, in 1/65536.
void PutColor(std::uint8_t* to, int luma, int cb, int cr) {
    constexpr int half = 1 << 15;
    const auto clip = [](int v) { return static_cast<std::uint8_t>(std::clamp(v, 0, 255)); };
    cb -= 128;
    cr -= 128;
    to[0] = clip(luma + ((116130 * cb + half) >> 16));
    to[1] = clip(luma + ((-22554 * cb - 46802 * cr + half) >> 16));
    to[2] = clip(luma + ((91881 * cr + half) >> 16));
}

DibBlock Decoder::Picture() const {
    auto block = CreateDIB(m_size.width, m_size.height, 24);
    const DibRows rows(block);
    if (!rows) return {};
    const auto& luma = m_components[0];
    const bool chroma = m_count == 3, dense = m_components[1].fourPixels;
    // Where chroma has fewer samples than luma, each stands for its whole group.
    const std::size_t across = dense ? 1 : static_cast<unsigned>(luma.across),
                      down = dense ? 1 : static_cast<unsigned>(luma.down);
    for (int row = 0; row < m_size.height; ++row) {
        const auto y = static_cast<std::size_t>(row);
        auto* to = rows.PictureRow(row);
        for (std::size_t x = 0; x < static_cast<std::size_t>(m_size.width); ++x, to += 3) {
            const auto light = luma.samples[y * luma.stride + x];
            if (!chroma) {
                std::fill_n(to, 3, light);
                continue;
            }
            const auto at = y / down * m_components[1].stride + x / across;
            PutColor(to, light, m_components[1].samples[at], m_components[2].samples[at]);
        }
    }
    return block;
}

} // namespace

DibBlock ReadJpegEighth(const jpeg_decompress_struct& codec) {
    Decoder decoder;
    return decoder.Prepare(codec) && decoder.Decode() ? decoder.Picture() : DibBlock();
}

} // namespace pelorin
