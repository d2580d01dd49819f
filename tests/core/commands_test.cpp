#include "core/commands.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

// A shortcut must mean one thing, whatever is in front.
TEST(Commands, ShortcutsAreClear) {
    for (int front = -1; front < kDocKindCount; ++front) {
        const auto kind = front < 0 ? std::nullopt : std::optional(static_cast<DocKind>(front));
        for (const auto& command : AllCommands()) {
            EXPECT_EQ(FindCommand(command.number), &command);
            EXPECT_FALSE(command.title.empty() || command.status.empty()) << command.number;
            if (!command.shortcut.empty() && IsAvailable(command, kind)) {
                EXPECT_EQ(FindCommandByShortcut(command.shortcut, kind), &command) << command.number;
            }
        }
    }
}

TEST(Commands, NeedTheRightDocument) {
    const struct {
        int number;
        std::optional<DocKind> front;
        bool available;
    } cases[] = {
        {cmd::kOpen, std::nullopt, true},
        {cmd::kSave, std::nullopt, false},
        {cmd::kSave, DocKind::Explorer, true},
        {cmd::kSaveAsMacFormat, DocKind::MacIcon, true},
        {cmd::kSaveAsMacFormat, DocKind::Image, false},
        {cmd::kReplaceIcon, DocKind::Library, false},
        {cmd::kReplaceIcon, DocKind::Program, true},
        {cmd::kSelectAllItems, DocKind::Program, true},
        {cmd::kConvertTo24Bits, DocKind::ImageObject, false},
    };
    for (const auto& c : cases) EXPECT_EQ(IsAvailable(*FindCommand(c.number), c.front), c.available) << c.number;
    EXPECT_EQ(FindCommand(57602), nullptr);
    EXPECT_EQ(FindCommandByShortcut("ctrl+o", std::nullopt)->number, 57601);
    EXPECT_EQ(FindCommandByShortcut("Ctrl+A", std::nullopt), nullptr);
    EXPECT_EQ(FindCommandByShortcut("", std::nullopt), nullptr);
}

} // namespace
} // namespace pelorin
