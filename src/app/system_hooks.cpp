#include "app/system_hooks.h"

#include "base/files.h"
#include "icon/icon_list_content.h"
#include "icon/icon_sources.h"

namespace pelorin {

std::unique_ptr<IconListContent> SystemHooks::ReadIconList(const std::string& path) {
    try {
        const auto file = FileView::Open(path);
        const auto* source = FindIconSource(file.Data(), GetFileKind(path));
        if (source == nullptr) return nullptr;
        auto icons = std::make_unique<IconGroupList>();
        const bool whole = source->visit(file.Data(), [&icons](CIconGroup& group) {
            icons->m_arrIcons.push_back(std::move(group));
            return true;
        });
        return whole || icons->Count() > 0 ? std::move(icons) : nullptr;
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
