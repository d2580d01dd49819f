#include "formats/tiff_page.h"

#include <tiffio.h>

#include <new>

namespace pelorin {

namespace {

// Where strips or tiles lie, and how their bytes are read; a strip is a tile as wide as the picture.
struct Chunks {
    bool tiled = false;
    std::uint32_t width = 0, height = 0;
    std::uint64_t rowSize = 0; ///< bytes of a row of a chunk
    std::uint64_t size = 0;    ///< bytes of a whole chunk
};

bool MeasureChunks(TIFF* file, const TiffPage& page, Chunks& chunks) {
    chunks.tiled = TIFFIsTiled(file) != 0;
    if (chunks.tiled) {
        TIFFGetField(file, TIFFTAG_TILEWIDTH, &chunks.width);
        TIFFGetField(file, TIFFTAG_TILELENGTH, &chunks.height);
        chunks.rowSize = TIFFTileRowSize64(file);
        chunks.size = TIFFTileSize64(file);
    } else {
        TIFFGetFieldDefaulted(file, TIFFTAG_ROWSPERSTRIP, &chunks.height);
        chunks.width = static_cast<std::uint32_t>(page.width);
        chunks.height = std::min(chunks.height, static_cast<std::uint32_t>(page.height));
        chunks.rowSize = TIFFScanlineSize64(file);
        chunks.size = chunks.rowSize * chunks.height;
    }
    const std::uint64_t bits =
        std::uint64_t{chunks.width} * static_cast<unsigned>(page.bits * (page.separate ? 1 : page.samples));
    // A tile may stand out over the picture, but not by far.
    const std::uint64_t area = std::uint64_t{chunks.width} * chunks.height;
    const std::uint64_t picture = static_cast<std::uint64_t>(page.width) * static_cast<unsigned>(page.height);
    return chunks.width > 0 && chunks.height > 0 && chunks.rowSize >= (bits + 7) / 8 &&
           area <= picture * 4 + (1u << 20) && chunks.size <= area * 2 * kMaxTiffSamples + (1u << 16) &&
           chunks.size >= chunks.rowSize * chunks.height;
}

// Samples of one row, packed from the high bit down; those of 9 to 16 bits are cut to 8.
class SampleRow {
public:
    SampleRow(const std::uint8_t* row, int bits) : m_row(row), m_bits(static_cast<unsigned>(bits)) {}

    [[nodiscard]] unsigned At(std::size_t i) const {
        if (m_bits == 8) return m_row[i];
        if (m_bits == 16) {
            // The library has put the bytes into this machine's order.
            std::uint16_t value;
            std::memcpy(&value, m_row + i * 2, 2);
            return value >> 8;
        }
        unsigned value = 0;
        for (std::size_t at = i * m_bits, end = at + m_bits; at < end; ++at)
            value = value << 1 | (m_row[at / 8] >> (7 - at % 8) & 1u);
        return m_bits > 8 ? value >> (m_bits - 8) : value;
    }

private:
    const std::uint8_t* m_row;
    unsigned m_bits;
};

class SampleReader {
public:
    SampleReader(TIFF* file, const TiffPage& page, const Chunks& chunks, Bytes& out)
        : m_file(file), m_page(page), m_chunks(chunks), m_out(out), m_chunk(static_cast<std::size_t>(chunks.size)) {
        const unsigned last = (1u << std::min(page.bits, 8)) - 1;
        for (unsigned value = 0; value < 256; ++value) {
            m_scaled[value] = static_cast<std::uint8_t>(std::min(value, last) * 255 / last);
        }
    }

