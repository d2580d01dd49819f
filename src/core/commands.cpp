#include "core/commands.h"

#include "base/text.h"

#include <algorithm>
#include <iterator>

namespace pelorin {

namespace {

constexpr Command kCommands[] = {
#define COMMAND(number, name, title, status, shortcut, needs)                                                          \
    {number, #name, title, status, shortcut, CommandNeeds::needs},
#include "core/commands.def"
#undef COMMAND
};

static_assert(std::ranges::adjacent_find(kCommands,
                                         [](const Command& a, const Command& b) { return a.number >= b.number; }) ==
                  std::end(kCommands),
              "commands.def is ascending by number, each number once");

} // namespace

std::span<const Command> AllCommands() {
    return kCommands;
}

const Command* FindCommand(int number) {
    const auto row = std::ranges::lower_bound(kCommands, number, {}, &Command::number);
    return row != std::end(kCommands) && row->number == number ? &*row : nullptr;
}

const Command* FindCommandByShortcut(std::string_view shortcut, std::optional<DocKind> front) {
    if (shortcut.empty()) return nullptr;
    const auto row = std::ranges::find_if(kCommands, [&](const Command& command) {
        return EqualsNoCase(command.shortcut, shortcut) && IsAvailable(command, front);
    });
    return row == std::end(kCommands) ? nullptr : &*row;
}

bool IsAvailable(const Command& command, std::optional<DocKind> front) {
    if (command.needs == CommandNeeds::Nothing) return true;
    if (!front) return false;
    switch (command.needs) {
    case CommandNeeds::Icon: return *front == DocKind::Icon || *front == DocKind::MacIcon;
    case CommandNeeds::Library: return *front == DocKind::Library;
    case CommandNeeds::Program: return *front == DocKind::Program;
    case CommandNeeds::Container: return *front == DocKind::Library || *front == DocKind::Program;
    case CommandNeeds::Image: return *front == DocKind::Image;
    case CommandNeeds::Nothing:
    case CommandNeeds::Any: break;
    }
    return true;
}

} // namespace pelorin
