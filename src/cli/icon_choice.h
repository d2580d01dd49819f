// Icons of a file as they are named on the command line: by position, number or name.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace pelorin::cli {

inline constexpr const char* kIconChoiceHelp = "icons: a position from 1, a range (3-5), #ID, or a name";

struct IconLabel {
    int id = -1; ///< resource number; -1: none
    int language = 0;
    std::string name;
};

/// The places (from 0, ascending) of the icons that the texts name, in one language when it is given. Throws
/// `FileException` for a text that names none.
[[nodiscard]] std::vector<int> ChooseIcons(std::span<const IconLabel> icons, const std::vector<std::string>& texts,
                                           std::optional<int> language = {});

} // namespace pelorin::cli
