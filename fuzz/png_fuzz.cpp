#include "formats/png.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace pelorin;
    const auto block = ReadPng({data, size});
    // What can be read can be written, and reads back.
    Bytes file;
    if (block && (WritePng(block, {}, file) != 0 || !ReadPng(file))) __builtin_trap();
    return 0;
}