    [[nodiscard]] bool ReadPlane(int sample, ProgressScope& progress) {
        const auto width = static_cast<std::uint32_t>(m_page.width), height = static_cast<std::uint32_t>(m_page.height);
        for (std::uint32_t top = 0; top < height; top += m_chunks.height) {
            for (std::uint32_t left = 0; left < width; left += m_chunks.width) {
                if (!Decode(left, top, sample)) return false;
                Place(left, top, sample);
            }
            progress.Step(top);
            if (progress.StopAsked()) return false;
        }
        return true;
    }

private:
    bool Decode(std::uint32_t left, std::uint32_t top, int sample) {
        const auto plane = static_cast<std::uint16_t>(std::max(sample, 0));
        const auto rows = std::min(m_chunks.height, static_cast<std::uint32_t>(m_page.height) - top);
        if (m_chunks.tiled) {
            const auto got = TIFFReadEncodedTile(m_file, TIFFComputeTile(m_file, left, top, 0, plane), m_chunk.data(),
                                                 static_cast<tmsize_t>(m_chunk.size()));
            return got >= 0 && static_cast<std::uint64_t>(got) >= m_chunks.rowSize * rows;
        }
        const auto want = static_cast<tmsize_t>(m_chunks.rowSize * rows);
        return TIFFReadEncodedStrip(m_file, TIFFComputeStrip(m_file, top, plane), m_chunk.data(), want) == want;
    }

    void Place(std::uint32_t left, std::uint32_t top, int sample) {
        const auto rows = std::min(m_chunks.height, static_cast<std::uint32_t>(m_page.height) - top);
        const auto columns = std::min(m_chunks.width, static_cast<std::uint32_t>(m_page.width) - left);
        for (std::uint32_t y = 0; y < rows; ++y) {
            const SampleRow row(m_chunk.data() + m_chunks.rowSize * y, m_page.bits);
            auto* to = m_out.data() + ((std::size_t{top} + y) * static_cast<std::size_t>(m_page.width) + left) *
                                          static_cast<std::size_t>(m_page.Kept());
            if (sample >= 0) {
                PlaceOne(row, sample, to, columns);
            } else {
                PlaceAll(row, to, columns);
            }
        }
    }

    // A single colour sample looks its colour up, so it keeps its value.
    [[nodiscard]] std::uint8_t Keep(unsigned value, int sample) const {
        return m_page.colors == 1 && sample == 0 ? static_cast<std::uint8_t>(value) : m_scaled[value];
    }

    void PlaceOne(const SampleRow& row, int sample, std::uint8_t* to, std::uint32_t columns) const {
        to += sample == m_page.alpha ? m_page.colors : sample;
        for (std::uint32_t x = 0; x < columns; ++x, to += m_page.Kept()) *to = Keep(row.At(x), sample);
    }

    void PlaceAll(const SampleRow& row, std::uint8_t* to, std::uint32_t columns) const {
        const auto samples = static_cast<std::size_t>(m_page.samples);
        for (std::size_t x = 0; x < columns; ++x) {
            for (int c = 0; c < m_page.Kept(); ++c) {
                const int sample = c < m_page.colors ? c : m_page.alpha;
                *to++ = Keep(row.At(x * samples + static_cast<std::size_t>(sample)), sample);
            }
        }
    }

    TIFF* m_file;
    const TiffPage& m_page;
    const Chunks& m_chunks;
    Bytes& m_out;
    Bytes m_chunk;
    std::array<std::uint8_t, 256> m_scaled{};
};

} // namespace

Bytes ReadTiffSamples(TIFF* file, const TiffPage& page, ProgressScope& progress) {
    Chunks chunks;
    if (!MeasureChunks(file, page, chunks)) return {};
    try {
        Bytes out(static_cast<std::size_t>(page.width) * static_cast<std::size_t>(page.height) *
                  static_cast<std::size_t>(page.Kept()));
        SampleReader reader(file, page, chunks, out);
        if (!page.separate) return reader.ReadPlane(-1, progress) ? std::move(out) : Bytes();
        for (int sample = 0; sample < page.samples; ++sample) {
            const bool kept = sample < page.colors || sample == page.alpha;
            if (kept && !reader.ReadPlane(sample, progress)) return {};
        }
        return out;
    } catch (const std::bad_alloc&) {
        return {};
    }
}

} // namespace pelorin
