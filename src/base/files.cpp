#include "base/files.h"

#include "base/file_error.h"

#include <climits>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace pelorin {

namespace {

[[noreturn]] void Throw(int error) {
    std::array<char, 256> text{};
    throw SystemFileException(strerror_r(error, text.data(), text.size()), error);
}

constexpr std::string_view kSlashes = "/\\";

bool Stat(std::string_view path, struct stat& info) {
    return stat(SystemPath(path).c_str(), &info) == 0;
}

// A descriptor that closes itself.
class Descriptor {
public:
    explicit Descriptor(int fd) : m_fd(fd) {}
    ~Descriptor() {
        if (m_fd > STDERR_FILENO) close(m_fd);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    [[nodiscard]] int Get() const { return m_fd; }

private:
    int m_fd;
};

Bytes ReadAll(int fd, std::uint64_t cap) {
    Bytes bytes;
    for (;;) {
        const auto old = bytes.size();
        bytes.resize(old + std::max<std::size_t>(std::size_t{64} << 10, old / 2));
        const auto got = read(fd, bytes.data() + old, bytes.size() - old);
        if (got < 0 && errno == EINTR) {
            bytes.resize(old);
            continue;
        }
        if (got < 0) Throw(errno);
        bytes.resize(old + static_cast<std::size_t>(got));
        if (got == 0) return bytes;
        if (bytes.size() > cap) throw FileException("the file is too large");
    }
}

void WriteAll(int fd, ByteSpan bytes) {
    while (!bytes.empty()) {
        const auto put = write(fd, bytes.data(), bytes.size());
        if (put < 0 && errno == EINTR) continue;
        if (put < 0) Throw(errno);
        bytes = bytes.subspan(static_cast<std::size_t>(put));
    }
}

// Temporary files of SafeFiles that are on their way. A signal handler walks this, so the slots are plain memory that
// is published by an atomic flag: 0 free, 1 being filled, 2 valid.
struct UnfinishedSlot {
    std::atomic<int> state{0};
    std::array<char, PATH_MAX> path{};
};
std::array<UnfinishedSlot, 64> g_unfinished;

// The slot that was taken; -1 when none is free.
int NoteUnfinished(const std::string& path) {
    for (std::size_t i = 0; i < g_unfinished.size(); ++i) {
        auto& slot = g_unfinished[i];
        int expected = 0;
        if (path.size() < slot.path.size() && slot.state.compare_exchange_strong(expected, 1)) {
            path.copy(slot.path.data(), path.size());
            slot.path[path.size()] = 0;
            slot.state = 2;
            return static_cast<int>(i);
        }
    }
    return -1;
}

void ForgetUnfinished(int slot) {
    if (slot >= 0) g_unfinished[static_cast<std::size_t>(slot)].state = 0;
}

// Follows links, so that a save through a link changes the file that the link means; tells what stands there.
std::string FinalTarget(std::string_view path, struct stat& info, bool& exists) {
    const auto wanted = SystemPath(path);
    exists = lstat(wanted.c_str(), &info) == 0;
    if (!exists || !S_ISLNK(info.st_mode)) return wanted;
    exists = stat(wanted.c_str(), &info) == 0;
    if (char* resolved = realpath(wanted.c_str(), nullptr)) {
        std::string out(resolved);
        std::free(resolved);
        return out;
    }
    return wanted;
}

// The mask can only be read by setting it, which two threads must not do at once.
mode_t ModeForNewFiles() {
    static const mode_t mask = [] {
        const mode_t set = umask(0);
        umask(set);
        return set;
    }();
    return 0666 & ~mask;
}

} // namespace

std::string_view FileNameOf(std::string_view path) {
    const auto slash = path.find_last_of(kSlashes);
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

std::string_view FolderOf(std::string_view path) {
    return path.substr(0, path.size() - FileNameOf(path).size());
}

std::string_view ExtensionOf(std::string_view path) {
    const auto name = FileNameOf(path);
    const auto dot = name.rfind('.');
    return dot == std::string_view::npos ? std::string_view{} : name.substr(dot + 1);
}

std::string_view StemOf(std::string_view path) {
    const auto name = FileNameOf(path);
    return name.substr(0, name.rfind('.'));
}

std::string JoinPath(std::string_view folder, std::string_view name) {
    if (folder.empty() || (!name.empty() && kSlashes.find(name.front()) != std::string_view::npos)) {
        return std::string(name);
    }
    std::string out(folder);
    if (kSlashes.find(out.back()) == std::string_view::npos) out += '/';
    return out.append(name);
}

std::string SystemPath(std::string_view path) {
    std::string out(path);
    if (out.find('\\') == std::string::npos) return out;
    struct stat info;
    if (lstat(out.c_str(), &info) == 0) return out;
    for (auto& c : out) {
        if (c == '\\') c = '/';
    }
    return out;
}

bool FileExists(std::string_view path) {
    struct stat info;
    return Stat(path, info) && !S_ISDIR(info.st_mode);
}

bool PathExists(std::string_view path) {
    struct stat info;
    return Stat(path, info);
}

bool FolderExists(std::string_view path) {
    struct stat info;
    return Stat(path, info) && S_ISDIR(info.st_mode);
}

bool IsReadOnlyFile(std::string_view path) {
    struct stat info;
    return Stat(path, info) && (info.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
}

std::uint64_t FileSize(std::string_view path) {
    struct stat info;
    return Stat(path, info) && S_ISREG(info.st_mode) ? static_cast<std::uint64_t>(info.st_size) : 0;
}

bool SameFile(std::string_view a, std::string_view b) {
    struct stat first, second;
    return Stat(a, first) && Stat(b, second) && first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

std::string CurrentFolder() {
    std::array<char, PATH_MAX> path{};
    return getcwd(path.data(), path.size()) == nullptr ? std::string{} : std::string(path.data());
}

bool CreateFolders(std::string_view path) {
    const auto whole = SystemPath(path);
    if (FolderExists(whole)) return true;
    for (std::size_t at = 0; at != std::string::npos;) {
        at = whole.find('/', at + 1);
        const auto part = whole.substr(0, at);
        if (!part.empty() && mkdir(part.c_str(), 0777) != 0 && errno != EEXIST && !FolderExists(part)) return false;
    }
    return FolderExists(whole);
}

bool DeleteFile(std::string_view path) {
    return unlink(SystemPath(path).c_str()) == 0;
}

std::vector<std::string> ListFolder(std::string_view path) {
    std::vector<std::string> names;
    DIR* folder = opendir(SystemPath(path).c_str());
    if (folder == nullptr) return names;
    while (const dirent* entry = readdir(folder)) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") names.emplace_back(name);
    }
    closedir(folder);
    std::sort(names.begin(), names.end());
    return names;
}

FileView::~FileView() {
    Release();
}

FileView::FileView(FileView&& other) noexcept {
    *this = std::move(other);
}

FileView& FileView::operator=(FileView&& other) noexcept {
    if (this != &other) {
        Release();
        m_mapped = std::exchange(other.m_mapped, false);
        m_copy = std::move(other.m_copy);
        m_data = std::exchange(other.m_data, {});
    }
    return *this;
}

void FileView::Release() {
    if (m_mapped) munmap(const_cast<std::uint8_t*>(m_data.data()), m_data.size());
    m_mapped = false;
    m_data = {};
}

FileView FileView::Open(std::string_view path, std::uint64_t cap) {
    // O_NONBLOCK keeps a pipe without a writer from hanging the open; it has no effect on files.
    const Descriptor file(path == "-" ? STDIN_FILENO
                                      : open(SystemPath(path).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (file.Get() < 0) Throw(errno);
    struct stat info;
    if (fstat(file.Get(), &info) != 0) Throw(errno);
    if (S_ISDIR(info.st_mode)) throw FileException("this is a folder");
    FileView view;
    if (S_ISREG(info.st_mode)) {
        const auto size = static_cast<std::uint64_t>(info.st_size);
        if (size > cap) throw FileException("the file is too large");
        // A small file costs less to read than to map.
        if (size > (64u << 10)) {
            void* base = mmap(nullptr, static_cast<std::size_t>(size), PROT_READ, MAP_PRIVATE, file.Get(), 0);
            if (base != MAP_FAILED) {
                view.m_data = {static_cast<const std::uint8_t*>(base), static_cast<std::size_t>(size)};
                view.m_mapped = true;
                return view;
            }
        }
    } else if (path != "-" && !S_ISFIFO(info.st_mode)) {
        throw FileException("this is not a plain file");
    }
    view.m_copy = ReadAll(file.Get(), cap);
    view.m_data = view.m_copy;
    return view;
}

Bytes ReadFileStart(std::string_view path, std::size_t count) {
    const Descriptor file(open(SystemPath(path).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    Bytes bytes(count);
    std::size_t have = 0;
    while (file.Get() >= 0 && have < count) {
        const auto got = read(file.Get(), bytes.data() + have, count - have);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) break;
        have += static_cast<std::size_t>(got);
    }
    bytes.resize(have);
    return bytes;
}

SafeFile::SafeFile(std::string_view path, Existing existing) : m_existing(existing) {
    struct stat info;
    bool exists = false;
    m_target = FinalTarget(path, info, exists);
    if (exists && S_ISDIR(info.st_mode)) throw FileException("a folder of this name exists");
    if (exists && existing == Existing::Keep) throw FileException("the file exists already");
    // A file that took the place of a device or pipe would be the end of it.
    if (exists && !S_ISREG(info.st_mode)) throw FileException("this is not a plain file");
    if (exists && access(m_target.c_str(), W_OK) != 0) Throw(errno);

    m_temporary = std::string(FolderOf(m_target)) + ".pelorin-XXXXXX";
    m_descriptor = mkostemp(m_temporary.data(), O_CLOEXEC);
    if (m_descriptor < 0) Throw(errno);
    m_unfinished = NoteUnfinished(m_temporary);
    // The owner can only be kept by the superuser; for everybody else it is the same already, or cannot be.
    if (exists && fchown(m_descriptor, info.st_uid, info.st_gid) != 0) errno = 0;
    (void)fchmod(m_descriptor, exists ? info.st_mode & 07777 : ModeForNewFiles());
}

SafeFile::~SafeFile() {
    if (m_descriptor >= 0) close(m_descriptor);
    if (!m_temporary.empty()) {
        unlink(m_temporary.c_str());
        ForgetUnfinished(m_unfinished);
    }
}

void SafeFile::Write(ByteSpan bytes) {
    constexpr std::size_t kBuffer = 256u << 10;
    if (m_buffer.size() + bytes.size() > kBuffer) Flush();
    if (bytes.size() > kBuffer) {
        WriteAll(m_descriptor, bytes);
    } else {
        m_buffer.insert(m_buffer.end(), bytes.begin(), bytes.end());
    }
    m_pos += bytes.size();
}

void SafeFile::Seek(std::uint64_t pos) {
    Flush();
    if (lseek(m_descriptor, static_cast<off_t>(pos), SEEK_SET) < 0) Throw(errno);
    m_pos = pos;
}

void SafeFile::EndHere() {
    Flush();
    if (ftruncate(m_descriptor, static_cast<off_t>(m_pos)) != 0) Throw(errno);
}

void SafeFile::TakeModeOf(std::string_view path) {
    struct stat info;
    if (Stat(path, info)) (void)fchmod(m_descriptor, info.st_mode & 07777);
}

void SafeFile::Flush() {
    WriteAll(m_descriptor, m_buffer);
    m_buffer.clear();
}

void SafeFile::Commit() {
    Flush();
    // The bytes must be on the disk before the name is: a crash in between must not leave an empty file in place of the
    // old one. A new file has nothing to lose.
    if (m_existing == Existing::Replace && FileExists(m_target) && fdatasync(m_descriptor) != 0 && errno != EINVAL)
        Throw(errno);
    const int closed = close(std::exchange(m_descriptor, -1));
    if (closed != 0) Throw(errno);
    if (m_existing == Existing::Keep) {
        // File systems that cannot refuse an existing name get the check alone.
        if (renameat2(AT_FDCWD, m_temporary.c_str(), AT_FDCWD, m_target.c_str(), RENAME_NOREPLACE) == 0) return Done();
        if (errno == EEXIST) throw FileException("the file exists already");
        if (FileExists(m_target)) throw FileException("the file exists already");
    }
    if (rename(m_temporary.c_str(), m_target.c_str()) != 0) Throw(errno);
    Done();
}

void SafeFile::Done() {
    ForgetUnfinished(m_unfinished);
    m_temporary.clear();
}

void WriteFileSafely(std::string_view path, ByteSpan bytes, Existing existing) {
    SafeFile file(path, existing);
    file.Write(bytes);
    file.Commit();
}

void CopyFileSafely(std::string_view from, std::string_view to, Existing existing) {
    const auto source = FileView::Open(from, UINT64_MAX);
    SafeFile file(to, existing);
    file.TakeModeOf(from);
    file.Write(source.Data());
    file.Commit();
}

void WriteStandardOutput(ByteSpan bytes) {
    WriteAll(STDOUT_FILENO, bytes);
}

void RemoveUnfinishedFiles() noexcept {
    for (auto& slot : g_unfinished) {
        if (slot.state == 2) unlink(slot.path.data());
    }
}

} // namespace pelorin
