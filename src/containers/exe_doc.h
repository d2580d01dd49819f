// The document of a program file: its icons, and how far they can be changed.
#pragma once

#include "containers/icon_container_doc.h"
#include "containers/icon_resources.h"
#include "containers/resource_update.h"

#include <map>
#include <set>

namespace pelorin {

class CFileExeDoc final : public CIconContainerDoc {
public:
    using CIconContainerDoc::CIconContainerDoc;

    /// Tells the person when the file has no icons, and is not opened then.
    [[nodiscard]] bool OnOpenDocument(const std::string& path) override;
    /// Writes the changed icons into the file, or, for another path, into a copy of it.
    [[nodiscard]] bool OnSaveDocument(const std::string& path) override;
    void DeleteContents() override;
    [[nodiscard]] ContainerKind GetContainerKind() const override { return ContainerKind::Program; }
    [[nodiscard]] std::string CellDescription(int index) const override;
    /// A cell without a name goes by "%s %03d" of the file's name.
    [[nodiscard]] std::string ExportName(int index) const override;

    [[nodiscard]] ProgramMode GetMode() const { return m_nMode; }
    /// From restricted to full mode; there is no way back.
    void OpenInFullMode();
    /// Once a document: explains restricted mode and lets the person choose, or tells that icons can only be replaced.
    void ShowModeNotice();

    /// The images of `icon` take the place of those of the cell, which keeps its name and resource. False, after
    /// telling the person, when the mode does not allow it.
    bool ReplaceIcon(int index, const CIconGroup& icon);
    /// Takes icons out in full mode; false in all others.
    bool RemoveIcons(const std::vector<int>& positions);
    /// A new icon under a number or a name, which is written in capitals, the only letters that loaders look for. False
    /// outside full mode.
    bool AddIcon(const CIconGroup& icon, ResourceKey key, int language);
    /// The place of the icon of this number or name, whatever the case of its letters, in the language or the first one
    /// that has it; -1: none.
    [[nodiscard]] int FindGroup(const ResourceKey& key, std::optional<int> language = {}) const;
    /// The smallest number that no group has.
    [[nodiscard]] int FreeGroupId() const;

    /// Bytes behind the image that are kept.
    [[nodiscard]] std::size_t GetExtraBytes() const { return m_nExtraBytes; }

    /// With `Pixels::None` icons can be replaced, added and removed, but not shown: set before the file is opened.
    Pixels m_pixels = Pixels::All;
    bool m_bMayBeEmpty = false; ///< a file without icons is opened as well, to add the first
    bool m_bCanUpdate = true;   ///< false: a system that cannot update resources
    /// The setting by which a save over the file itself is asked about first; the person can turn it off. Null: never.
    bool* m_pWarnOverwrite = nullptr;
    bool m_bDropSignature = false;         ///< set by the caller, or by the person's answer
    ResourceUpdater* m_pUpdater = nullptr; ///< null: the document's own

protected:
    [[nodiscard]] int EditWindowsQuestion() const override;
    [[nodiscard]] bool MayTake(const CIconGroup& cell, const CIconGroup& icon) override;

private:
    using IdPair = std::pair<int, int>;
    class Update;

    [[nodiscard]] ResourceUpdater& Updater() { return m_pUpdater ? *m_pUpdater : m_updater; }
    [[nodiscard]] bool AskBeforeSave(const std::string& source, bool overItself);
    [[nodiscard]] std::vector<CIconGroup*> ChangedIcons() const;
    [[nodiscard]] bool SaveInPlace(const std::string& source, const std::string& path);
    [[nodiscard]] bool SaveByUpdate(const std::string& source, const std::string& path);
    [[nodiscard]] bool EndUpdate(std::unique_ptr<ResourceUpdate> update, bool isCopy, const std::string& path);
    [[nodiscard]] bool AppendExtraData(const std::string& path);
    [[nodiscard]] bool MayCopy(const std::string& source, const std::string& path);
    [[nodiscard]] bool FailToCopy(const std::string& path, const FileException& failure);
    [[nodiscard]] bool Fail(const std::string& path, const std::string& suffix);
    /// Images that icons name and that turned out to be damaged must not be taken for orphans.
    void KeepUndecoded(const IconResources& found);
    void RebuildIdTable();
    void KeepLibraryNames(const IconResources& found);
    void CountExtraBytes(const std::string& path);
    void Saved(const std::string& path);

    ResourceUpdater m_updater;
    ProgramMode m_nMode = ProgramMode::Full;
    bool m_bNoticeShown = false, m_bComplete = true;
    std::set<IdPair> m_arrIds;
    std::set<int> m_arrUnreadIds, m_arrUnreadGroupIds;
    using GroupPlace = std::pair<ResourceKey, int>; ///< key and language
    std::vector<GroupPlace> m_arrDeletedGroups;
    /// The names of a library's table, which goes by the order of the groups; empty: no such table, or not all of the
    /// groups are known.
    std::map<GroupPlace, std::string> m_arrLibraryNames;
    int m_nNamesLanguage = 0;
    std::size_t m_nExtraBytes = 0;
    Bytes m_arrExtraData; ///< only when the updater does not keep it
};

} // namespace pelorin
