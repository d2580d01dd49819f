// The kinds of media files as the system and this program know them: extensions, the program that opens them, and what
// the system had before this program changed it. Kept in "MediaFiles.vnd":
//
//   string  "VNPL"
//   u32     count
//   count x { u32 kind; u32 extensions; that many strings;
//             current:  strings class, description, icon file; u32 icon index; strings edit command, open command
//             wanted:   strings class, description, icon file; u32 icon index; string open command
//             saved:    strings class, description, icon file; u32 icon index; strings edit command, open command }
//
// Strings and numbers are those of `ArchiveWriter`.
#pragma once

#include "base/archive.h"
#include "core/file_kinds.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace pelorin {

class FileAssociations;

/// The name of a file's kind: "Windows Icon File"; "<undefined>" for an unknown one.
[[nodiscard]] std::string GetTypeName(std::string_view path);
/// Number of the picture shown for the file; 100 for an unknown or empty one.
[[nodiscard]] int GetFileResource(std::string_view path);
/// The group of the file, and its kind where it is wanted.
[[nodiscard]] FileGroup GetFileGroup(std::string_view path, FileKind* kind = nullptr);

class CMediaType {
public:
    CMediaType() = default;
    /// A built-in type: reads what the system has, keeps it as the saved association, and makes the wanted one.
    CMediaType(FileKind kind, std::string extension, int iconIndex, const FileAssociations* system,
               const std::string& programFile);

    int m_nKind = 0;
    std::vector<std::string> m_arrExtensions; ///< without the dot; the first is the main one
    std::uint32_t m_nFlags = 0;               ///< not stored

    // As the system has it now.
    std::string m_strClass, m_strDescription, m_strIconFile;
    int m_nIconIndex = -1;
    std::string m_strEditCommand, m_strOpenCommand;

    // What this program sets.
    std::string m_strWantedClass, m_strWantedDescription, m_strWantedIconFile;
    int m_nWantedIconIndex = -1;
    std::string m_strWantedOpenCommand;

    // What the system had before.
    std::string m_strSavedClass, m_strSavedDescription, m_strSavedIconFile;
    int m_nSavedIconIndex = -1;
    std::string m_strSavedEditCommand, m_strSavedOpenCommand;

    void Serialize(ArchiveWriter& ar) const;
    /// Throws `ArchiveException`.
    void Serialize(ArchiveReader& ar);

    /// Reads the association of the main extension into the current fields. Without a system they are empty.
    void ReadSystem(const FileAssociations* system);
    /// Makes the wanted association the system's, for every extension. False when the system refused a part of it.
    bool WriteSystem(FileAssociations& system) const;
    /// Whether the system's open command, icon file and class are the wanted ones, letters compared without case.
    [[nodiscard]] bool IsOurs() const;
};

class CMediaTypeTable {
public:
    /// `folder` ends with a slash and holds the file; `system` may be null. Both live longer than the table.
    void SetPlace(std::string folder, const FileAssociations* system, std::string programFile);

    /// Reads the file, then makes the built-in types that are missing. A file that is missing or bad is no error.
    void LoadMediaTypes();
    /// Throws `FileException`.
    void SaveMediaTypes() const;
    [[nodiscard]] bool FindMediaType(int kind) const { return GetMediaType(kind) != nullptr; }
    /// Null when the table does not have the kind.
    [[nodiscard]] const CMediaType* GetMediaType(int kind) const;
    [[nodiscard]] const std::vector<CMediaType>& GetTypes() const { return m_arrTypes; }

    /// Whether icons, Macintosh icons and icon libraries are all opened by this program.
    [[nodiscard]] bool AreAssociationsOurs() const;
    /// Takes the types over, those that are wanted, and keeps the table. False when the system refused. Throws
    /// `FileException`.
    bool Associate(FileAssociations& system, bool icons, bool macIcons, bool libraries);

    /// The bytes of the file, and the types in such bytes. Reading keeps what came before the first bad byte.
    [[nodiscard]] static Bytes Write(const std::vector<CMediaType>& types);
    [[nodiscard]] static std::vector<CMediaType> Read(ByteSpan file);

private:
    [[nodiscard]] std::string FilePath() const;
    void AddBuiltInTypes();

    std::string m_folder;
    std::string m_programFile;
    const FileAssociations* m_system = nullptr;
    std::vector<CMediaType> m_arrTypes;
};

} // namespace pelorin
