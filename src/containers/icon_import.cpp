#include "containers/icon_import.h"

#include "base/files.h"
#include "base/text.h"
#include "containers/program_file.h"
#include "core/file_kinds.h"
#include "core/strings.h"
#include "icon/icon_sources.h"

namespace pelorin {

namespace {

bool IsMacintoshKind(int kind) {
    return IsMacintoshIconKind(kind) || kind == kKindIcontainer;
}

bool CarriesIcons(int kind) {
    return kind == kKindIco || kind == kKindCur || kind == kKindIconLibrary || IsProgramKind(kind) ||
           IsMacintoshKind(kind);
}

} // namespace

IconGroups LoadIconsOf(const std::string& path, KindBy by) {
    IconGroups icons;
    int kind = GetFileKind(path);
    if (by == KindBy::Name && !CarriesIcons(kind)) return icons;
    const auto file = FileView::Open(path);
    const auto* source = FindIconSource(file.Data(), kind);
    if (by == KindBy::Content && source) kind = source->kind;
    if (!CarriesIcons(kind)) return icons;
    if (IsProgramKind(kind)) return LoadIcons(FindIcons(file.Data()), BaseName(path));
    if (kind == kKindIconLibrary) return LoadIcons(FindLibraryIcons(file.Data()), {});
    if (!source) return icons;
    const auto take = [&](CIconGroup& group) {
        icons.push_back(std::make_unique<CIconGroup>(std::move(group)));
        if (IsMacintoshKind(kind)) icons.back()->m_nInfo = 1;
        return true;
    };
    if (!source->visit(file.Data(), take) && kind == kKindIco) icons.clear();
    return icons;
}

IconGroups ImportIcons(const std::string& path, KindBy by) {
    auto icons = LoadIconsOf(path, by);
    const auto base = path == "-" ? LoadText(str::kDefaultIconName) : RaiseFirstLetter(StemOf(path));
    for (std::size_t i = 0; i < icons.size(); ++i) {
        auto& name = icons[i]->m_strName;
        if (!name.empty()) continue;
        name = icons.size() == 1 ? base : FormatText(str::kNumberedImport, base, static_cast<int>(i + 1));
    }
    return icons;
}

} // namespace pelorin
