// 16-bit files; the input begins at the second header, so that no byte is wasted on finding it.
#include "containers/program_file.h"

using namespace pelorin;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const ByteSpan input(data, size);
    (void)LoadIcons(FindIcons(input), "fuzz");
    Bytes file(0x40);
    file[0x3C] = 0x40;
    file.insert(file.end(), {'N', 'E'});
    file.insert(file.end(), input.begin(), input.end());
    const auto found = FindIcons(file);
    (void)LoadIcons(found, {});
    for (const auto& icon : found.groups) (void)CopyAsIco(icon);
    return 0;
}
