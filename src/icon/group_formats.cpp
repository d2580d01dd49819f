#include "icon/group_formats.h"

#include "icon/format_search.h"
#include "icon/standard_formats.h"

namespace pelorin {

std::vector<IconFormat> FormatsOf(const CIconGroup& group) {
    std::vector<IconFormat> formats;
    for (const auto& icon : group.m_arrIcons) formats.push_back({icon->m_nWidth, icon->m_nHeight, icon->BitCount()});
    return formats;
}

int FindFormat(const CIconGroup& group, const IconFormat& format) {
    const auto formats = FormatsOf(group);
    const auto found = std::find(formats.begin(), formats.end(), format);
    return found == formats.end() ? -1 : static_cast<int>(found - formats.begin());
}

bool PutFormat(CIconGroup& group, const IconFormat& format, const DibBlock& picture, const MakeFormatOptions& options) {
    const bool macintosh = group.m_nInfo != 0;
    CIconObject object;
    if (!object.SetFormat(format.bits, format.width, format.height, format.bits == 32, macintosh)) return false;
    if (!object.SetImage(picture, options.set)) return false;
    object.m_Stored.m_bCompressed = options.compress && !macintosh && MayBeCompressed(format.width, format.height);
    object.UpdateStored();
    if (const int present = FindFormat(group, format); present >= 0) {
        group.GetIcon(present)->Copy(object.m_Stored);
        return true;
    }
    group.Add(object.m_Stored, options.explorerOrder);
    return true;
}

bool AddFormatFromIcon(CIconGroup& group, const IconFormat& format, int source, const MakeFormatOptions& options) {
    if (FindFormat(group, format) >= 0) return false;
    if (source < 0) source = FindBestSourceFor(FormatsOf(group), format, group.m_nInfo != 0);
    const auto* icon = group.GetIcon(source);
    return icon != nullptr && PutFormat(group, format, CIconObject(*icon, group.m_nInfo != 0).GetDIB32(), options);
}

bool RemoveFormat(CIconGroup& group, const IconFormat& format) {
    const int present = FindFormat(group, format);
    if (present < 0 || group.GetCount() == 1) return false;
    group.m_arrIcons.erase(group.m_arrIcons.begin() + present);
    return true;
}

} // namespace pelorin
