#include "formats/reader_support.h"
#include "formats/tiff.h"
#include "formats/tiff_page.h"

#include <tiffio.h>

#include <memory>
#include <new>

namespace pelorin {

namespace {

// ---- the library's view of the file's bytes ----

tmsize_t ReadBytes(thandle_t user, void* to, tmsize_t count) {
    const auto bytes = static_cast<ByteReader*>(user)->TakeUpTo(static_cast<std::uint64_t>(count));
    std::copy(bytes.begin(), bytes.end(), static_cast<std::uint8_t*>(to));
    return static_cast<tmsize_t>(bytes.size());
}

tmsize_t WriteNothing(thandle_t, void*, tmsize_t) {
    return 0;
}

toff_t Seek(thandle_t user, toff_t offset, int whence) {
    auto& in = *static_cast<ByteReader*>(user);
    const toff_t base = whence == SEEK_CUR ? in.Pos() : whence == SEEK_END ? in.Size() : 0;
    // A seek behind the end must not latch: the library tries offsets out.
    if (offset > in.Size() || base + offset > in.Size()) return static_cast<toff_t>(-1);
    in.Seek(base + offset);
    return in.Pos();
}

int Close(thandle_t) {
    return 0;
}

toff_t SizeOf(thandle_t user) {
    return static_cast<ByteReader*>(user)->Size();
}

int Map(thandle_t user, void** base, toff_t* size) {
    const auto all = static_cast<ByteReader*>(user)->All();
    // The library only reads from what is mapped.
    *base = const_cast<std::uint8_t*>(all.data());
    *size = all.size();
    return 1;
}

void Unmap(thandle_t, void*, toff_t) {}

using File = std::unique_ptr<TIFF, decltype(&TIFFClose)>;

File OpenMemory(ByteReader& in) {
    // Warnings and errors are nobody's business; the handlers belong to the process.
    [[maybe_unused]] static const bool silent = [] {
        TIFFSetErrorHandler(nullptr);
        TIFFSetWarningHandler(nullptr);
        return true;
    }();
    return {TIFFClientOpen("", "rm", &in, ReadBytes, WriteNothing, Seek, Close, SizeOf, Map, Unmap), TIFFClose};
}

// What one byte of the file can stand for at most. Packings that are not here may make any number of one.
struct Packing {
    std::uint16_t compression;
    std::uint64_t ratio;
};
constexpr Packing kPackings[] = {
    {COMPRESSION_NONE, 1},
    {COMPRESSION_PACKBITS, 64},
    {COMPRESSION_LZW, 2731},
    {COMPRESSION_DEFLATE, 1032},
    {COMPRESSION_ADOBE_DEFLATE, 1032},
    {COMPRESSION_PIXARLOG, 1032},
    {COMPRESSION_THUNDERSCAN, 32},
    {COMPRESSION_SGILOG24, 2}, // three bytes a pixel, however many its tags say
    {COMPRESSION_SGILOG, 130}, // two bytes for 129 of one plane of bytes
    {COMPRESSION_JPEG, 1024},  // two bits a block
    {COMPRESSION_OJPEG, 1024},
    {COMPRESSION_LZMA, 8192},
    {COMPRESSION_ZSTD, 32768}, // four bytes for a block of 128 KB
};

// False when the file is too short for its samples, whatever they are: no memory need be taken to find that out.
// A page with fewer samples of colour than of light counts as one of light alone.
bool FileCanHold(TIFF* file, const TiffPage& page, bool plain, std::size_t fileSize) {
    std::uint16_t compression = COMPRESSION_NONE;
    TIFFGetFieldDefaulted(file, TIFFTAG_COMPRESSION, &compression);
    const auto pixels = static_cast<std::uint64_t>(page.width) * static_cast<std::uint64_t>(page.height);
    const auto bytes = pixels * static_cast<std::uint64_t>((plain ? page.samples : 1) * page.bits) / 8;
    const auto* packing = std::find_if(std::begin(kPackings), std::end(kPackings),
                                       [&](const auto& row) { return row.compression == compression; });
    return packing == std::end(kPackings) || bytes / packing->ratio <= fileSize;
}

// ---- pages that only the library's own converter knows ----

DibBlock ReadConverted(TIFF* file, TiffPage page) {
    char reason[1024];
    if (!TIFFRGBAImageOK(file, reason)) return {};
    std::vector<std::uint32_t> raster;
    Bytes samples;
    try {
        const auto count = static_cast<std::size_t>(page.width) * static_cast<std::size_t>(page.height);
        raster.resize(count);
        // Asked for in the file's own orientation, so that nothing is turned yet.
        if (!TIFFReadRGBAImageOriented(file, static_cast<std::uint32_t>(page.width),
                                       static_cast<std::uint32_t>(page.height), raster.data(), page.orientation, 1))
            return {};
        samples.reserve(count * 3);
        for (const auto pixel : raster) {
            for (const int shift : {0, 8, 16}) samples.push_back(static_cast<std::uint8_t>(pixel >> shift));
        }
    } catch (const std::bad_alloc&) {
        return {};
    }
    page.colors = 3;
    page.alpha = -1;
    page.indexed = page.premultiplied = false;
    return BlockFromTiffSamples(page, samples);
}

} // namespace

bool IsTiff(ByteSpan file) {
    using namespace std::string_view_literals;
    const auto text = AsText(file);
    return text.starts_with("II*\0"sv) || text.starts_with("MM\0*"sv) || text.starts_with("II+\0"sv) ||
           text.starts_with("MM\0+"sv);
}

DibBlock ReadTiff(ByteSpan bytes, const PictureRequest& request, PictureFacts& facts) {
    if (!IsTiff(bytes) || request.layer > 0) return {};
    ByteReader in(bytes);
    const auto file = OpenMemory(in);
    if (!file) return {};
    facts.frames = static_cast<int>(TIFFNumberOfDirectories(file.get()));
    if (request.frame < 0 || request.frame >= facts.frames) return {};
    if (!TIFFSetDirectory(file.get(), static_cast<tdir_t>(request.frame))) return {};

    TiffPage page;
    const bool plain = ReadTiffTags(file.get(), page);
    if (page.width == 0 || !FileCanHold(file.get(), page, plain, bytes.size())) return {};
    ProgressScope progress(request.progress, ReadingText("TIFF"), static_cast<std::uint64_t>(page.height));
    DibBlock block;
    if (plain) {
        const auto samples = ReadTiffSamples(file.get(), page, progress);
        if (!samples.empty()) block = BlockFromTiffSamples(page, samples);
    } else {
        block = ReadConverted(file.get(), page);
    }
    facts.bits = page.bits * page.samples;
    return block;
}

} // namespace pelorin
