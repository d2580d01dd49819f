#include "formats/psd.h"
#include "picture_harness.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    pelorin::PictureRequest topLayer;
    topLayer.layer = 1;
    return pelorin::FuzzPictureReader(pelorin::ReadPsd, {data, size}) +
           pelorin::FuzzPictureReader(pelorin::ReadPsd, {data, size}, topLayer);
}
