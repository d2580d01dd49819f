#include "base/buf_file.h"
#include "base/files.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace pelorin {
namespace {

using test::TempFolder;

std::string ContentOf(const std::string& path) {
    return std::string(AsText(FileView::Open(path).Data()));
}

// Runs `work` in a child with the signals of a shell; its exit code, or -1 when a signal ended it.
template <class Work>
int InChild(Work&& work) {
    const pid_t child = fork();
    if (child == 0) _exit(work());
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(Names, BothSlashes) {
    struct Row {
        const char *path, *folder, *name, *stem, *extension;
    };
    const Row rows[] = {{"a.ico", "", "a.ico", "a", "ico"},
                        {"/x/y.z/a", "/x/y.z/", "a", "a", ""},
                        {"C:\\icons\\a.b.ICO", "C:\\icons\\", "a.b.ICO", "a.b", "ICO"},
                        {"a\\b/c\\.ico", "a\\b/c\\", ".ico", "", "ico"},
                        {"/x/", "/x/", "", "", ""},
                        {"", "", "", "", ""},
                        {"a.", "", "a.", "a", ""}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.path);
        EXPECT_EQ(FolderOf(row.path), row.folder);
        EXPECT_EQ(FileNameOf(row.path), row.name);
        EXPECT_EQ(StemOf(row.path), row.stem);
        EXPECT_EQ(ExtensionOf(row.path), row.extension);
    }
    EXPECT_EQ(JoinPath("a", "b"), "a/b");
    EXPECT_EQ(JoinPath("a\\", "b"), "a\\b");
    EXPECT_EQ(JoinPath("a", "/b"), "/b");
    EXPECT_EQ(JoinPath("", "b"), "b");
}

TEST(Names, ABackslashIsASlashUnlessAFileSaysOtherwise) {
    const TempFolder folder;
    ASSERT_TRUE(CreateFolders(folder.Path("in\\deep")));
    EXPECT_TRUE(FolderExists(folder.Path("in/deep")));
    folder.File("in/deep/a", "slashes");
    EXPECT_EQ(ContentOf(folder.Path("in\\deep\\a")), "slashes");
    WriteFileSafely(folder.Path("in\\deep\\b"), AsBytes("written"));
    EXPECT_TRUE(FileExists(folder.Path("in/deep/b")));
    // A name with a backslash in it is found first.
    FILE* file = std::fopen((folder.Path() + "odd\\name").c_str(), "w");
    ASSERT_NE(file, nullptr);
    std::fputs("odd", file);
    std::fclose(file);
    ASSERT_TRUE(CreateFolders(folder.Path("odd")));
    EXPECT_EQ(ContentOf(folder.Path("odd\\name")), "odd");
}

TEST(SafeFile, KeepsModeAndLink) {
    const TempFolder folder;
    const auto path = folder.File("real", "old");
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    ASSERT_EQ(symlink("real", folder.Path("link").c_str()), 0);
    WriteFileSafely(folder.Path("link"), AsBytes("new"));
    EXPECT_EQ(ContentOf(path), "new");
    struct stat info;
    ASSERT_EQ(lstat(folder.Path("link").c_str(), &info), 0);
    EXPECT_TRUE(S_ISLNK(info.st_mode));
    ASSERT_EQ(stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0640u);
    EXPECT_EQ(ListFolder(folder.Path()), (std::vector<std::string>{"link", "real"})) << "nothing is left over";
}

TEST(SafeFile, WithoutCommitNothingHappens) {
    const TempFolder folder;
    const auto path = folder.File("a", "old");
    {
        SafeFile file(path);
        file.Write(AsBytes("half of the new"));
        EXPECT_EQ(ContentOf(path), "old");
    }
    EXPECT_EQ(ContentOf(path), "old");
    EXPECT_EQ(ListFolder(folder.Path()).size(), 1u);
    EXPECT_THROW(SafeFile(folder.Path("none/a")), FileException);
    EXPECT_THROW(SafeFile(folder.Path()), FileException);
}

TEST(SafeFile, KeepRefusesAnExistingName) {
    const TempFolder folder;
    const auto path = folder.File("a", "old");
    EXPECT_THROW(WriteFileSafely(path, AsBytes("new"), Existing::Keep), FileException);
    // Somebody else is faster.
    SafeFile late(folder.Path("b"), Existing::Keep);
    late.Write(AsBytes("late"));
    folder.File("b", "first");
    EXPECT_THROW(late.Commit(), FileException);
    EXPECT_EQ(ContentOf(folder.Path("b")), "first");
    WriteFileSafely(folder.Path("c"), AsBytes("new"), Existing::Keep);
    EXPECT_EQ(ContentOf(folder.Path("c")), "new");
}

TEST(SafeFile, TakesThePlaceOfPlainFilesOnly) {
    const TempFolder folder;
    ASSERT_EQ(mkfifo(folder.Path("pipe").c_str(), 0600), 0);
    for (const auto& path : {folder.Path("pipe"), folder.Path(), std::string("/dev/null")}) {
        EXPECT_THROW(SafeFile{path}, FileException) << path;
    }
    EXPECT_EQ(ListFolder(folder.Path()).size(), 1u);
}

TEST(SafeFile, KeepLeavesNoTemporaryFile) {
    const TempFolder folder;
    WriteFileSafely(folder.Path("c"), AsBytes("new"), Existing::Keep);
    EXPECT_EQ(ListFolder(folder.Path()), std::vector<std::string>{"c"});
}

TEST(SafeFile, SeeksBackToPatch) {
    const TempFolder folder;
    SafeFile file(folder.Path("a"));
    file.Write(Bytes(300'000, 'x'));
    file.Seek(1);
    file.Write(AsBytes("yz"));
    EXPECT_EQ(file.Pos(), 3u);
    file.Seek(300'000);
    file.Write(AsBytes("!"));
    file.Commit();
    const auto content = ContentOf(folder.Path("a"));
    EXPECT_EQ(content.size(), 300'001u);
    EXPECT_EQ(content.substr(0, 5), "xyzxx");
    EXPECT_EQ(content.back(), '!');
}

TEST(SafeFile, AFullDiskLeavesTheOldFile) {
    const TempFolder folder;
    const auto path = folder.File("a", "old");
    const int code = InChild([&] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{100'000, 100'000};
        setrlimit(RLIMIT_FSIZE, &limit);
        try {
            WriteFileSafely(path, Bytes(1 << 20, 'n'));
        } catch (const FileException&) {
            return 7;
        }
        return 0;
    });
    EXPECT_EQ(code, 7);
    EXPECT_EQ(ContentOf(path), "old");
    EXPECT_EQ(ListFolder(folder.Path()), std::vector<std::string>{"a"});
}

TEST(SafeFile, AKilledProcessLeavesTheOldFile) {
    const TempFolder folder;
    const auto path = folder.File("a", "old");
    EXPECT_EQ(InChild([&] {
                  SafeFile file(path);
                  file.Write(Bytes(1 << 20, 'n'));
                  kill(getpid(), SIGKILL);
                  return 0;
              }),
              -1);
    EXPECT_EQ(ContentOf(path), "old");
    // An interrupt that is handled leaves no temporary file either.
    const TempFolder second;
    EXPECT_EQ(InChild([&] {
                  SafeFile file(second.Path("b"));
                  file.Write(Bytes(1 << 20, 'n'));
                  RemoveUnfinishedFiles();
                  _exit(3);
                  return 0;
              }),
              3);
    EXPECT_TRUE(ListFolder(second.Path()).empty());
}

TEST(FileView, WhatIsNoFile) {
    const TempFolder folder;
    EXPECT_THROW((void)FileView::Open(folder.Path()), FileException);
    EXPECT_THROW((void)FileView::Open(folder.Path("none")), FileException);
    EXPECT_THROW((void)FileView::Open("/dev/zero"), FileException) << "a device without an end";
    EXPECT_THROW((void)FileView::Open(folder.File("a", "12345"), 4), FileException);
    EXPECT_EQ(FileView::Open(folder.Path("a"), 5).Data().size(), 5u);
    EXPECT_TRUE(FileView::Open(folder.File("empty")).Data().empty());
    ASSERT_EQ(mkfifo(folder.Path("pipe").c_str(), 0600), 0);
    EXPECT_TRUE(FileView::Open(folder.Path("pipe")).Data().empty()) << "a pipe without a writer must not hang";
    const auto large = folder.File("large", std::string(200'000, 'm')); // mapped
    auto view = FileView::Open(large);
    const FileView moved = std::move(view);
    EXPECT_EQ(moved.Data().size(), 200'000u);
    EXPECT_EQ(moved.Data()[199'999], 'm');
    EXPECT_EQ(ReadFileStart(large, 3), (Bytes{'m', 'm', 'm'}));
    EXPECT_EQ(ReadFileStart(folder.Path("a"), 100).size(), 5u);
    EXPECT_TRUE(ReadFileStart(folder.Path("none"), 3).empty());
}

TEST(Files, CopiesKeepTheModeAndSameFileSeesThroughLinks) {
    const TempFolder folder;
    const auto from = folder.File("from", "x");
    ASSERT_EQ(chmod(from.c_str(), 0751), 0);
    CopyFileSafely(from, folder.Path("to"));
    struct stat info;
    ASSERT_EQ(stat(folder.Path("to").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0751u);
    ASSERT_EQ(symlink("from", folder.Path("link").c_str()), 0);
    EXPECT_TRUE(SameFile(from, folder.Path("link")));
    EXPECT_FALSE(SameFile(from, folder.Path("to")));
    EXPECT_FALSE(SameFile(folder.Path("none"), folder.Path("none")));
    EXPECT_TRUE(DeleteFile(folder.Path("to")));
    EXPECT_FALSE(DeleteFile(folder.Path("to")));
}

TEST(CBufFile, BytesThenZeros) {
    const TempFolder folder;
    std::string content(CBufFile::kBufferSize + 2, 'a');
    content[CBufFile::kBufferSize] = 'b';
    content[5] = 'c';
    CBufFile file(folder.File("a", content));
    for (std::size_t i = 0; i < CBufFile::kBufferSize; ++i) ASSERT_EQ(file.ReadByte(), content[i]);
    EXPECT_EQ(file.GetPosition(), CBufFile::kBufferSize);
    EXPECT_EQ(file.ReadByte(), 'b');
    EXPECT_EQ(file.ReadByte(), 'a');
    for (std::size_t i = 0; i < 2 * CBufFile::kBufferSize; ++i) ASSERT_EQ(file.ReadByte(), 0);
    file.Seek(5, SeekFrom::Begin);
    EXPECT_EQ(file.ReadByte(), 'c');
    // Reads go past the buffer, which has taken a whole piece.
    Bytes rest(10);
    EXPECT_EQ(file.Read(rest), 0u) << "the piece reached the end";
    file.Seek(-1, SeekFrom::End);
    EXPECT_EQ(file.Read(rest), 1u);
    file.Seek(-99999999, SeekFrom::Current);
    EXPECT_EQ(file.GetPosition(), 0u);
    EXPECT_EQ(file.ReadByte(), 'a');
    EXPECT_THROW(CBufFile(folder.Path("none")), FileException);
}

} // namespace
} // namespace pelorin
