#include "cli/suggestion.h"

#include "base/text.h"

#include <algorithm>

namespace pelorin::cli {

std::string DidYouMean(std::string_view wrong, const std::vector<std::string>& known) {
    std::string_view nearest;
    // A third of the letters may be wrong, or two that changed places; more is another word.
    std::size_t best = std::min(std::max<std::size_t>(wrong.size() / 3, 2) + 1, wrong.size());
    for (const auto& name : known) {
        const auto distance = EditDistance(wrong, name);
        if (distance < best) {
            best = distance;
            nearest = name;
        }
    }
    return nearest.empty() ? std::string() : "; did you mean " + std::string(nearest) + "?";
}

} // namespace pelorin::cli
