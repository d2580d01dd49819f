#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace pelorin::cli {

/// "; did you mean NAME?" with the nearest of the known names, or nothing when none is near.
[[nodiscard]] std::string DidYouMean(std::string_view wrong, const std::vector<std::string>& known);

} // namespace pelorin::cli
