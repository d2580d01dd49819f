#include "formats/pcx.h"
#include "picture_harness.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return pelorin::FuzzPictureReader(pelorin::ReadPcx, {data, size});
}
