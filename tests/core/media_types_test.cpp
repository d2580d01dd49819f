#include "base/files.h"
#include "core/media_types.h"
#include "platform/memory/memory_file_associations.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

constexpr std::string_view kProgram = "/opt/pelorin/pelorin";

CMediaType Built(FileKind kind, const char* extension, int icon, const FileAssociations* system) {
    return {kind, extension, icon, system, std::string(kProgram)};
}

TEST(MediaTypes, NamesPicturesAndGroups) {
    FileKind kind = kKindNone;
    EXPECT_EQ(GetTypeName("a.ICNS"), "Apple Macintosh Icon");
    EXPECT_EQ(GetTypeName("a.tmp"), "<undefined>");
    EXPECT_EQ(GetFileResource("a.rsrc"), 113);
    EXPECT_EQ(GetFileResource(""), 100);
    EXPECT_EQ(GetFileGroup("a.vio", &kind), kGroupImages);
    EXPECT_EQ(kind, kKindImageObject);
    EXPECT_EQ(GetFileGroup("a.scr"), kGroupScreenSavers);
    EXPECT_EQ(GetFileGroup(""), kGroupNone);
}

TEST(MediaTypes, ABuiltInTypeTakesWhatIsThereAndWantsTheRest) {
    MemoryFileAssociations system;
    const auto fresh = Built(kKindIco, "ico", -1, &system);
    EXPECT_EQ(fresh.m_strClass, "");
    EXPECT_EQ(fresh.m_nIconIndex, -1);
    EXPECT_EQ(fresh.m_strWantedClass, "icofile");
    EXPECT_EQ(fresh.m_strWantedDescription, "Windows Icon File");
    EXPECT_EQ(fresh.m_strWantedIconFile, kProgram);
    EXPECT_EQ(fresh.m_strWantedOpenCommand, "\"/opt/pelorin/pelorin\" %1");

    system.m_classes["gif"] = "GIF.Class";
    system.m_facts["GIF.Class"] = {"A picture", "C:\\a,b.dll, 7", "viewer %1", "editor %1"};
    system.m_facts[""] = {"the root of all classes", "x,1", "x", "x"};
    const auto taken = Built(kKindGif, "gif", 10, &system);
    EXPECT_EQ(taken.m_strSavedIconFile, "C:\\a,b.dll");
    EXPECT_EQ(taken.m_nSavedIconIndex, 7);
    EXPECT_EQ(taken.m_strSavedEditCommand, "editor %1");
    EXPECT_EQ(taken.m_strWantedClass, "GIF.Class");
    EXPECT_EQ(taken.m_strWantedDescription, "A picture");
    EXPECT_EQ(Built(kKindPng, "png", 10, &system).m_strDescription, "");
    EXPECT_EQ(Built(kKindPng, "png", 10, nullptr).m_strWantedClass, "pngfile");

    const struct {
        const char* value;
        const char* file;
        int index;
    } icons[] = {
        {"%1", "", 0},          {"%1,5", "", 0}, {"", "", -1}, {"a.dll", "a.dll", 0}, {"a.dll,-12", "a.dll", -12},
        {"a.dll,x", "a.dll", 0}};
    for (const auto& c : icons) {
        system.m_facts["GIF.Class"].defaultIcon = c.value;
        CMediaType type = taken;
        type.ReadSystem(&system);
        EXPECT_EQ(type.m_strIconFile, c.file) << c.value;
        EXPECT_EQ(type.m_nIconIndex, c.index) << c.value;
    }
}

TEST(MediaTypes, WritingTheSystemMakesATypeOurs) {
    MemoryFileAssociations system;
    auto icns = Built(kKindIcns, "icns", 14, &system);
    icns.m_arrExtensions.push_back("rsrc");
    EXPECT_FALSE(icns.IsOurs());
    EXPECT_TRUE(icns.WriteSystem(system));
    EXPECT_EQ(system.m_classes["rsrc"], "icnsfile");
    EXPECT_EQ(system.m_facts["icnsfile"].defaultIcon, "/opt/pelorin/pelorin,14");
    icns.ReadSystem(&system);
    EXPECT_TRUE(icns.IsOurs());
    system.m_facts["icnsfile"].openCommand = "\"/OPT/pelorin/PELORIN\" %1";
    icns.ReadSystem(&system);
    EXPECT_TRUE(icns.IsOurs());
    system.m_facts["icnsfile"].openCommand = "other %1";
    icns.ReadSystem(&system);
    EXPECT_FALSE(icns.IsOurs());

    // Files that are their own pictures say so.
    for (const char* extension : {"ico", "cur", "ani", "icl"}) {
        EXPECT_TRUE(Built(GetFileKind("." + std::string(extension)), extension, 3, &system).WriteSystem(system));
        EXPECT_EQ(system.m_facts[std::string(extension) + "file"].defaultIcon, "%1");
    }
    system.m_fault.FailCall(2);
    EXPECT_FALSE(icns.WriteSystem(system));
}

