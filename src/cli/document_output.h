// How a document that was opened from a file and changed gets to its new file.
#pragma once

#include "cli/run_prompt.h"
#include "core/document.h"

namespace pelorin::cli {

/// Saves to `path`, as the options of the run say: not over a file that is there without --force or --in-place, with
/// the backup that is asked for, and only in words with --dry-run: then, and only then, false. Throws `FileException`
/// with what the document told, and with `detail`, a field of the document that says more, behind it.
bool SaveDocument(Run& run, CDocument& document, const RunPrompt& prompt, const std::string& path,
                  const std::string* detail = nullptr);

} // namespace pelorin::cli
