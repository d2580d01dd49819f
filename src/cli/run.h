// One run of a verb: where its words go and what came of it.
#pragma once

#include "base/progress.h"
#include "cli/verb_setup.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace pelorin::cli {

/// Text from outside as it may be printed on one line: valid UTF-8, control characters as \xNN.
[[nodiscard]] std::string Printable(std::string_view text);

/// `Print`, `Note`, `Detail` and `Fail` may be called from several threads.
class Run {
public:
    explicit Run(const CommonOptions& options);
    ~Run();
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    [[nodiscard]] const CommonOptions& Options() const { return m_options; }

    /// What the verb was asked for: standard output, kept back until it is worth a write.
    void Print(std::string_view text);
    /// What a person likes to know ("logo.ico  9 formats, 22 KB"): a line on standard output, not with --quiet.
    void Note(std::string_view line);
    /// Whether a note is due on a file that was written there: not with --dry-run, nor of standard output.
    [[nodiscard]] bool NotesOf(std::string_view path) const {
        return !m_options.quiet && !m_options.dryRun && path != "-";
    }
    /// The same, only with --verbose.
    void Detail(std::string_view line);
    /// "pelorin-cli: FILE: reason" on standard error; the exit code will be 1.
    void Fail(std::string_view file, std::string_view reason);
    /// "pelorin-cli: FILE: warning: text" on standard error; nothing has failed.
    void Warn(std::string_view file, std::string_view text);
    [[nodiscard]] bool Failed() const { return m_failed; }

    /// True when no file of this run has taken the path yet; from now on it is taken.
    [[nodiscard]] bool Claim(const std::string& path);
    /// Inside `ForEachAtOnce`: returns when all files before this one are done or have passed, so that what they take
    /// does not depend on who is quicker. At once elsewhere.
    void AwaitTurn();
    void PassTurn();

    /// Calls `work`; what file and archive code throws, and memory that is not there, becomes `Fail` for `file`. True
    /// when nothing was thrown.
    bool Attempt(std::string_view file, const std::function<void()>& work);
    /// `Attempt` for each file in order; nothing of one file is kept for the next.
    void ForEach(const std::vector<std::string>& files, const std::function<void(const std::string& file)>& work);
    /// The same on `--jobs` threads, with a progress bar called `title` for several files. What `work` returns is
    /// printed in the order of the files.
    void ForEachAtOnce(std::string_view title, const std::vector<std::string>& files,
                       const std::function<std::string(const std::string& file)>& work);

    /// For long work on this thread; a bar on a terminal, else nothing, as for one of several files that are worked on
    /// at once. Never null.
    [[nodiscard]] Progress* GetProgress() { return m_severalAtOnce ? &m_noProgress : m_progress.get(); }

    /// Writes what is kept back. Throws `FileException`.
    void Flush();

private:
    void TellError(std::string_view file, std::string_view reason);
    void FlushLocked();

    const CommonOptions& m_options;
    std::mutex m_mutex;
    std::string m_pending;
    std::set<std::string> m_claimed;
    std::atomic<bool> m_failed = false;
    bool m_outputIsTerminal;
    std::unique_ptr<Progress> m_progress;
    NoProgress m_noProgress;
    bool m_severalAtOnce = false;
    std::mutex m_turnMutex;
    std::condition_variable m_turnPassed;
    std::vector<bool> m_passed; ///< of the files of `ForEachAtOnce`
    std::size_t m_turn = 0;     ///< the first that has not passed
};

} // namespace pelorin::cli
