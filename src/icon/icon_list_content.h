// The icons of a file, read before it is known which document shows them.
#pragma once

#include "core/open_hooks.h"
#include "icon/icon_group.h"

#include <vector>

namespace pelorin {

class IconGroupList final : public IconListContent {
public:
    [[nodiscard]] int Count() const override { return static_cast<int>(m_arrIcons.size()); }

    std::vector<CIconGroup> m_arrIcons; ///< in the order of the file
};

} // namespace pelorin
