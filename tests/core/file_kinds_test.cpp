#include "core/file_kinds.h"
#include "core/strings.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

namespace pelorin {
namespace {

TEST(FileKinds, NamesThatNeedNoLookInside) {
    const struct {
        std::string_view path;
        int kind;
    } cases[] = {
        {"", 0},
        {"/home/me/", 0},
        {".ico", 8},
        {"C:\\icons\\.ICNS", 32},
        {"a.IcO", 8},
        {"a.ic", 0},
        {"a.il", 22},
        {"a.icl", 22},
        {"a.icons", 0},
        {"a.icontainer", 34},
        {"a.tmp", 0},
        {"a.", 0},
        {"a.ico.png", 15},
        {"folder.ico/a.tmp", 0},
        {"folder.ico\\a.cur", 4},
        {"._a.png", 33},
        {"dir/._", 33},
        {"._", 33},
        {"ICON_", 33},
        {"dir\\Icon_", 33},
        {"ICON_.png", 15},
        {"a.bin", 35},
        {"a.del", 100},
        {"a.plp", 101},
        {"a.vio", 40},
        {"a.jpx", 36},
        {"a.dhtml", 24},
        {"a.ani", 2},
    };
    for (const auto& c : cases) EXPECT_EQ(GetFileKind(c.path), c.kind) << c.path;
}

TEST(FileKinds, OnlyNamesWithoutExtensionAreLookedAtInside) {
    const test::TempFolder folder;
    for (const char* name : {"icon", "ICON_X", "icon.txt", "icon."}) folder.File(name, "icns and more");
    folder.File("short", "icn");
    folder.File("upper", "ICNS");
    EXPECT_EQ(GetFileKind(folder.Path("icon")), kKindIcns);
    EXPECT_EQ(GetFileKind(folder.Path("ICON_X")), kKindIcns); // "ICON_" is compared whole
    EXPECT_EQ(GetFileKind(folder.Path("icon.txt")), kKindNone);
    EXPECT_EQ(GetFileKind(folder.Path("icon.")), kKindNone);
    EXPECT_EQ(GetFileKind(folder.Path("short")), kKindNone);
    EXPECT_EQ(GetFileKind(folder.Path("upper")), kKindNone);
    EXPECT_EQ(GetFileKind(folder.Path("missing")), kKindNone);
}

// Every kind is found by its number, and what has a name has one in the string table.
TEST(FileKinds, RowsAndTheirTexts) {
    for (const auto& row : AllKinds()) {
        EXPECT_EQ(&KindInfo(row.kind), &row);
        if (row.typeName != 0) {
            EXPECT_FALSE(LoadText(row.typeName).empty()) << row.kind;
        }
    }
    EXPECT_EQ(KindInfo(37).kind, kKindNone);
    EXPECT_EQ(KindInfo(-1).resource, 100);
    EXPECT_EQ(LoadText(KindInfo(kKindIcontainer).typeName), "Iconfactory® Icontainer");
    const std::map<int, std::set<int>> groups = {
        {2, {8, 32, 33, 35}}, {3, {2, 4}}, {5, {28, 29, 30}},
        {6, {22, 34}},        {7, {27}},   {8, {26}},
        {9, {24, 25}},        {10, {31}},  {4, {3, 7, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 36, 40}},
    };
    std::map<int, std::set<int>> found;
    for (const auto& row : AllKinds()) {
        if (row.group != 0) found[row.group].insert(row.kind);
    }
    EXPECT_EQ(found, groups);
}

} // namespace
} // namespace pelorin
