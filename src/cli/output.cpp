#include "cli/output.h"

#include "base/text.h"

#include <fmt/format.h>

namespace pelorin::cli {

namespace {

std::string FreeName(const std::string& folder, const std::string& stem, std::string_view extension, bool force) {
    const auto plain = JoinPath(folder, fmt::format("{}.{}", stem, extension));
    if (force || !(FileExists(plain) || FolderExists(plain))) return plain;
    for (int counter = 2; counter < 100000; ++counter) {
        auto path = JoinPath(folder, fmt::format("{} ({}).{}", stem, counter, extension));
        if (!FileExists(path) && !FolderExists(path)) return path;
    }
    throw FileException("no free name is left for \"" + plain + "\"");
}

} // namespace

std::string OutputPath(const Run& run, std::string_view input, std::string_view suffix, std::string_view extension,
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
    return FreeName(output, stem + std::string(suffix), extension, options.force);
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

std::string SafeFileName(std::string_view name) {
    std::string out;
    for (const char c : name) {
        const bool bad = static_cast<unsigned char>(c) < 0x20 ||
                         std::string_view("/\\:*?\"<>|\x7F").find(c) != std::string_view::npos;
        out += bad ? '_' : c;
    }
    out = std::string(ClipUtf8(Trim(out), 200));
    return out.empty() || out == "." || out == ".." ? "_" : out;
}

} // namespace pelorin::cli
