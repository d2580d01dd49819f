#include "containers/program_file.h"

#include "base/files.h"
#include "containers/ne_file.h"
#include "containers/pe_icons.h"
#include "core/strings.h"

namespace pelorin {

namespace {

void WriteImage(Bytes& file, CVnIcon& image) {
    const auto stored = PrepareImage(image, false);
    const auto place = image.m_nFileOffset;
    const bool fits = place != 0 && !stored.bytes.empty() && stored.bytes.size() <= image.m_nFileBytes &&
                      place <= file.size() && image.m_nFileBytes <= file.size() - place;
    if (!fits) throw FileException("an image does not fit the place of the one that it replaces");
    std::copy(stored.bytes.begin(), stored.bytes.end(), file.begin() + static_cast<std::ptrdiff_t>(place));
    image.m_pPngData = {};
}

void RefreshChecksum(Bytes& file) {
    const auto image = PeImage::Parse(file);
    if (!image) return;
    auto* field = file.data() + image->OptionalOffset() + 64;
    StoreU32LE(field, 0);
    PeChecksum sum;
    sum.Add(file);
    StoreU32LE(field, sum.Value());
}

} // namespace

IconResources FindIcons(ByteSpan file, bool canUpdate, Progress* progress) {
    const auto signature = FindExecutableSignature(file);
    if (signature.kind == ExecutableKind::Ne) return FindIconsInNe(file, signature.offset);
    const auto image = PeImage::Parse(file);
    if (!image) return {};
    if (!canUpdate) return FindIconsBySection(*image);
    auto found = FindIconsByTree(*image, progress);
    if (!FindExtraData(*image).empty()) found.mode = ProgramMode::Restricted;
    return found;
}

IconResources FindLibraryIcons(ByteSpan file, Progress* progress) {
    auto found = FindIcons(file, true, progress);
    if (!found.hasNamePlace) found.groups.clear();
    return found;
}

std::vector<std::unique_ptr<CIconGroup>> LoadIcons(const IconResources& found, std::string_view baseName,
                                                   Pixels pixels) {
    // The other ways of reading do not know every group by its number.
    const bool named = found.mode == ProgramMode::Full || found.mode == ProgramMode::Restricted;
    std::vector<std::unique_ptr<CIconGroup>> icons;
    for (const auto& ref : found.groups) {
        auto icon = LoadIcon(ref, pixels);
        if (!icon) continue;
        // A group may go by an empty name; it must not be written under another one.
        if (named && icon->m_strName.empty() && !baseName.empty() && ref.id >= 0) {
            icon->m_strName = FormatText(str::kNumberedIcon, baseName, static_cast<int>(icons.size() + 1));
        }
        icons.push_back(std::move(icon));
    }
    return icons;
}

void WriteIconsInPlace(const std::string& from, const std::string& to, std::span<CIconGroup* const> icons) {
    Bytes file;
    {
        const auto old = FileView::Open(from);
        file.assign(old.Data().begin(), old.Data().end());
    }
    for (auto* icon : icons) {
        for (const auto& image : icon->m_arrIcons) WriteImage(file, *image);
    }
    RefreshChecksum(file);
    SafeFile out(to);
    out.TakeModeOf(from);
    out.Write(file);
    out.Commit();
}

} // namespace pelorin
