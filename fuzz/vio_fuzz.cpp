#include "formats/vio.h"
#include "picture_harness.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const pelorin::ByteSpan file{data, size};
    pelorin::ImageObject object;
    if (pelorin::ReadImageObject(file, object)) {
        pelorin::ImageObject again;
        if (!pelorin::ReadImageObject(pelorin::WriteImageObject(object), again)) __builtin_trap();
        if (again.images.size() != object.images.size()) __builtin_trap();
    }
    pelorin::PictureRequest layer;
    layer.layer = 0;
    return pelorin::FuzzPictureReader(pelorin::ReadVio, file) +
           pelorin::FuzzPictureReader(pelorin::ReadVio, file, layer);
}
