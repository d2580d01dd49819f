// Where the files go that a verb makes, by one rule for all verbs.
#pragma once

#include "base/files.h"
#include "cli/run.h"

namespace pelorin::cli {

/// The file that the product of `input` is written to:
/// - with --in-place the input itself;
/// - with -o that file; or, where several come out or -o is a folder or ends with a slash, the derived name there;
/// - else the derived name in the current folder.
/// The derived name is the input's stem, `suffix` and the extension ("photo", "_2", "ico": photo_2.ico); where such a
/// file exists and --force is not given, a counter from 2 makes it new: "photo_2 (2).ico".
/// No two calls of one run give the same derived name, not with --force either. Safe on any thread; of files that are
/// worked on at once, each waits for those before it, so that names do not change from run to run.
/// Throws `FileException` when the folder cannot be made or no name is free.
[[nodiscard]] std::string OutputPath(Run& run, std::string_view input, std::string_view suffix,
                                     std::string_view extension, bool several);

/// What may stand at the path already: with --force and --in-place it is replaced, else it is an error.
[[nodiscard]] Existing ExistingPolicy(const Run& run);

/// Writes one product to the path that `OutputPath` gave ("-": standard output), with the backup that is asked for;
/// with --dry-run only says so. Throws `FileException`.
void WriteOutput(Run& run, const std::string& path, ByteSpan bytes);

} // namespace pelorin::cli
