// Files and paths: whole-file reads, replacement that never loses the old file, and names.
//
// Paths are UTF-8. Both slashes separate folders; a path is used as it stands where such a file exists.
#pragma once

#include "base/bytes.h"

#include <memory>
#include <stdexcept>

namespace pelorin {

/// A file could not be opened, read or written. `what()` is one line for a person, without the file's name.
class FileException : public std::runtime_error {
public:
    explicit FileException(const std::string& reason) : std::runtime_error(reason) {}
};

// ---- names ----

/// What stands behind the last slash of either kind.
[[nodiscard]] std::string_view FileNameOf(std::string_view path);
/// What stands before the file name, the last slash included; empty when there is none.
[[nodiscard]] std::string_view FolderOf(std::string_view path);
/// What stands behind the last dot of the file name; a dot at the name's start makes an extension too (".ico").
[[nodiscard]] std::string_view ExtensionOf(std::string_view path);
/// The file name without its extension and the dot.
[[nodiscard]] std::string_view StemOf(std::string_view path);
/// Folder and name with one slash between; an absolute name stays as it is.
[[nodiscard]] std::string JoinPath(std::string_view folder, std::string_view name);
/// The path as the system wants it: as it stands where something of that name exists, else with forward slashes.
[[nodiscard]] std::string SystemPath(std::string_view path);

// ---- questions and small deeds ----

[[nodiscard]] bool FileExists(std::string_view path); ///< anything but a folder
[[nodiscard]] bool PathExists(std::string_view path); ///< a file or a folder
[[nodiscard]] bool FolderExists(std::string_view path);
/// True when nobody may write the file.
[[nodiscard]] bool IsReadOnlyFile(std::string_view path);
[[nodiscard]] std::uint64_t FileSize(std::string_view path); ///< 0 when there is none
/// True when both names lead to the same file or folder of the system.
[[nodiscard]] bool SameFile(std::string_view a, std::string_view b);
/// The folder that relative paths start from; empty when it is gone.
[[nodiscard]] std::string CurrentFolder();
/// Makes the folder and those above it; true when it is there afterwards.
bool CreateFolders(std::string_view path);
/// True when a file was there and is gone.
bool DeleteFile(std::string_view path);
/// Names (not paths) in the folder, sorted by bytes; "." and ".." left out; empty when it cannot be listed.
[[nodiscard]] std::vector<std::string> ListFolder(std::string_view path);

// ---- reading ----

/// The largest file that is read or mapped: 1 GiB. Pictures and icons are far smaller; what is larger is not one.
inline constexpr std::uint64_t kMaxFileSize = std::uint64_t{1} << 30;

/// A file's bytes without a copy: mapped where the system can, else read. Movable; the span lives as long as the
/// object.
class FileView {
public:
    FileView() = default;
    ~FileView();
    FileView(FileView&& other) noexcept;
    FileView& operator=(FileView&& other) noexcept;

    /// Throws `FileException`: not there, a folder, not readable, larger than `cap`. "-" is standard input.
    [[nodiscard]] static FileView Open(std::string_view path, std::uint64_t cap = kMaxFileSize);

    [[nodiscard]] ByteSpan Data() const { return m_data; }

private:
    void Release();

    ByteSpan m_data;
    Bytes m_copy;
    bool m_mapped = false;
};

/// The first `count` bytes of a file, fewer when it is shorter; empty when it cannot be read.
[[nodiscard]] Bytes ReadFileStart(std::string_view path, std::size_t count);

// ---- writing ----

enum class Existing {
    Replace, ///< the new file takes the old one's place once it is whole
    Keep,    ///< a file of that name is an error
};

/// A file on its way: written beside its final place and moved there by `Commit`. Until then, and when anything fails
/// or the object goes away, a file of that name stays byte for byte as it was. The mode bits of a replaced file are
/// kept, and a symbolic link stays a link. All members throw `FileException`.
class SafeFile {
public:
    explicit SafeFile(std::string_view path, Existing existing = Existing::Replace);
    ~SafeFile();
    SafeFile(const SafeFile&) = delete;
    SafeFile& operator=(const SafeFile&) = delete;

    void Write(ByteSpan bytes);
    /// Moves to `pos` from the start, to write again what was not yet known.
    void Seek(std::uint64_t pos);
    [[nodiscard]] std::uint64_t Pos() const { return m_pos; }
    /// Cuts off what was written behind this place.
    void EndHere();
    /// Gives the file the mode bits of another one, in place of those that it has by itself. No failure when it cannot.
    void TakeModeOf(std::string_view path);
    /// Flushes to the disk and takes the final name.
    void Commit();

private:
    void Flush();
    void Done();

    std::string m_target;
    std::string m_temporary;
    Existing m_existing;
    int m_descriptor = -1;
    int m_unfinished = -1; ///< place among the files that an interrupt removes
    std::uint64_t m_pos = 0;
    Bytes m_buffer;
};

/// `SafeFile` with one write.
void WriteFileSafely(std::string_view path, ByteSpan bytes, Existing existing = Existing::Replace);

/// Copies a file with its mode bits; the copy is a `SafeFile`.
void CopyFileSafely(std::string_view from, std::string_view to, Existing existing = Existing::Replace);

/// Writes everything to standard output.
void WriteStandardOutput(ByteSpan bytes);

/// Removes the temporary files of all `SafeFile`s that are on their way; for the handler of an interrupt. Uses only
/// what a signal handler may use.
void RemoveUnfinishedFiles() noexcept;

} // namespace pelorin
