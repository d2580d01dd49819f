#include "base/files.h"
#include "containers/mac_files.h"
#include "containers/mac_icon_rows.h"
#include "containers/mac_scan.h"

namespace {

using namespace pelorin;

void Try(ByteSpan file) {
    (void)IsResourceFork(file);
    (void)IsMacBinary(file);
    std::vector<CIconGroup> groups;
    if (!ReadMacintoshIcons(file, groups)) return;
    try {
        for (const int kind : {kKindIcns, kKindRsrc, kKindMacBinary}) {
            std::vector<CIconGroup> again;
            if (!ReadMacintoshIcons(BuildMacFile(groups.front(), kind, "x"), again)) __builtin_trap();
        }
    } catch (const FileException&) {
        // Above the limit.
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const ByteSpan file(data, size);
    Try(file);
    // The search looks away from the last 3 KB, which small inputs would never leave.
    Bytes longer(file.begin(), file.end());
    longer.resize(size + 0xC01);
    Try(longer);
    for (const auto& source : MacintoshIconSources()) {
        IconFileReport report;
        source.inspect(longer, report);
    }
    return 0;
}
