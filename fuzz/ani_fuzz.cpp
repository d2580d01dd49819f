#include "icon/ani_file.h"
#include "picture_harness.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const pelorin::ByteSpan file{data, size};
    std::vector<pelorin::CAniObject> list;
    (void)pelorin::ReadAniFile(file, list);
    (void)pelorin::VisitAniFrames(file, [](pelorin::CIconGroup&) { return true; });
    pelorin::IconFileReport report;
    pelorin::InspectAni(file, report);
    return pelorin::FuzzPictureReader(pelorin::ReadAni, file);
}
