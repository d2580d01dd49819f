#include "platform/linux/ini_settings_store.h"
#include "platform/memory/memory_settings_store.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <sys/resource.h>

namespace pelorin {
namespace {

std::string Content(const std::string& path) {
    return std::string(AsText(FileView::Open(path).Data()));
}

TEST(SettingsStore, AnyTextComesBack) {
    const test::TempFolder folder;
    const auto path = folder.Path("deep/er/settings.ini");
    const std::vector<std::string> texts = {"",
                                            "plain",
                                            "C:\\a\\b",
                                            " blanks ",
                                            "two\nlines\r\n",
                                            "\"quoted\"",
                                            "\"",
                                            "\\",
                                            "a\\nb\nc",
                                            "ends with \\\n\\",
                                            "{pathname}|{date}  {time}",
                                            "é€"};
    {
        IniSettingsStore store(path);
        for (std::size_t i = 0; i < texts.size(); ++i) store.Write("s", "k" + std::to_string(i), texts[i]);
        store.Commit();
    }
    const IniSettingsStore store(path);
    for (std::size_t i = 0; i < texts.size(); ++i) EXPECT_EQ(store.Read("s", "k" + std::to_string(i)), texts[i]) << i;
    EXPECT_EQ(store.ReadSection("s").size(), texts.size());
}

TEST(SettingsStore, UnknownKeysSurviveAndAFailedCommitLosesNothing) {
    const test::TempFolder folder;
    const std::string old = "[prefs]\nMystery=1\nJpegQuality=80\n";
    const auto path = folder.File("settings.ini", old);
    IniSettingsStore store(path);
    store.Write("prefs", "JpegQuality", "70");
    EXPECT_EQ(Content(path), old);

    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit tiny{1, limit.rlim_max};
    signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &tiny);
    EXPECT_THROW(store.Commit(), FileException);
    setrlimit(RLIMIT_FSIZE, &limit);
    EXPECT_EQ(Content(path), old);

    store.Commit();
    EXPECT_EQ(Content(path), "[prefs]\nMystery=1\nJpegQuality=70\n");
    EXPECT_EQ(ListFolder(folder.Path()).size(), 1u);
}

TEST(SettingsStore, MemoryFailsOnOrder) {
    MemorySettingsStore store("[a]\nb=1\n");
    store.Write("a", "b", "2");
    store.m_fault.FailCall(2);
    store.Commit();
    store.Write("a", "b", "3");
    EXPECT_THROW(store.Commit(), FileException);
    EXPECT_EQ(store.Committed(), "[a]\nb=2\n");
    store.Commit();
    EXPECT_EQ(store.Committed(), "[a]\nb=3\n");
}

} // namespace
} // namespace pelorin
