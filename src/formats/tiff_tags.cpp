#include "formats/tiff_page.h"

#include <tiffio.h>

namespace pelorin {

namespace {

std::uint16_t Tag(TIFF* file, std::uint32_t tag) {
    std::uint16_t value = 0;
    return TIFFGetFieldDefaulted(file, tag, &value) ? value : std::uint16_t{0};
}

// Size, bits and samples, without which nothing can be said.
bool ReadShape(TIFF* file, TiffPage& page) {
    std::uint32_t width = 0, height = 0;
    if (!TIFFGetField(file, TIFFTAG_IMAGEWIDTH, &width) || !TIFFGetField(file, TIFFTAG_IMAGELENGTH, &height))
        return false;
    page.bits = Tag(file, TIFFTAG_BITSPERSAMPLE);
    page.samples = Tag(file, TIFFTAG_SAMPLESPERPIXEL);
    page.orientation = Tag(file, TIFFTAG_ORIENTATION);
    if (page.orientation < 1 || page.orientation > 8) page.orientation = 1;
    const bool sane = width > 0 && height > 0 && width <= INT32_MAX && height <= INT32_MAX &&
                      std::uint64_t{width} * height <= std::uint64_t{kMaxPixels} && page.bits >= 1 && page.bits <= 64 &&
                      page.samples >= 1 && page.samples <= kMaxTiffSamples;
    if (!sane) return false;
    page.width = static_cast<int>(width);
    page.height = static_cast<int>(height);
    return true;
}

void FindAlpha(TIFF* file, TiffPage& page) {
    std::uint16_t count = 0;
    std::uint16_t* kinds = nullptr;
    if (!TIFFGetField(file, TIFFTAG_EXTRASAMPLES, &count, &kinds)) {
        // Some writers leave the tag out, and mean it all the same.
        if (page.samples == page.colors + 1) page.alpha = page.colors;
        return;
    }
    for (int i = 0; i < count && page.colors + i < page.samples; ++i) {
        if (kinds[i] != EXTRASAMPLE_ASSOCALPHA && kinds[i] != EXTRASAMPLE_UNASSALPHA) continue;
        page.alpha = page.colors + i;
        page.premultiplied = kinds[i] == EXTRASAMPLE_ASSOCALPHA;
        return;
    }
}

bool ReadColormap(TIFF* file, TiffPage& page) {
    std::uint16_t *red = nullptr, *green = nullptr, *blue = nullptr;
    if (page.bits > 8 || !TIFFGetField(file, TIFFTAG_COLORMAP, &red, &green, &blue)) return false;
    const int count = 1 << page.bits;
    // Entries have 16 bits; some writers filled them as if they had 8.
    bool wide = false;
    for (int i = 0; i < count && !wide; ++i) wide = red[i] > 255 || green[i] > 255 || blue[i] > 255;
    const int shift = wide ? 8 : 0;
    for (int i = 0; i < count; ++i) {
        page.table.push_back(Rgb{red[i]} >> shift << 16 | Rgb{green[i]} >> shift << 8 | Rgb{blue[i]} >> shift);
    }
    return true;
}

// Black to white or back, in as many steps as the kept bits have.
void MakeRamp(TiffPage& page, bool whiteFirst) {
    const auto last = (1u << std::min(page.bits, 8)) - 1;
    for (std::uint32_t i = 0; i <= last; ++i)
        page.table.push_back((whiteFirst ? last - i : i) * 255 / last * 0x010101u);
}

bool ReadColors(TIFF* file, TiffPage& page) {
    switch (page.photometric) {
    case PHOTOMETRIC_MINISWHITE:
    case PHOTOMETRIC_MINISBLACK:
    case PHOTOMETRIC_MASK:
        page.colors = 1;
        MakeRamp(page, page.photometric == PHOTOMETRIC_MINISWHITE);
        break;
    case PHOTOMETRIC_PALETTE:
        page.colors = 1;
        if (!ReadColormap(file, page)) return false;
        break;
    case PHOTOMETRIC_RGB: page.colors = 3; break;
    case PHOTOMETRIC_SEPARATED:
        page.colors = 4;
        if (Tag(file, TIFFTAG_INKSET) != INKSET_CMYK) return false;
        break;
    default: return false;
    }
    if (page.samples < page.colors) return false;
    FindAlpha(file, page);
    page.indexed = page.colors == 1 && page.alpha < 0;
    return true;
}

} // namespace

bool ReadTiffTags(TIFF* file, TiffPage& page) {
    page = {};
    if (!ReadShape(file, page)) return false;
    page.photometric = Tag(file, TIFFTAG_PHOTOMETRIC);
    // The library turns luma and chroma of a JPEG into colours itself.
    if (Tag(file, TIFFTAG_COMPRESSION) == COMPRESSION_JPEG && page.photometric == PHOTOMETRIC_YCBCR) {
        TIFFSetField(file, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
        page.photometric = PHOTOMETRIC_RGB;
    }
    page.separate = page.samples > 1 && Tag(file, TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE;
    const auto format = Tag(file, TIFFTAG_SAMPLEFORMAT);
    return page.bits <= 16 && format != SAMPLEFORMAT_IEEEFP && format < SAMPLEFORMAT_COMPLEXINT &&
           ReadColors(file, page);
}

} // namespace pelorin
