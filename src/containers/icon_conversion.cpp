#include "containers/icon_conversion.h"

#include "icon/standard_formats.h"

#include <algorithm>

namespace pelorin {

CIconGroup ConvertIcon(const CIconGroup& source, const IconConversion& conversion, std::vector<IconFormat>& lost) {
    const auto present = FormatsOf(source);
    const auto& wanted = conversion.formats.empty() ? present : conversion.formats;
    const auto isWanted = [&](const IconFormat& format) { return std::ranges::count(wanted, format) != 0; };
    const auto fits = [&](const IconFormat& format) {
        return conversion.allows == nullptr || conversion.allows(format);
    };
    // The formats that are made take their pictures from all that the source has.
    CIconGroup icon(source);
    icon.m_nInfo = conversion.macintosh ? 1 : 0;
    for (const auto& format : wanted) {
        const bool there = std::ranges::count(present, format) != 0;
        if (!fits(format) || (!there && !AddFormatFromIcon(icon, format, -1, conversion.making)))
            lost.push_back(format);
    }
    std::erase_if(icon.m_arrIcons, [&](const auto& image) {
        const IconFormat format{image->m_nWidth, image->m_nHeight, image->BitCount()};
        return !isWanted(format) || !fits(format);
    });
    const bool toWindows = source.m_nInfo != 0 && !conversion.macintosh;
    for (const auto& image : icon.m_arrIcons) {
        if (toWindows && image->m_bAlpha && MayBeCompressed(image->m_nWidth, image->m_nHeight))
            image->m_bCompressed = conversion.making.compress;
    }
    icon.Sort(conversion.making.explorerOrder);
    return icon;
}

} // namespace pelorin
