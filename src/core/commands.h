// What a person can ask for: one table of numbers, titles, shortcuts and what must be in front.
#pragma once

#include "core/dispatch.h"

#include <optional>
#include <span>
#include <string_view>

namespace pelorin {

/// The commands by name: `cmd::kOpen`.
namespace cmd {
#define COMMAND(number, name, title, status, shortcut, needs) inline constexpr int k##name = number;
#include "core/commands.def"
#undef COMMAND
} // namespace cmd

enum class CommandNeeds {
    Nothing,
    Any,  ///< some document
    Icon, ///< of either system
    Library,
    Program,
    Container, ///< a library or a program file
    Image,
};

struct Command {
    int number;
    std::string_view name;     ///< "NewFromImage"
    std::string_view title;    ///< as in a menu
    std::string_view status;   ///< one sentence
    std::string_view shortcut; ///< "Ctrl+N"; empty for none
    CommandNeeds needs;
};

/// Ascending by number.
[[nodiscard]] std::span<const Command> AllCommands();
/// Null for a number that is no command.
[[nodiscard]] const Command* FindCommand(int number);
/// By shortcut, in any case of letters, of those that fit what is in front; null for none.
[[nodiscard]] const Command* FindCommandByShortcut(std::string_view shortcut, std::optional<DocKind> front);
/// Whether what is in front (nothing, or a kind of document) is what the command works on.
[[nodiscard]] bool IsAvailable(const Command& command, std::optional<DocKind> front);

} // namespace pelorin
