#include "icon/icon_doc.h"

#include "base/files.h"
#include "base/text.h"
#include "core/services.h"
#include "core/settings.h"
#include "core/temp_files.h"
#include "core/user_prompt.h"
#include "icon/format_search.h"
#include "icon/icon_file_forms.h"
#include "icon/standard_formats.h"

#include <utility>

namespace pelorin {

namespace {

template <class List>
auto AtOr(const List& list, int index, const typename List::value_type& other) {
    return index >= 0 && static_cast<std::size_t>(index) < list.size() ? list[static_cast<std::size_t>(index)] : other;
}

bool CompressesNew(const IconFormat& format, bool macintosh) {
    return !macintosh && MayBeCompressed(format.width, format.height) && g_bCompressVista256x256NewIcon;
}

} // namespace

IconFormat NewIconFormat(bool macintosh) {
    const Size free{g_nNewIconWidth, g_nNewIconHeight};
    const auto size = macintosh ? AtOr(OfferedSizes(true), g_nNewMacIconSize, OfferedSizes(true)[0])
                                : AtOr(OfferedSizes(false), g_nNewIconSize, free);
    const int bits = AtOr(OfferedDepths(macintosh), macintosh ? g_nNewMacIconColors : g_nNewIconColors, 32);
    const IconFormat format{size.width, size.height, bits};
    switch (CheckFormat(format, macintosh)) {
    case FormatRule::Allowed: return format;
    case FormatRule::NoAlpha: return {size.width, size.height, 8};
    default: return {size.width, size.height, 32};
    }
}

FromImageOptions StoredFromImageOptions(bool macintosh) {
    FromImageOptions options;
    options.macintosh = macintosh;
    const auto table = StandardFormats(macintosh);
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (macintosh ? g_arrCreateFormatFromImageMac[i] : g_arrCreateFormatFromImage[i])
            options.formats.push_back(table[i]);
    }
    options.dither = g_bApplyDitheringToCreateIconFromImage;
    if (g_bUseTransparentColorToCreateIconFromImage) options.key = g_crUseTransparentColorToCreateIconFromImageValue;
    options.filter = {g_bApplyFilterToCreateIconFromImage, g_nApplyFilterToCreateIconFromImageValue};
    options.compress = g_bCompressVista256x256NewIcon;
    return options;
}

// ---- new and open ----

bool CIconDoc::OnNewDocument() {
    if (!CDocument::OnNewDocument()) return false;
    const auto content = std::exchange(m_content, nullptr);
    NewIconContent plain;
    plain.macintosh = m_bMacintosh;
    auto* wanted = dynamic_cast<NewIconContent*>(content.get());
    if (wanted == nullptr) wanted = &plain;
    m_bMacintosh = wanted->macintosh;
    if (!wanted->path.empty()) SetPathName(wanted->path, false);
    if (wanted->embedded) {
        MakeEmbedded(*wanted->embedded);
    } else {
        MakeNewFormats(*wanted);
    }
    return !m_arrFormats.empty();
}

void CIconDoc::MakeEmbedded(EmbeddedIcon& embedded) {
    m_pContainerDoc = embedded.container;
    m_nEmbeddedIndex = embedded.index;
    m_strEmbeddedName = embedded.icon.GetShownName();
    SetFromGroup(embedded.icon);
    const bool librarian = m_pContainerDoc->GetContainerKind() == ContainerKind::Librarian;
    SetTitle(FormatText(librarian ? str::kTitleFromLibrarian : str::kTitleEmbedded, m_strEmbeddedName,
                        m_pContainerDoc->GetContainerName()));
}

