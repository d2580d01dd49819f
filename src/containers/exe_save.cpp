// Saving a program file: in place, or by an update of its resources.
#include "containers/exe_doc.h"
#include "containers/pe_icons.h"
#include "containers/program_file.h"
#include "core/services.h"
#include "core/user_prompt.h"

namespace pelorin {

namespace {

constexpr int kNoId = -1;
constexpr int kLastId = 0xFFFF;

/// What a person is told; the numbers are part of the texts.
enum SaveError {
    kErrorBegin = 103,
    kErrorGroup = 104,
    kErrorNoData = 105,
    kErrorImage = 106,
    kErrorNoIcons = 109,
    kErrorNoId = 111,
    kErrorCopy = 113,
};

/// A save under a new name begins as a copy, and this copy stays whatever becomes of the changes.
void LeaveCopy(const std::string& source, const std::string& path) {
    try {
        CopyFileSafely(source, path, Existing::Keep);
    } catch (const FileException&) {
        return; // the save has told its own failure
    }
}

} // namespace

/// The steps between begin and end of an update. Each gives 0 or the number of its error.
class CFileExeDoc::Update {
public:
    Update(CFileExeDoc& document, ResourceUpdate& update) : m_document(document), m_update(update) {}

    int DeleteOrphans() {
        auto living = m_document.m_arrUnreadIds;
        for (const auto& icon : m_document.m_arrIcons) {
            for (const auto& image : icon->m_arrIcons) living.insert(image->m_nResourceId);
        }
        for (const auto& [id, language] : m_document.m_arrIds) {
            if (living.contains(id)) continue;
            if (!Put(kResourceIcon, static_cast<std::uint16_t>(id), language, {})) return kErrorImage;
        }
        return 0;
    }

    /// Numbers for the new images, then the directory, then the images.
    int PutIcon(CIconGroup& icon) {
        for (auto& image : icon.m_arrIcons) {
            if (image->m_nResourceId == kNoId && !GiveId(icon, *image)) return kErrorNoId;
        }
        if (!PutDirectory(icon)) return kErrorGroup;
        for (auto& image : icon.m_arrIcons) {
            if (image->m_nResourceId == kNoId || image->m_nLanguage == kNoId) return kErrorNoId;
            const auto stored = PrepareImage(*image, false);
            if (stored.bytes.empty()) return kErrorNoData;
            const bool put =
                Put(kResourceIcon, static_cast<std::uint16_t>(image->m_nResourceId), image->m_nLanguage, stored.bytes);
            image->m_pPngData = {};
            if (!put) return kErrorImage;
        }
        return 0;
    }

    /// The update will not be written: new images have no numbers again.
    void TakeIdsBack() {
        for (auto* image : m_given) image->m_nResourceId = image->m_nLanguage = kNoId;
    }

    int DeleteGroups() {
        for (const auto& [key, language] : m_document.m_arrDeletedGroups) {
            if (!Put(kResourceGroupIcon, key, language, {})) return kErrorGroup;
        }
        return 0;
    }

    /// Where icons came or went in a library, its names move to the icons' new places.
    int PutNames() {
        auto& old = m_document.m_arrLibraryNames;
        for (const auto& icon : m_document.m_arrIcons) {
            const GroupPlace place(GroupKey(icon->m_nResourceId, icon->m_strResourceName), icon->m_nLanguage);
            const auto known = old.find(place);
            m_names[place] = known == old.end() ? std::string() : known->second;
        }
        const auto same = [](const auto& a, const auto& b) { return a.first == b.first; };
        if (old.empty() || std::ranges::equal(old, m_names, same)) return 0;
        std::vector<std::string> names;
        for (const auto& [place, name] : m_names) names.push_back(name);
        const int language = m_document.m_nNamesLanguage;
        return Put(kResourceLibraryNames, 1, language, WriteNameTable(names)) ? 0 : kErrorImage;
    }

    /// The update was written.
    void TakeNames() {
        if (!m_document.m_arrLibraryNames.empty()) m_document.m_arrLibraryNames = std::move(m_names);
    }

private:
    bool Put(std::uint16_t type, const ResourceKey& name, int language, ByteSpan bytes) {
        return m_document.Updater().UpdateResource(m_update, type, name, static_cast<std::uint16_t>(language), bytes);
    }

