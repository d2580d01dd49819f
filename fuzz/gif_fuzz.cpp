#include "formats/gif.h"
#include "picture_harness.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace pelorin;
    // The last byte picks the frame.
    PictureRequest request;
    request.frame = size == 0 ? 0 : data[size - 1] % 4;
    return FuzzPictureReader(ReadGif, {data, size}, request);
}
