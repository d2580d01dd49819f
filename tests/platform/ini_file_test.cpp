#include "platform/ini_file.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

TEST(IniFile, ChangesLeaveEverythingElseAlone) {
    const std::string text = "top=1\n; note\n[A]\nx = 1 \nbroken line\ny=a=b\n\n[b]\nx=2\n";
    IniFile ini(text);
    EXPECT_EQ(ini.Text(), "top=1\n; note\n[A]\nx=1\nbroken line\ny=a=b\n\n[b]\nx=2\n");
    EXPECT_EQ(ini.Get("", "top"), "1");
    EXPECT_EQ(ini.Get("a", "Y"), "a=b");
    EXPECT_FALSE(ini.Get("A", "broken line"));
    EXPECT_TRUE(ini.Set("a", "X", "9"));
    EXPECT_TRUE(ini.Set("A", "z", ""));
    EXPECT_TRUE(ini.Set("new", "k", "v"));
    EXPECT_TRUE(ini.Set("", "second", "2"));
    EXPECT_TRUE(ini.Remove("b", "x"));
    EXPECT_FALSE(ini.Remove("b", "x"));
    EXPECT_EQ(ini.Text(), "top=1\n; note\nsecond=2\n[A]\nx=9\nbroken line\ny=a=b\nz=\n\n[b]\n\n[new]\nk=v\n");
}

TEST(IniFile, NamesAndValuesThatWouldNotComeBackAreRefused) {
    IniFile ini;
    for (const char* key : {"", "a=b", "a\nb", " a", "[a", ";a", "#a"}) EXPECT_FALSE(ini.Set("s", key, "v")) << key;
    for (const char* section : {"a]", "a\r", " a"}) EXPECT_FALSE(ini.Set(section, "k", "v")) << section;
    for (const char* value : {" v", "v\t", "a\nb"}) EXPECT_FALSE(ini.Set("s", "k", value)) << value;
    EXPECT_EQ(ini.Text(), "");
}

TEST(IniFile, ForeignTexts) {
    const IniFile dos("\xEF\xBB\xBF[.ShellClassInfo]\r\nIconFile=C:\\x.dll\r\nIconIndex=3");
    EXPECT_EQ(dos.Get(".shellclassinfo", "iconfile"), "C:\\x.dll");
    EXPECT_EQ(dos.Get(".ShellClassInfo", "IconIndex"), "3");
    const IniFile odd("[\n]\n[]\n=5\n[s\nk=1\n[[t]]\nk=2");
    EXPECT_EQ(odd.Get("", "k"), "1");
    EXPECT_EQ(odd.Get("[t]", "k"), "2");
}

} // namespace
} // namespace pelorin