    /// The smallest number that no image has, in the language of the icon.
    bool GiveId(const CIconGroup& icon, CVnIcon& image) {
        auto& ids = m_document.m_arrIds;
        // The table is in ascending order, and numbers below the last one given are taken.
        auto at = ids.lower_bound({m_nextId, INT32_MIN});
        for (; at != ids.end() && at->first <= m_nextId; ++at) {
            if (at->first == m_nextId) ++m_nextId;
        }
        if (m_nextId >= kLastId) return false;
        image.m_nResourceId = m_nextId;
        image.m_nLanguage = icon.m_nLanguage;
        ids.emplace(m_nextId, icon.m_nLanguage);
        m_given.push_back(&image);
        return true;
    }

    bool PutDirectory(CIconGroup& icon) {
        std::vector<GroupDirectoryEntry> entries;
        std::set<int> named;
        for (auto& image : icon.m_arrIcons) {
            // One entry stands for the image in all of its languages.
            if (!named.insert(image->m_nResourceId).second) continue;
            entries.push_back(PrepareImage(*image, false).entry);
            entries.back().id = static_cast<std::uint16_t>(image->m_nResourceId);
        }
        const auto key = GroupKey(icon.m_nResourceId, icon.m_strResourceName);
        return Put(kResourceGroupIcon, key, icon.m_nLanguage, WriteGroupDirectory(entries));
    }

