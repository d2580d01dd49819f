// Operations on pictures that are carried out in the order in which they stand on the command line.
#pragma once

#include "cli/verb_setup.h"
#include "pixel/dib.h"

#include <span>

namespace pelorin::cli {

/// Gives the changed picture, empty when it cannot be done.
using PictureStep = std::function<DibBlock(const DibBlock&)>;

/// What was said about an operation by the words behind it.
struct StepWords {
    bool smooth = false, dither = false;
    std::string palette; ///< empty: adaptive
};

/// One row of the table of operations.
struct PictureOperation {
    std::string_view name;    ///< without the dashes
    std::string_view metavar; ///< empty for one without a value
    std::string_view help;
    std::string_view words; ///< the words that may follow it: "smooth", "palette dither"
    /// Reads the value; throws `UsageError`.
    PictureStep (*make)(std::string_view value, const StepWords& words);
};

/// Declares every operation and every word as an ordered option.
void AddPictureOperations(VerbSetup& setup, std::vector<OrderedOption>& list);

/// A step with the words that named it, for messages: "--resize 10x10".
struct NamedStep {
    std::string text;
    PictureStep step;
};
/// The steps of a command line. Throws `UsageError` for a value that is none and for a word without its operation.
[[nodiscard]] std::vector<NamedStep> MakePictureChain(const std::vector<OrderedOption>& list);

} // namespace pelorin::cli
