#include "platform/linux/linux_doors.h"
#include "platform/linux/mime_associations.h"
#include "platform/linux/socket_instance.h"
#include "platform/memory/memory_settings_store.h"
#include "platform/stored_registry.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <map>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace pelorin {
namespace {

// The environment as it was when the test ends.
class EnvironmentScope {
public:
    void Set(const std::string& name, const std::string& value) {
        if (!m_old.contains(name)) m_old[name] = Environment(name.c_str());
        setenv(name.c_str(), value.c_str(), 1);
    }
    ~EnvironmentScope() {
        for (const auto& [name, value] : m_old) {
            if (value.empty()) {
                unsetenv(name.c_str());
            } else {
                setenv(name.c_str(), value.c_str(), 1);
            }
        }
    }

private:
    std::map<std::string, std::string> m_old;
};

TEST(LinuxFolders, FollowTheEnvironment) {
    const test::TempFolder home;
    EnvironmentScope environment;
    environment.Set("HOME", home.Path());
    environment.Set("XDG_CONFIG_HOME", home.Path("cfg"));
    environment.Set("XDG_DATA_HOME", "relative/is/ignored");
    environment.Set("XDG_CACHE_HOME", "");
    environment.Set("TMPDIR", "");
    const LinuxStandardFolders folders;
    EXPECT_EQ(folders.Config(), home.Path("cfg/"));
    EXPECT_EQ(folders.Data(), home.Path(".local/share/"));
    EXPECT_EQ(folders.LocalData(), home.Path(".cache/"));
    EXPECT_EQ(folders.Temp(), "/tmp/");
    EXPECT_EQ(folders.Documents(), home.Path("Documents/"));
    CreateFolders(home.Path("cfg"));
    home.File("cfg/user-dirs.dirs", "# made by a tool\nXDG_DOCUMENTS_DIR=\"$HOME/Papers\"\n");
    EXPECT_EQ(folders.Documents(), home.Path("Papers/"));
    EXPECT_TRUE(FolderExists(folders.Program()));
}

TEST(LinuxLocale, TheFirstVariableSetDecides) {
    EnvironmentScope environment;
    environment.Set("LC_ALL", "");
    environment.Set("LC_MESSAGES", "pt_BR.UTF-8");
    environment.Set("LANG", "de");
    EXPECT_EQ(LinuxLocale().PrimaryLanguage(), 0x16);
    EXPECT_EQ(PrimaryLanguageOf("sr@latin"), 0x1A);
    EXPECT_EQ(PrimaryLanguageOf("C.UTF-8"), 0);
    EXPECT_EQ(PrimaryLanguageOf(""), 0);
}

TEST(LinuxLauncher, CommandLines) {
    using Words = std::vector<std::string>;
    EXPECT_EQ(SplitCommand("\"/opt/my viewer\" -f %1 --x", "/a b"), (Words{"/opt/my viewer", "-f", "/a b", "--x"}));
    EXPECT_EQ(SplitCommand("view \"%1\"", "a\"b $(c)"), (Words{"view", "a\"b $(c)"}));
    EXPECT_EQ(SplitCommand("view  --file=%1", "x"), (Words{"view", "--file=x"}));
    EXPECT_EQ(SplitCommand("view", "x"), (Words{"view", "x"}));
    EXPECT_EQ(SplitCommand("\"\" %1", "x"), (Words{"", "x"}));
    EXPECT_TRUE(SplitCommand("  ", "x").empty());
    EXPECT_FALSE(StartProgram({"/no/such/program"}));
    EXPECT_EQ(RunProgram({"sh", "-c", "exit 3"}), 3);
    EXPECT_EQ(RunProgram({"/no/such/program"}), -1);

    const test::TempFolder folder;
    EXPECT_TRUE(LinuxLauncher().Run("touch \"%1\"", folder.Path("started here")));
    for (int i = 0; i < 200 && !FileExists(folder.Path("started here")); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_TRUE(FileExists(folder.Path("started here")));
}

TEST(SocketInstance, TheWholeCommandLineArrives) {
    const test::TempFolder folder;
    const CommandLine sent = {"/a b.ico", "", std::string(100'000, 'x'), "é\n"};
    {
        SocketInstance first(folder.Path("run"));
        ASSERT_TRUE(first.Claim());
        EXPECT_TRUE(first.Claim());
        EXPECT_GE(first.Descriptor(), 0);
        EXPECT_TRUE(first.Receive().empty());
        const pid_t child = fork();
        if (child == 0) {
            SocketInstance second(folder.Path("run"));
            _exit(!second.Claim() && second.HandOver(sent) && second.HandOver({}) ? 0 : 1);
        }
        std::vector<CommandLine> received;
        for (int i = 0; i < 500 && received.size() < 2; ++i) {
            for (auto& arguments : first.Receive()) received.push_back(std::move(arguments));
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
        ASSERT_EQ(received.size(), 2u);
        EXPECT_EQ(received[0], sent);
        EXPECT_EQ(received[1], CommandLine{""});
    }
    // A socket of a process that is gone keeps nobody out.
    folder.File("run/pelorin.sock", "stale");
    SocketInstance next(folder.Path("run"));
    EXPECT_TRUE(next.Claim());
    SocketInstance other(folder.Path("elsewhere"));
    EXPECT_FALSE(other.HandOver({"x"}));
}

class Mime : public testing::Test {
protected:
    void SetUp() override {
        for (const char* path : {"sys/mime/image", "sys/applications", "cfg", "data"}) CreateFolders(root.Path(path));
        root.File("sys/mime/globs2",
                  "# made by a tool\n50:image/gif:*.gif\n50:image/x-icon:*.ICO\n10:image/other:*.gif\n"
                  "50:text/x-make:makefile\n");
        root.File("sys/mime/image/gif.xml",
                  "<mime-type><comment xml:lang=\"de\">Bild</comment>\n<comment>A &lt;GIF&gt; &amp; "
                  "more</comment></mime-type>");
        root.File("sys/applications/viewer.desktop",
                  "[Desktop Entry]\nExec=viewer --new %U %i\nIcon=viewer\n[Desktop Action edit]\nExec=editor %f\n");
        root.File("sys/applications/mimeinfo.cache", "[MIME Cache]\nimage/gif=gone.desktop;viewer.desktop;\n");
    }
    test::TempFolder root;
    MimeAssociations mime{{root.Path("cfg/"), root.Path("data/"), {}, {root.Path("sys/")}}};
};

TEST_F(Mime, ReadsWhatTheDesktopHas) {
    EXPECT_EQ(mime.ClassOf("GIF"), "image/gif");
    EXPECT_EQ(mime.ClassOf("ico"), "image/x-icon");
    EXPECT_EQ(mime.ClassOf("makefile"), "");
    const auto facts = mime.Read("image/gif");
    EXPECT_EQ(facts.description, "A <GIF> & more");
    EXPECT_EQ(facts.openCommand, "viewer --new %1");
    EXPECT_EQ(facts.editCommand, "editor %1");
    EXPECT_EQ(facts.defaultIcon, "viewer");
    EXPECT_EQ(mime.Read("image/x-icon").openCommand, "");
    EXPECT_EQ(mime.Read("../../etc/passwd").openCommand, "");
}

TEST_F(Mime, WhatIsWrittenIsReadAndNobodyElsesEntryChanges) {
    const auto before = ReadFileStart(root.Path("sys/applications/viewer.desktop"), 1000);
    root.File("cfg/mimeapps.list",
              "[Default Applications]\ntext/plain=editor.desktop\n\n[Added Associations]\na/b=c\n");
    const FileClass wanted{"A GIF\nof ours", "%1", "\"/opt/100% mine/pelorin\" %1", "edit %1"};
    EXPECT_TRUE(mime.SetClassOf("gif", "image/gif"));
    EXPECT_TRUE(mime.Write("image/gif", wanted));
    const auto facts = mime.Read("image/gif");
    EXPECT_EQ(facts.openCommand, wanted.openCommand);
    EXPECT_EQ(facts.editCommand, wanted.editCommand);
    EXPECT_EQ(facts.defaultIcon, "%1");
    EXPECT_EQ(facts.description, "A GIF of ours");
    EXPECT_EQ(ReadFileStart(root.Path("sys/applications/viewer.desktop"), 1000), before);
    EXPECT_EQ(AsText(ReadFileStart(root.Path("cfg/mimeapps.list"), 1000)),
              "[Default Applications]\ntext/plain=editor.desktop\nimage/gif=vantrel-pelorin-image-gif.desktop\n\n"
              "[Added Associations]\na/b=c\n");
    for (const char* bad : {"", "a b", "../x", "a\"b"}) {
        EXPECT_FALSE(mime.Write(bad, wanted)) << bad;
        EXPECT_FALSE(mime.SetClassOf("ico", bad)) << bad;
    }
    EXPECT_FALSE(mime.Write("image/gif", {}));
}

TEST_F(Mime, AClassThatIsNewIsMade) {
    if (RunProgram({"update-mime-database", "-v"}) != 0) GTEST_SKIP() << "the MIME tools are not installed";
    EXPECT_TRUE(mime.SetClassOf("icl", "iclfile"));
    EXPECT_EQ(mime.ClassOf("icl"), "iclfile");
    EXPECT_TRUE(mime.Write("iclfile", {"Icon library", "", "pelorin %1", ""}));
    EXPECT_EQ(mime.Read("iclfile").openCommand, "pelorin %1");
}

TEST(Registry, KeepsValuesOrTellsThatItCannot) {
    MemorySettingsStore store;
    StoredRegistry registry(store);
    constexpr auto kUser = RegistryRoot::CurrentUser;
    EXPECT_TRUE(registry.WriteText(kUser, "Control Panel\\Desktop", "", "default"));
    EXPECT_TRUE(registry.WriteNumber(kUser, "Control Panel\\Desktop", "Size", 4000000000u));
    EXPECT_TRUE(registry.WriteText(kUser, "Control Panel\\Desktop\\Below", "x", "%1"));
    EXPECT_EQ(registry.ReadText(kUser, "control panel\\desktop", ""), "default");
    EXPECT_EQ(registry.ReadNumber(kUser, "Control Panel\\Desktop", "size"), 4000000000u);
    EXPECT_EQ(registry.ReadNumber(kUser, "Control Panel\\Desktop", ""), std::nullopt);
    EXPECT_EQ(registry.ReadText(RegistryRoot::LocalMachine, "Control Panel\\Desktop", ""), std::nullopt);

    registry.m_fault.FailCall(1);
    EXPECT_FALSE(registry.WriteText(kUser, "Control Panel\\Desktop", "", "other"));
    EXPECT_EQ(registry.ReadText(kUser, "Control Panel\\Desktop", ""), "default");
    registry.m_fault.FailCall(1);
    EXPECT_FALSE(registry.DeleteKey(kUser, "Control Panel\\Desktop"));
    EXPECT_EQ(registry.ReadNumber(kUser, "Control Panel\\Desktop", "Size"), 4000000000u);
    EXPECT_TRUE(registry.DeleteValue(kUser, "Control Panel\\Desktop", "Size"));
    EXPECT_FALSE(registry.DeleteValue(kUser, "Control Panel\\Desktop", "Size"));
    EXPECT_TRUE(registry.DeleteKey(kUser, "Control Panel\\Desktop"));
    EXPECT_FALSE(registry.DeleteKey(kUser, "Control Panel\\Desktop"));
    EXPECT_EQ(registry.ReadText(kUser, "Control Panel\\Desktop\\Below", "x"), "%1");
    EXPECT_FALSE(registry.WriteText(kUser, "a]b", "x", "y")); // a name that the store cannot hold
}

} // namespace
} // namespace pelorin