    CFileExeDoc& m_document;
    ResourceUpdate& m_update;
    int m_nextId = 1;
    std::vector<CVnIcon*> m_given;
    std::map<GroupPlace, std::string> m_names;
};

bool CFileExeDoc::Fail(const std::string& path, const std::string& suffix) {
    (void)GetServices().prompt->ShowText(str::kErrorSavingChanges, FormatText(str::kErrorSavingChanges, path) + suffix,
                                         PromptIcon::Stop, PromptButtons::Ok);
    return false;
}

bool CFileExeDoc::AskBeforeSave(const std::string& source, bool overItself) {
    auto& prompt = *GetServices().prompt;
    if (overItself && m_pWarnOverwrite && *m_pWarnOverwrite) {
        const auto answer = prompt.AskWhile(*m_pWarnOverwrite, PromptButtons::YesNo, str::kAskOverwriteProgram, source);
        if (answer != PromptAnswer::Yes) return false;
    }
    if (m_bDropSignature || (m_nMode != ProgramMode::Full && m_nMode != ProgramMode::Restricted)) return true;
    bool isSigned = false;
    try {
        const auto file = FileView::Open(source);
        const auto image = PeImage::Parse(file.Data());
        isSigned = image && IsSigned(*image);
    } catch (const FileException&) {
        return true; // the save itself will tell
    }
    if (!isSigned) return true;
    m_bDropSignature = prompt.Ask(PromptButtons::YesNo, str::kAskDropSignature, source) == PromptAnswer::Yes;
    return m_bDropSignature;
}

bool CFileExeDoc::OnSaveDocument(const std::string& path) {
    const auto& source = GetPathName();
    const bool overItself = source.empty() || path == source || SameFile(path, source);
    m_strReason.clear();
    if (!overItself && !EnsureFolder(path)) return false;
    if (!AskBeforeSave(source.empty() ? path : source, overItself)) return false;
    const bool isNew = !overItself && !FileExists(path);
    if (!overItself && !MayCopy(source, path)) return false;
    const auto& from = overItself ? path : source;
    const bool inPlace = m_nMode == ProgramMode::NeFile || m_nMode == ProgramMode::PeWithoutUpdate;
    if (inPlace ? SaveInPlace(from, path) : SaveByUpdate(from, path)) {
        Saved(path);
        return true;
    }
    if (isNew) LeaveCopy(source, path);
    return false;
}

bool CFileExeDoc::MayCopy(const std::string& source, const std::string& path) {
    // The changes are made on the way from the one file to the other; here it only shows whether there is a way.
    try {
        (void)FileView::Open(source, UINT64_MAX);
        const SafeFile target(path);
        return true;
    } catch (const FileException& e) {
        return FailToCopy(path, e);
    }
}

bool CFileExeDoc::FailToCopy(const std::string& path, const FileException& failure) {
    m_strReason = failure.what();
    return Fail(path, FormatText(str::kErrorCode, static_cast<int>(kErrorCopy)));
}

std::vector<CIconGroup*> CFileExeDoc::ChangedIcons() const {
    std::vector<CIconGroup*> changed;
    for (const auto& icon : m_arrIcons) {
        if (icon->m_bChanged) changed.push_back(icon.get());
    }
    return changed;
}

bool CFileExeDoc::SaveInPlace(const std::string& source, const std::string& path) {
    if (!MergeEditors(path)) return false;
    try {
        WriteIconsInPlace(source, path, ChangedIcons());
    } catch (const FileException& e) {
        m_strReason = e.what();
        (void)GetServices().prompt->ShowText(str::kErrorSavingInPlace, FormatText(str::kErrorSavingInPlace, path),
                                             PromptIcon::Stop, PromptButtons::Ok);
        return false;
    }
    return true;
}

bool CFileExeDoc::SaveByUpdate(const std::string& source, const std::string& path) {
    const auto failWith = [&](int error) { return Fail(path, FormatText(str::kErrorCode, error)); };
    if (!m_bComplete) {
        m_strReason = "the file's icons multiply beyond all sense, not all of them were read";
        return failWith(kErrorBegin);
    }
    auto update = Updater().BeginUpdateResource(source, m_bDropSignature, &m_strReason);
    if (!update) return failWith(kErrorBegin);
    update->WriteTo(path);
    if (!MergeEditors(path)) return false;
    if (m_arrIcons.empty()) {
        m_strReason = "a program file keeps at least one icon";
        return failWith(kErrorNoIcons);
    }

    Update steps(*this, *update);
    int error = steps.DeleteOrphans();
    const auto table = m_arrIds;
    RebuildIdTable();
    const auto changed = ChangedIcons();
    update->BeginToWrite();
    CompressImages(changed);
    for (std::size_t i = 0; error == 0 && i < changed.size(); ++i) error = steps.PutIcon(*changed[i]);
    if (error == 0) error = steps.DeleteGroups();
    if (error == 0) error = steps.PutNames();
    const auto takeBack = [&] {
        steps.TakeIdsBack();
        m_arrIds = table;
    };
    if (error != 0) {
        takeBack();
        // A directory that fails leaves the update open; it is never written.
        if (error != kErrorGroup) Updater().EndUpdateResource(std::move(update), true);
        return failWith(error);
    }
    if (!EndUpdate(std::move(update), source != path, path)) {
        takeBack();
        return false;
    }
    steps.TakeNames();
    return true;
}

bool CFileExeDoc::EndUpdate(std::unique_ptr<ResourceUpdate> update, bool isCopy, const std::string& path) {
    try {
        if (Updater().EndUpdateResource(std::move(update), false, &m_strReason) && AppendExtraData(path)) return true;
    } catch (const FileException& e) {
        if (isCopy) return FailToCopy(path, e);
        m_strReason = e.what();
    }
    return Fail(path, LoadText(str::kTrySaveAs));
}

bool CFileExeDoc::AppendExtraData(const std::string& path) {
    if (m_arrExtraData.empty() || Updater().KeepsDataBehindImage()) return true;
    try {
        const auto old = FileView::Open(path);
        SafeFile file(path);
        file.Write(old.Data());
        file.Write(m_arrExtraData);
        file.Commit();
    } catch (const FileException& e) {
        m_strReason = e.what();
        return false;
    }
    return true;
}

void CFileExeDoc::RebuildIdTable() {
    std::set<IdPair> table;
    for (const auto& icon : m_arrIcons) {
        for (const auto& image : icon->m_arrIcons) {
            if (image->m_nResourceId != kNoId) table.emplace(image->m_nResourceId, image->m_nLanguage);
        }
    }
    for (const int id : m_arrUnreadIds) {
        for (auto at = m_arrIds.lower_bound({id, INT32_MIN}); at != m_arrIds.end() && at->first == id; ++at) {
            table.insert(*at);
        }
    }
    m_arrIds = std::move(table);
}

void CFileExeDoc::CountExtraBytes(const std::string& path) {
    try {
        const auto file = FileView::Open(path);
        const auto image = PeImage::Parse(file.Data());
        m_nExtraBytes = image ? FindExtraData(*image).size() : 0;
    } catch (const FileException&) {
        m_nExtraBytes = 0;
    }
}

void CFileExeDoc::Saved(const std::string& path) {
    RebuildIdTable();
    if (m_bDropSignature) CountExtraBytes(path); // the signature was among them
    m_arrDeletedGroups.clear();
    for (const auto& icon : m_arrIcons) icon->m_bChanged = false;
    if (path != GetPathName()) SetPathName(path, true);
    SetModifiedFlag(false);
}

} // namespace pelorin
