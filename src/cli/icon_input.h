// Files that carry icons as the verbs see them: opened, told apart, and their icons handed out one after the other.
#pragma once

#include "base/files.h"
#include "icon/icon_sources.h"

namespace pelorin::cli {

struct IconInput {
    FileView view;
    const IconSource* source = nullptr;
};

/// Opens a file ("-": standard input). Throws `FileException` when it cannot be read or carries no icons.
[[nodiscard]] IconInput OpenIconInput(const std::string& file);

/// Takes one icon, its number from 1, and whether the file has no other; false ends the reading.
using NumberedIconVisitor = std::function<bool(CIconGroup& group, int number, bool only)>;
/// Throws `FileException` when the file is damaged; the icons before the damage have been handed out then. At most two
/// icons are in memory at a time.
void VisitIcons(const IconInput& input, const NumberedIconVisitor& visitor);

/// The same with what lists show of an icon; nothing is decoded where that is not needed for it. Formats are in display
/// order.
using NumberedOutlineVisitor = std::function<void(const IconOutline& icon, int number, bool only)>;
void VisitOutlines(const IconInput& input, const NumberedOutlineVisitor& visitor);

/// Formats of a group in display order.
[[nodiscard]] std::vector<CVnIcon*> IconsForDisplay(CIconGroup& group);
/// "48x48 XP (RGB/A), 16x16 16 colors", in the order given.
[[nodiscard]] std::string FormatsText(std::span<const IconFormat> formats, bool macintosh);
/// What a list says of a file that is whole and has no icons: "FILE  no icons", and of a program what the system says.
[[nodiscard]] std::string NoIconsLine(const std::string& file, const IconSource* source);
/// "(1 format)", "(%d formats)".
[[nodiscard]] std::string SizeTextOf(const IconOutline& icon);

} // namespace pelorin::cli
