#include "formats/tiff.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace pelorin;
    PictureFacts facts;
    const auto block = ReadTiff({data, size}, {}, facts);
    if (block && !DibView(block)) __builtin_trap();
    return 0;
}
