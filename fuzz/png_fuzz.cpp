#include "formats/png.h"

#include <zlib.h>

namespace {

using namespace pelorin;

// Checksums would stop nearly every changed file at its first chunk; they are put right here.
Bytes WithGoodChecksums(ByteSpan file) {
    Bytes out(file.begin(), file.end());
    for (std::size_t at = 8; at + 12 <= out.size();) {
        const std::size_t size = LoadU32BE(&out[at]);
        if (size > out.size() - at - 12) break;
        StoreU32BE(&out[at + 8 + size],
                   static_cast<std::uint32_t>(crc32(0, &out[at + 4], static_cast<uInt>(size + 4))));
        at += size + 12;
    }
    return out;
}

// What can be read can be written, and reads back.
void Try(ByteSpan file) {
    const auto block = ReadPng(file);
    Bytes written;
    if (block && (WritePng(block, {}, written) != 0 || !ReadPng(written))) __builtin_trap();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Try({data, size});
    Try(WithGoodChecksums({data, size}));
    return 0;
}