void CIconDoc::MakeNewFormats(NewIconContent& content) {
    if (!content.templateRows.empty()) {
        (void)MakeRows(std::move(content.templateRows));
    } else if (content.single) {
        (void)AppendFormat(*content.single, content.picture);
        SetModifiedFlag(static_cast<bool>(content.picture));
    } else if (content.picture) {
        content.fromImage.macintosh = m_bMacintosh;
        m_arrFormats = CreateFormats(content.picture, content.fromImage, GetServices().progress);
        SetModifiedFlag(!m_arrFormats.empty());
    }
    // No icon is without a format.
    if (m_arrFormats.empty()) (void)AppendFormat(NewIconFormat(m_bMacintosh), {});
    SortForDisplay(m_arrFormats);
}

bool CIconDoc::OnOpenDocument(const std::string& path) {
    if (path.empty()) return true;
    m_bLoadError = false;
    m_strFilePath = path;
    const auto kind = GetFileKind(path);
    m_bMacintosh = IsMacintoshIconKind(kind);
    const auto content = std::exchange(m_content, nullptr);
    if (auto* icons = dynamic_cast<IconGroupsContent*>(content.get()); icons != nullptr && !icons->m_groups.empty()) {
        DeleteContents();
        SetFromGroup(icons->m_groups.front());
        SetModifiedFlag(false);
    } else if (!CDocument::OnOpenDocument(path)) {
        return false;
    }
    g_strCurrentOpenDirectory = std::string(FolderOf(path));
    return true;
}

bool CIconDoc::Load(ByteSpan file) {
    const auto* form = FindIconFileForm(GetFileKind(m_strFilePath));
    if (form == nullptr) form = FindIconFileForm(kKindIco);
    std::vector<CIconGroup> groups;
    m_bLoadError = !form->read(file, groups) || groups.empty();
    if (m_bLoadError) {
        GetServices().prompt->Tell(PromptIcon::Stop, str::kErrorReadingIcon);
        return false;
    }
    SetFromGroup(groups.front());
    return true;
}

void CIconDoc::SetPathName(const std::string& path, bool addToRecent) {
    m_bTemporaryOpen = !g_szTempFolder.empty() && path.starts_with(g_szTempFolder);
    CDocument::SetPathName(path, addToRecent && !m_bTemporaryOpen);
    if (m_bTemporaryOpen) SetTitle(std::string(StemOf(path)));
}

// ---- formats ----

CIconObject* CIconDoc::GetFormat(int index) const {
    return index >= 0 && index < GetFormatCount() ? m_arrFormats[static_cast<std::size_t>(index)].get() : nullptr;
}

std::vector<IconFormat> CIconDoc::Formats() const {
    std::vector<IconFormat> formats;
    for (const auto& object : m_arrFormats) formats.push_back(object->Format());
    return formats;
}

int CIconDoc::FindFormat(const IconFormat& format) const {
    for (int i = 0; i < GetFormatCount(); ++i) {
        if (GetFormat(i)->Format() == format) return i;
    }
    return -1;
}

bool CIconDoc::AppendFormat(const IconFormat& format, const DibBlock& picture) {
    auto object = std::make_unique<CIconObject>();
    if (!object->SetFormat(format.bits, format.width, format.height, format.bits == 32, m_bMacintosh)) return false;
    SetImageOptions options;
    options.macPalette = m_bMacintosh;
    options.dither = g_bDitheringWhileCopyNewformatIcon;
    if (picture && !object->SetImage(picture, options)) return false;
    object->m_Stored.m_bCompressed = CompressesNew(format, m_bMacintosh);
    m_arrFormats.push_back(std::move(object));
    return true;
}

bool CIconDoc::AddFormat(const IconFormat& format, int copyFrom, bool dither) {
    if (FindFormat(format) >= 0 || !AppendFormat(format, {})) return false;
    if (const auto* source = GetFormat(copyFrom)) {
        SetImageOptions options;
        options.macPalette = m_bMacintosh;
        options.dither = dither;
        (void)m_arrFormats.back()->SetImageOf(*source, options);
    }
    SortForDisplay(m_arrFormats);
    SetModifiedFlag();
    return true;
}

