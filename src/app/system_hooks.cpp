#include "app/system_hooks.h"

#include "base/files.h"
#include "containers/mac_scan.h"
#include "icon/icon_doc.h"

namespace pelorin {

std::unique_ptr<IconListContent> SystemHooks::ReadIconList(const std::string& path) {
    try {
        const auto file = FileView::Open(path);
        std::vector<CIconGroup> icons;
        if (!ReadMacintoshIcons(file.Data(), icons)) return nullptr;
        return std::make_unique<IconGroupsContent>(std::move(icons));
    } catch (const FileException&) {
        return nullptr;
    }
}

bool SystemHooks::HasMacintoshIcon(const std::string& path) {
    try {
        const auto file = FileView::Open(path);
        // One icon will do.
        return IsMacBinary(file.Data()) && VisitMacintoshIcons(file.Data(), [](CIconGroup&) { return false; });
    } catch (const FileException&) {
        return false;
    }
}

} // namespace pelorin
