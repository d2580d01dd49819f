// The PE form: the blank DLL with resources put in.
#include "containers/icl_file.h"
#include "containers/icon_resources.h"
#include "containers/pe_icons.h"
#include "core/strings.h"
#include "core/temp_files.h"
#include "formats/program_resources.h"

namespace pelorin {

namespace {

constexpr std::uint16_t kNeutral = 0;
constexpr int kMostIds = 0xFFFF;

/// A file that goes when the work is over.
class TemporaryFile {
public:
    TemporaryFile() : m_path(MakeTempName({}, "tmp")) {}
    ~TemporaryFile() {
        if (!m_path.empty()) DeleteFile(m_path);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    [[nodiscard]] const std::string& Path() const { return m_path; }

private:
    std::string m_path;
};

bool ExtractBlankDll(const std::string& path) {
    return ExtractVnzbResourceToPath("BLANKDLL", path);
}

Bytes NameTable(IconList icons) {
    std::vector<std::string> names;
    for (const auto* icon : icons) names.push_back(icon->m_strName);
    return WriteNameTable(names);
}

/// The two passes: all directories with the numbers that the images will have, then the images.
class LibraryUpdate {
public:
    LibraryUpdate(ResourceUpdater& updater, ResourceUpdate& update, IconList icons)
        : m_updater(updater), m_update(update), m_icons(icons) {}
    ~LibraryUpdate() { ForgetPngFiles(); }
    LibraryUpdate(const LibraryUpdate&) = delete;
    LibraryUpdate& operator=(const LibraryUpdate&) = delete;

    bool PutGroups() {
        int group = 0, image = 0;
        CompressImages(m_icons);
        for (auto* icon : m_icons) {
            std::vector<GroupDirectoryEntry> entries;
            for (auto& format : icon->m_arrIcons) {
                format->m_nResourceId = ++image;
                auto stored = PrepareImage(*format, icon->m_nInfo != 0);
                stored.entry.id = static_cast<std::uint16_t>(image);
                entries.push_back(stored.entry);
            }
            if (++group > kMostIds || image > kMostIds) return false;
            if (!Put(kResourceGroupIcon, group, WriteGroupDirectory(entries))) return false;
        }
        return true;
    }

    LibraryError PutImages(ProgressScope& progress) {
        std::uint64_t done = 0;
        for (auto* icon : m_icons) {
            for (const auto& format : icon->m_arrIcons) {
                const ByteSpan bytes = format->m_bCompressed ? format->m_pPngData : format->m_hImage;
                if (bytes.empty()) return LibraryError::NoImageData;
                const auto size =
                    format->m_bCompressed ? bytes.size() : std::min<std::size_t>(format->m_nBytes, bytes.size());
                if (!Put(kResourceIcon, format->m_nResourceId, bytes.first(size))) return LibraryError::ImageOrNames;
            }
            progress.Step(++done);
        }
        return LibraryError::None;
    }

    bool PutNames() { return Put(kResourceLibraryNames, 1, NameTable(m_icons)); }

private:
    void ForgetPngFiles() {
        for (auto* icon : m_icons) {
            for (auto& image : icon->m_arrIcons) image->m_pPngData = {};
        }
    }

    bool Put(std::uint16_t type, int id, ByteSpan bytes) {
        return m_updater.UpdateResource(m_update, type, static_cast<std::uint16_t>(id), kNeutral, bytes);
    }

    ResourceUpdater& m_updater;
    ResourceUpdate& m_update;
    IconList m_icons;
};

LibraryError PutIcons(const std::string& path, IconList icons, ResourceUpdater& updater, Progress* progress,
                      std::string& reason) {
    auto update = updater.BeginUpdateResource(path, false, &reason);
    if (!update) return LibraryError::NoUpdate;
    ProgressScope scope(progress, LoadText(str::kSaving), icons.size());
    LibraryUpdate work(updater, *update, icons);
    // A failure here leaves the update open: nothing of it is ever written.
    if (!work.PutGroups()) return LibraryError::Group;
    auto error = work.PutImages(scope);
    if (error == LibraryError::None && !work.PutNames()) error = LibraryError::ImageOrNames;
    if (error != LibraryError::None) {
        updater.EndUpdateResource(std::move(update), true);
        return error;
    }
    try {
        if (updater.EndUpdateResource(std::move(update), false, &reason)) return LibraryError::None;
    } catch (const FileException& e) {
        reason = e.what();
    }
    return LibraryError::NotWritten;
}

} // namespace

LibraryError WriteLibraryPe(const std::string& path, IconList icons, ResourceUpdater& updater, Progress* progress,
                            std::string* reason) {
    std::string unwanted;
    auto& because = reason ? *reason : unwanted;
    const TemporaryFile temporary;
    if (temporary.Path().empty()) return LibraryError::NoTemporaryName;
    if (!ExtractBlankDll(temporary.Path())) return LibraryError::NoTemplate;
    if (!icons.empty()) {
        const auto error = PutIcons(temporary.Path(), icons, updater, progress, because);
        if (error != LibraryError::None) return error;
    }
    try {
        WriteFileSafely(path, FileView::Open(temporary.Path()).Data());
    } catch (const FileException& e) {
        because = e.what();
        return LibraryError::NotCopied;
    }
    return LibraryError::None;
}

} // namespace pelorin