int CIconDoc::AddFormatAsked(IconFormat format, int copyFrom) {
    auto& prompt = *GetServices().prompt;
    const auto switchToAlpha = [&](int text) {
        const bool yes = prompt.Ask(PromptButtons::YesNo, text) == PromptAnswer::Yes;
        if (yes) format.bits = 32;
        return yes;
    };
    switch (CheckFormat(format, m_bMacintosh)) {
    case FormatRule::Allowed: break;
    case FormatRule::OnlyAlpha128:
        if (!switchToAlpha(str::kFormatMac128)) return -1;
        break;
    case FormatRule::OnlyAlpha256:
        if (!switchToAlpha(str::kFormatMac256)) return -1;
        break;
    case FormatRule::OnlyAlpha512:
        if (!switchToAlpha(str::kFormatMac512)) return -1;
        break;
    case FormatRule::NoAlpha: prompt.Tell(PromptIcon::Warning, str::kFormatMacMini); return -1;
    }
    if (const int present = FindFormat(format); present >= 0) {
        prompt.Tell(PromptIcon::Warning, str::kFormatExists, GetFormat(present)->m_strDescription);
        return present;
    }
    return AddFormat(format, copyFrom, g_bDitheringWhileCopyNewformatIcon) ? FindFormat(format) : -1;
}

int CIconDoc::MakeRows(std::vector<FormatRow> rows) {
    int made = 0;
    const auto add = [&](const IconFormat& format, const DibBlock& picture) {
        if (FindFormat(format) < 0 && AppendFormat(format, picture)) ++made;
    };
    for (const auto& row : rows) {
        if (row.picture) add(row.format, row.picture);
    }
    // What the icon has by now lends its pictures; formats made here from others do not.
    const auto sources = Formats();
    for (const auto& row : rows) {
        if (row.picture) continue;
        const auto* source = GetFormat(FindBestSourceFor(sources, row.format, m_bMacintosh));
        add(row.format, source != nullptr ? source->GetDIB32() : DibBlock());
    }
    return made;
}

int CIconDoc::AddSeveralFormats(std::vector<FormatRow> rows) {
    const int made = MakeRows(std::move(rows));
    if (m_arrFormats.empty()) (void)AppendFormat(NewIconFormat(m_bMacintosh), {});
    SortForDisplay(m_arrFormats);
    if (made > 0) SetModifiedFlag();
    return made;
}

bool CIconDoc::RemoveFormat(int index) {
    if (GetFormat(index) == nullptr || GetFormatCount() == 1) return false;
    m_arrFormats.erase(m_arrFormats.begin() + index);
    SetModifiedFlag();
    return true;
}

bool CIconDoc::SetCompressed(int index, bool compressed) {
    auto* object = GetFormat(index);
    if (object == nullptr) return false;
    if (compressed && !MayBeCompressed(object->m_nWidth, object->m_nHeight)) {
        GetServices().prompt->Tell(PromptIcon::Warning, str::kCompressionTooSmall);
        return false;
    }
    if (object->m_Stored.m_bCompressed != compressed) SetModifiedFlag();
    object->m_Stored.m_bCompressed = compressed;
    return true;
}

CIconGroup CIconDoc::MakeGroup() {
    auto group = GroupOf(m_arrFormats, g_bWinExplorerCompatibleOrder);
    group.m_strName = m_pContainerDoc != nullptr ? m_strEmbeddedName : std::string(StemOf(GetTitle()));
    group.m_nInfo = m_bMacintosh ? 1 : 0;
    group.m_bChanged = true;
    return group;
}

void CIconDoc::SetFromGroup(const CIconGroup& group) {
    DeleteFormats();
    for (const auto& icon : group.m_arrIcons)
        m_arrFormats.push_back(std::make_unique<CIconObject>(*icon, m_bMacintosh));
    SortForDisplay(m_arrFormats);
}

} // namespace pelorin
