#include "cli/document_output.h"

#include "cli/output.h"

#include <fmt/format.h>

namespace pelorin::cli {

bool SaveDocument(Run& run, CDocument& document, const RunPrompt& prompt, const std::string& path,
                  const std::string* detail) {
    if (path == "-") throw UsageError("such a file cannot go to standard output");
    const auto& options = run.Options();
    if (options.dryRun) {
        run.Print(fmt::format("would write {}\n", Printable(path)));
        return false;
    }
    if (FileExists(path) && ExistingPolicy(run) == Existing::Keep) {
        throw FileException(fmt::format("\"{}\" exists already (--force replaces it)", path));
    }
    if (options.inPlace && !options.backup.empty()) CopyFileSafely(path, path + options.backup);
    const bool isNew = !FileExists(path);
    if (document.OnSaveDocument(path)) return true;
    // A command that fails leaves nothing behind that could be taken for its result.
    if (isNew) DeleteFile(path);
    const auto reason = prompt.Reason("the file cannot be saved");
    if (!detail || detail->empty()) throw FileException(reason);
    throw FileException(reason.ends_with('.') ? fmt::format("{} ({})", reason, *detail) : reason + ": " + *detail);
}

} // namespace pelorin::cli
