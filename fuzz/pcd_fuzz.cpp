#include "formats/pcd_planes.h"

// The differences alone: whole files are too large for a fuzzer to get anywhere.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace pelorin;
    PcdPlanes planes{PcdPlane(32, 16), {PcdPlane(16, 8), PcdPlane(16, 8)}};
    ByteReader in({data, size});
    (void)AddPcdDifferences(in, planes, size % 2 == 0);
    if (in.Pos() > size) __builtin_trap();
    return 0;
}
