#include "base/files.h"
#include "containers/icns_file.h"
#include "containers/icns_inspect.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace pelorin;
    const ByteSpan file(data, size);
    IconFileReport report;
    InspectMacintoshFile(file, report);
    auto pixels = kMaxPixels;
    CIconGroup group;
    if (!ReadIcnsFamily(file, group, pixels)) return 0;
    if (CountIcnsImages(file, 0) < group.GetCount()) __builtin_trap();
    // All that is read can be held; what is written reads back, and is written the same again.
    const auto write = [](const CIconGroup& icon) {
        ByteWriter out;
        return WriteIcnsFamily(icon, out) ? out.Take() : Bytes();
    };
    try {
        const auto first = write(group);
        CIconGroup again;
        if (!ReadIcnsFamily(first, again, pixels = kMaxPixels)) __builtin_trap();
        const auto second = write(again);
        CIconGroup third;
        if (!ReadIcnsFamily(second, third, pixels = kMaxPixels) || write(third) != second) __builtin_trap();
    } catch (const FileException&) {
        // Above the limit.
    }
    return 0;
}
