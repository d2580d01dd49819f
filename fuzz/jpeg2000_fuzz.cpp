#include "formats/jpeg2000.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace pelorin;
    for (const bool preview : {false, true}) {
        PictureFacts facts;
        const auto block = ReadJpeg2000({data, size}, {.preview = preview}, facts);
        if (block && !DibView(block)) __builtin_trap();
    }
    return 0;
}
