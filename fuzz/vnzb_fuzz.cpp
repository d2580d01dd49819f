#include "formats/vnzb.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace pelorin;
    const auto content = UncompressVnzb({data, size});
    if (content && UncompressVnzb(CompressVnzb(*content)) != content) __builtin_trap();
    (void)UncompressVnzbHeadless({data, size}, 1 << 20);
    return 0;
}
