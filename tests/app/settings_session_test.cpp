#include "app/settings_session.h"
#include "platform/memory/memory_settings_store.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

TEST(SettingsSession, ChangesTheNamedKeysAlone) {
    MemorySettingsStore store("[prefs]\nMystery=1\nJpegQuality=55\n[specs]\nLibrarianLocation=/old\n"
                              "[FavoriteList]\n0=a\n1=b\n");
    SettingsSession session(store);
    const auto quality = SettingsSession::Find("jpegQUALITY");
    const auto favorites = SettingsSession::Find("favoritelist");
    const auto librarian = SettingsSession::Find("folders/LibrarianLocation");
    ASSERT_TRUE(quality && favorites && librarian);
    EXPECT_EQ(quality->Values(), std::vector<std::string>{"55"});
    EXPECT_EQ(favorites->Values(), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(librarian->Values(), std::vector<std::string>{"/old"});

    EXPECT_TRUE(session.Set(*quality, {"101"}));
    EXPECT_TRUE(session.Set(*quality, {"1", "2"}));
    EXPECT_TRUE(session.Set(*quality, {}));
    EXPECT_TRUE(session.Set(*favorites, {"x", ""}));
    session.Commit();
    EXPECT_NE(store.Committed().find("JpegQuality=55"), std::string::npos);
    EXPECT_NE(store.Committed().find("1=b"), std::string::npos);

    EXPECT_FALSE(session.Set(*quality, {"70"}));
    EXPECT_FALSE(session.Set(*favorites, {"only"}));
    session.Reset(*librarian);
    session.Commit();
    EXPECT_EQ(store.Committed(), "[prefs]\nMystery=1\nJpegQuality=70\n[specs]\n[FavoriteList]\n0=only\n");
    session.Reset(*quality);
    session.Reset(*favorites);
    session.Commit();
    EXPECT_EQ(store.Committed(), "[prefs]\nMystery=1\n[specs]\n[FavoriteList]\n");
    EXPECT_TRUE(quality->IsDefault() && favorites->IsDefault());
    EXPECT_FALSE(SettingsSession::Find("Mystery"));
    ResetSettings();
}

} // namespace
} // namespace pelorin
