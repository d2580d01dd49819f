#include "cli/output.h"

#include "base/text.h"

#include <fmt/format.h>

namespace pelorin::cli {

namespace {

std::string FreeName(Run& run, const std::string& folder, const std::string& stem, std::string_view extension) {
    const bool force = run.Options().force;
    const auto free = [&](const std::string& path) {
        const bool exists = force ? FolderExists(path) : PathExists(path);
        return !exists && run.Claim(path);
    };
    run.AwaitTurn();
    auto path = JoinPath(folder, fmt::format("{}.{}", stem, extension));
    for (int counter = 2; !free(path); ++counter) {
        if (counter == 100000) throw FileException("no free name is left for \"" + stem + "\"");
        path = JoinPath(folder, fmt::format("{} ({}).{}", stem, counter, extension));
    }
    run.PassTurn();
    return path;
}

} // namespace

std::string OutputPath(Run& run, std::string_view input, std::string_view suffix, std::string_view extension,
                       bool several) {
    const auto& options = run.Options();
    if (options.inPlace) return std::string(input);
    const auto& output = options.output;
    const bool folder = several || output.ends_with('/') || output.ends_with('\\') || FolderExists(output);
    if (output == "-" && several) throw UsageError("several files cannot go to standard output");
    if (!output.empty() && (!folder || output == "-")) return output;
    if (!output.empty() && !options.dryRun && !CreateFolders(output)) {
        throw FileException("the folder \"" + output + "\" cannot be made");
    }
    const auto stem = input == "-" ? std::string("icon") : std::string(StemOf(input));
    return FreeName(run, output, stem + std::string(suffix), extension);
}

Existing ExistingPolicy(const Run& run) {
    return run.Options().force || run.Options().inPlace ? Existing::Replace : Existing::Keep;
}

void WriteOutput(Run& run, const std::string& path, ByteSpan bytes) {
    if (run.Options().dryRun) {
        run.Print(fmt::format("would write {}\n", Printable(path)));
    } else if (path == "-") {
        run.Flush();
        WriteStandardOutput(bytes);
    } else {
        const auto& suffix = run.Options().backup;
        if (run.Options().inPlace && !suffix.empty()) CopyFileSafely(path, path + suffix);
        try {
            WriteFileSafely(path, bytes, ExistingPolicy(run));
        } catch (const FileException& error) {
            const bool taken = ExistingPolicy(run) == Existing::Keep && FileExists(path);
            throw FileException(
                fmt::format("cannot write \"{}\": {}{}", path, error.what(), taken ? " (--force replaces it)" : ""));
        }
    }
}

} // namespace pelorin::cli
