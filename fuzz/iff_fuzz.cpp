#include "formats/iff.h"
#include "picture_harness.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return pelorin::FuzzPictureReader(pelorin::ReadIff, {data, size});
}
