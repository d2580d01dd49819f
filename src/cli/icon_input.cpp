#include "cli/icon_input.h"

namespace pelorin::cli {

IconInput OpenIconInput(const std::string& file) {
    IconInput input{FileView::Open(file), nullptr};
    input.source = FindIconSource(input.view.Data(), file == "-" ? kKindNone : GetFileKind(file));
    if (!input.source) throw FileException("this is not a file that carries icons");
    return input;
}

void VisitIcons(const IconInput& input, const NumberedIconVisitor& visitor) {
    // The first icon waits until it is known whether there is a second.
    std::optional<CIconGroup> first;
    int number = 0;
    const bool good = input.source->visit(input.view.Data(), [&](CIconGroup& group) {
        if (++number == 1) {
            first = std::move(group);
            return true;
        }
        if (first) {
            const bool more = visitor(*first, 1, false);
            first.reset();
            if (!more) return false;
        }
        return visitor(group, number, false);
    });
    if (first) visitor(*first, 1, good);
    if (!good) throw FileException("the file has no icons, an invalid format or is damaged");
}

std::vector<CVnIcon*> IconsForDisplay(CIconGroup& group) {
    std::vector<CVnIcon*> icons;
    for (const auto index : group.GetDisplayOrder()) icons.push_back(group.GetIcon(static_cast<int>(index)));
    return icons;
}

std::string DescriptionOf(const CVnIcon& icon, const CIconGroup& group) {
    return FormatDescription(icon.m_nWidth, icon.m_nHeight, icon.ShownBitCount(), group.m_nInfo != 0);
}

} // namespace pelorin::cli
