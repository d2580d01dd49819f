#include "cli/icon_input.h"

#include "base/text.h"
#include "cli/run.h"
#include "core/strings.h"
#include "icon/icon_format.h"

#include <fmt/format.h>

#include <algorithm>
#include <tuple>

namespace pelorin::cli {

IconInput OpenIconInput(const std::string& file) {
    IconInput input{FileView::Open(file), nullptr};
    input.source = FindIconSource(input.view.Data(), file == "-" ? kKindNone : GetFileKind(file));
    if (!input.source) throw FileException("this is not a file that carries icons");
    return input;
}

namespace {

constexpr const char* kDamaged = "the file has no icons, an invalid format or is damaged";

IconOutline OutlineOf(CIconGroup& group) {
    IconOutline outline{group.m_strName, group.m_nInfo != 0, {}};
    for (const auto* icon : IconsForDisplay(group)) {
        outline.formats.push_back({{icon->m_nWidth, icon->m_nHeight, icon->ShownBitCount()},
                                   icon->m_nColors,
                                   icon->m_bCompressed,
                                   icon->StoredBytes()});
    }
    return outline;
}

void SortForDisplay(IconOutline& outline) {
    const auto key = [](const IconOutline::Format& f) {
        return std::tuple(-f.format.bits, -f.format.width, -f.format.height);
    };
    std::stable_sort(outline.formats.begin(), outline.formats.end(),
                     [&](const auto& a, const auto& b) { return key(a) < key(b); });
}

// Hands out numbered icons; the first one waits until it is known whether there is a second.
template <class Icon, class Visitor>
class Numbering {
public:
    explicit Numbering(const Visitor& visitor) : m_visitor(visitor) {}

    bool Take(Icon&& icon) {
        if (++m_number == 1) {
            m_first = std::move(icon);
            return true;
        }
        return HandOutFirst(false) && m_visitor(icon, m_number, false);
    }
    void End(bool good) {
        (void)HandOutFirst(good);
        if (!good) throw FileException(kDamaged);
    }

private:
    bool HandOutFirst(bool only) {
        if (!m_first) return true;
        auto first = std::move(*m_first);
        m_first.reset();
        return m_visitor(first, 1, only);
    }

    const Visitor& m_visitor;
    std::optional<Icon> m_first;
    int m_number = 0;
};

} // namespace

void VisitIcons(const IconInput& input, const NumberedIconVisitor& visitor) {
    Numbering<CIconGroup, NumberedIconVisitor> numbering(visitor);
    numbering.End(
        input.source->visit(input.view.Data(), [&](CIconGroup& group) { return numbering.Take(std::move(group)); }));
}

void VisitOutlines(const IconInput& input, const NumberedOutlineVisitor& visitor) {
    const auto take = [&](const IconOutline& icon, int number, bool only) {
        visitor(icon, number, only);
        return true;
    };
    Numbering<IconOutline, decltype(take)> numbering(take);
    const auto file = input.view.Data();
    const auto* source = input.source;
    if (!source->visitLazily) {
        numbering.End(source->visit(file, [&](CIconGroup& group) { return numbering.Take(OutlineOf(group)); }));
        return;
    }
    numbering.End(source->visitLazily(file, [&](const LazyIcon& icon) {
        auto outline = icon.Outline();
        SortForDisplay(outline);
        return numbering.Take(std::move(outline));
    }));
}

std::vector<CVnIcon*> IconsForDisplay(CIconGroup& group) {
    std::vector<CVnIcon*> icons;
    for (const auto index : group.GetDisplayOrder()) icons.push_back(group.GetIcon(static_cast<int>(index)));
    return icons;
}

std::string FormatsText(std::span<const IconFormat> formats, bool macintosh) {
    std::string text;
    for (const auto& format : formats) {
        if (!text.empty()) text += ", ";
        text += fmt::format("{}x{} {}", format.width, format.height, DepthName(format.bits, macintosh));
    }
    return text;
}

std::string NoIconsLine(const std::string& file, const IconSource* source) {
    const bool isProgram = source && IsProgramKind(source->kind);
    return fmt::format("{}  {}\n", Printable(file), isProgram ? LoadText(str::kFileHasNoIcons) : "no icons");
}

std::string SizeTextOf(const IconOutline& icon) {
    return "(" + Counted(icon.formats.size(), "format") + ")";
}

} // namespace pelorin::cli
