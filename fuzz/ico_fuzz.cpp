#include "icon/ico_file.h"
#include "icon/icon_sources.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace pelorin;
    const ByteSpan file(data, size);
    if (const auto* source = FindIconSource(file, kKindNone)) {
        IconFileReport report;
        source->inspect(file, report);
    }
    CIconGroup group;
    if (!ReadIcoGroup(file, group)) return 0;
    for (const auto& icon : group.m_arrIcons) (void)IconBlockPicture(icon->m_hImage);
    bool settled = true;
    for (const auto& icon : group.m_arrIcons) settled = settled && !(icon->m_bCompressed && icon->BitCount() < 24);
    // What was read is written, and reads back as the same; from then on nothing changes any more. Compressed images of
    // few colours get a new palette at each reading.
    const auto first = BuildIcoFile(group);
    CIconGroup again;
    if (!ReadIcoGroup(first, again) || again.GetCount() != group.GetCount()) __builtin_trap();
    if (settled && BuildIcoFile(again) != first) __builtin_trap();
    return 0;
}
