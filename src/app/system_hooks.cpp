#include "app/system_hooks.h"

#include "base/files.h"
#include "icon/icon_doc.h"
#include "icon/icon_sources.h"

namespace pelorin {

std::unique_ptr<IconListContent> SystemHooks::ReadIconList(const std::string& path) {
    try {
        const auto file = FileView::Open(path);
        const auto* source = FindIconSource(file.Data(), GetFileKind(path));
        if (source == nullptr) return nullptr;
        std::vector<CIconGroup> icons;
        const bool whole = source->visit(file.Data(), [&icons](CIconGroup& group) {
            icons.push_back(std::move(group));
            return true;
        });
        if (!whole && icons.empty()) return nullptr;
        return std::make_unique<IconGroupsContent>(std::move(icons));
    } catch (const FileException&) {
        return nullptr;
    }
}

bool SystemHooks::HasMacintoshIcon(const std::string& path) {
    bool found = false;
    try {
        const auto file = FileView::Open(path);
        const auto* source = FindIconSource(file.Data(), kKindMacBinary);
        if (source == nullptr) return false;
        (void)source->visit(file.Data(), [&found](CIconGroup&) {
            found = true;
            return false; // one will do
        });
    } catch (const FileException&) {
        return false;
    }
    return found;
}

} // namespace pelorin
