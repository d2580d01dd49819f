// What a verb is. Each lives in its own file verb_NAME.cpp as one function SetUpNAME, and has one row in verbs.def.
//
//   VerbAction SetUpList(VerbSetup& setup) {
//       struct Options { std::vector<std::string> files; };
//       auto options = std::make_shared<Options>();
//       setup.Inputs("FILE", options->files, "files that carry icons");
//       setup.Reports();
//       return [options](Run& run) { run.ForEach(options->files, [&](const std::string& file) { ... }); };
//   }
#pragma once

#include "cli/run.h"
#include "cli/verb_setup.h"

#include <functional>
#include <span>
#include <string_view>

namespace pelorin::cli {

/// Does the work. Failures of single files go to `run.Fail`; `UsageError` is thrown for options that make no sense
/// together.
using VerbAction = std::function<void(Run& run)>;

struct Verb {
    std::string_view words; ///< "list", or verb and noun: "format add"
    std::string_view summary;
    VerbAction (*setUp)(VerbSetup& setup);
};

[[nodiscard]] std::span<const Verb> AllVerbs();

} // namespace pelorin::cli
