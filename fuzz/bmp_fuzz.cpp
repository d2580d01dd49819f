#include "formats/bmp.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace pelorin;
    PictureFacts facts;
    const auto block = ReadBmp({data, size}, {}, facts);
    if (block && !DibView(block)) __builtin_trap();
    Bytes file;
    if (block && WriteBmp(block, {}, file) != 0) __builtin_trap();
    return 0;
}
