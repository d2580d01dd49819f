#include "icon/reduce_group.h"

#include "icon/icon_object.h"

#include <set>

namespace pelorin {

void ReduceGroup(CIconGroup& group) {
    constexpr int kAlphaValue = 64, kLargest = 48;
    if (group.GetCount() > 1) {
        std::set<int> kept;
        for (const int size : {16, 32, 48}) kept.insert(group.FindBestValues(size, kAlphaValue));
        for (int i = group.GetCount() - 1; i >= 0; --i) {
            if (!kept.contains(i)) group.m_arrIcons.erase(group.m_arrIcons.begin() + i);
        }
    }
    for (auto& icon : group.m_arrIcons) {
        if (icon->m_nWidth <= kLargest && icon->m_nHeight <= kLargest) continue;
        CIconObject small(32, kLargest, kLargest, true, false);
        if (!small.SetImageOf(CIconObject(*icon, false))) continue;
        small.UpdateStored();
        icon->Copy(small.m_Stored);
    }
    group.Sort();
}

} // namespace pelorin
