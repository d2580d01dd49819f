#include "formats/metafile.h"
#include "picture_harness.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace pelorin;
    PictureRequest request;
    request.box = {32, 32};
    return FuzzPictureReader(ReadMetafile, {data, size}, request);
}