// The bytes of the file, laid out by hand.
TEST(MediaTypes, TheTableFileToTheByte) {
    CMediaType type;
    type.m_nKind = 22;
    type.m_arrExtensions = {"icl", "icontainer"};
    type.m_strClass = "c";
    type.m_nIconIndex = -1;
    type.m_strOpenCommand = std::string(255, 'o');
    type.m_strWantedClass = "iclfile";
    type.m_nWantedIconIndex = 5;
    type.m_strWantedOpenCommand = "w";
    type.m_strSavedOpenCommand = "é";
    std::string expected("\x04VNPL\x01\0\0\0\x16\0\0\0\x02\0\0\0\x03icl\x0Aicontainer", 32);
    expected += std::string("\x01"
                            "c\0\0\xFF\xFF\xFF\xFF\0\xFF\xFF\0",
                            12) +
                std::string(255, 'o');
    expected +=
        std::string("\x07iclfile\0\0\x05\0\0\0\x01w", 16) + std::string("\0\0\0\xFF\xFF\xFF\xFF\0\x02\xC3\xA9", 11);
    EXPECT_EQ(AsText(CMediaTypeTable::Write({type})), expected);

    const auto read = CMediaTypeTable::Read(AsBytes(expected));
    ASSERT_EQ(read.size(), 1u);
    EXPECT_EQ(CMediaTypeTable::Write(read), CMediaTypeTable::Write({type}));
    // Cut anywhere, nothing but whole types comes out.
    for (std::size_t size = 0; size < expected.size(); ++size) {
        EXPECT_TRUE(CMediaTypeTable::Read(AsBytes(std::string_view(expected).substr(0, size))).empty()) << size;
    }
    const std::string lies("\x04VNPL\xFF\xFF\xFF\xFF\x16\0\0\0\xFF\xFF\xFF\xFF", 17);
    EXPECT_TRUE(CMediaTypeTable::Read(AsBytes(lies)).empty());
}

TEST(MediaTypes, LoadingMendsTheTable) {
    const test::TempFolder folder;
    MemoryFileAssociations system;
    CMediaTypeTable table;
    table.SetPlace(folder.Path("deep/"), &system, std::string(kProgram));
    table.LoadMediaTypes();
    std::string order;
    for (const auto& type : table.GetTypes()) {
        order += std::to_string(type.m_nKind) + ":" + std::to_string(type.m_arrExtensions.size()) + " ";
    }
    EXPECT_EQ(order, "8:1 32:4 22:2 2:1 25:1 3:3 4:1 20:1 7:1 24:8 9:1 10:3 36:3 11:1 12:1 13:1 14:2 15:1 19:1 21:2 "
                     "16:1 17:2 ");
    EXPECT_EQ(table.GetMediaType(kKindIco)->m_nWantedIconIndex, -1);
    EXPECT_EQ(table.GetMediaType(kKindIcns)->m_nWantedIconIndex, 14);
    EXPECT_FALSE(table.FindMediaType(kKindWmf));

    table.SaveMediaTypes();
    const auto whole = CMediaTypeTable::Write(table.GetTypes());
    EXPECT_EQ(AsText(ReadFileStart(folder.Path("deep/MediaFiles.vnd"), 1 << 16)), AsText(whole));

    CMediaType first, second, library, odd;
    first.m_nKind = second.m_nKind = kKindGif;
    first.m_arrExtensions = {"gif", "mine"};
    second.m_arrExtensions = {"gif"};
    library.m_nKind = kKindIconLibrary;
    library.m_arrExtensions = {"icl"};
    odd.m_nKind = 77; // a kind of a later program stays, even without extensions
    WriteFileSafely(folder.Path("deep/MediaFiles.vnd"), CMediaTypeTable::Write({first, second, library, odd, odd}));
    system.m_classes["gif"] = "now";
    table.LoadMediaTypes();
    EXPECT_EQ(table.GetTypes().size(), 23u);
    EXPECT_EQ(table.GetTypes()[0].m_arrExtensions[1], "mine");
    EXPECT_EQ(table.GetTypes()[0].m_strClass, "now");
    EXPECT_EQ(table.GetTypes()[1].m_nKind, 77);
    EXPECT_EQ(table.GetMediaType(kKindIconLibrary)->m_arrExtensions.size(), 2u);

    for (const char* bad : {"", "\4VNPX\1", "\3VNP", "rubbish"}) {
        folder.File("deep/MediaFiles.vnd", bad);
        table.LoadMediaTypes();
        EXPECT_EQ(table.GetTypes().size(), 22u) << bad;
    }
}

TEST(MediaTypes, TakingTypesOver) {
    const test::TempFolder folder;
    MemoryFileAssociations system;
    CMediaTypeTable table;
    table.SetPlace(folder.Path(), &system, std::string(kProgram));
    EXPECT_FALSE(table.AreAssociationsOurs());
    table.LoadMediaTypes();
    EXPECT_TRUE(table.Associate(system, false, true, false));
    EXPECT_TRUE(FileExists(folder.Path("MediaFiles.vnd")));
    EXPECT_EQ(system.m_classes.count("ico"), 0u);
    EXPECT_EQ(system.m_classes["bin"], "icnsfile");
    table.LoadMediaTypes();
    EXPECT_TRUE(table.GetMediaType(kKindIcns)->IsOurs());
    EXPECT_FALSE(table.AreAssociationsOurs());
}

} // namespace
} // namespace pelorin
