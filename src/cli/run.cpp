#include "cli/run.h"

#include "base/archive.h"
#include "base/files.h"
#include "base/parallel.h"
#include "base/text.h"
#include "cli/terminal_progress.h"
#include "platform/terminal.h"

#include <fmt/format.h>

#include <cstdio>
#include <new>
#include <utility>

namespace pelorin::cli {

namespace {

// Which file of `Run::ForEachAtOnce` this thread works on.
constexpr std::size_t kNoPlace = SIZE_MAX;
thread_local std::size_t t_place = kNoPlace;

class Place {
public:
    Place(Run& run, std::size_t place) : m_run(run) { t_place = place; }
    ~Place() {
        m_run.PassTurn();
        t_place = kNoPlace;
    }
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;

private:
    Run& m_run;
};

} // namespace

std::string Printable(std::string_view text) {
    std::string out;
    for (const char c : DecodeText(text)) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7F) {
            out += fmt::format("\\x{:02X}", byte);
        } else {
            out += c;
        }
    }
    return out;
}

Run::Run(const CommonOptions& options) : m_options(options), m_outputIsTerminal(IsTerminal(Stream::Output)) {
    if (options.quiet || options.noProgress || !IsTerminal(Stream::Error)) {
        m_progress = std::make_unique<NoProgress>();
    } else {
        m_progress = std::make_unique<TerminalProgress>();
    }
}

Run::~Run() = default;

void Run::Print(std::string_view text) {
    const std::lock_guard lock(m_mutex);
    m_pending += text;
    if (m_outputIsTerminal || m_pending.size() > (64u << 10)) FlushLocked();
}

void Run::Note(std::string_view line) {
    if (!m_options.quiet) Print(std::string(line) + '\n');
}

void Run::Detail(std::string_view line) {
    if (m_options.verbose) Print(std::string(line) + '\n');
}

void Run::Fail(std::string_view file, std::string_view reason) {
    m_failed = true;
    TellError(file, reason);
}

void Run::Warn(std::string_view file, std::string_view text) {
    TellError(file, fmt::format("warning: {}", text));
}

void Run::TellError(std::string_view file, std::string_view reason) {
    const std::lock_guard lock(m_mutex);
    // Both streams often end on one screen: keep what was printed before in front. When standard output is broken, its
    // own error is told at the end.
    try {
        FlushLocked();
    } catch (const std::exception&) {
    }
    const auto line = fmt::format("pelorin-cli: {}: {}\n", Printable(file), Printable(reason));
    std::fwrite(line.data(), 1, line.size(), stderr);
}

bool Run::Claim(const std::string& path) {
    const std::lock_guard lock(m_mutex);
    return m_claimed.insert(path).second;
}

bool Run::Attempt(std::string_view file, const std::function<void()>& work) {
    try {
        work();
        return true;
    } catch (const FileException& error) {
        Fail(file, error.what());
    } catch (const ArchiveException& error) {
        Fail(file, error.what());
    } catch (const std::bad_alloc&) {
        Fail(file, "not enough memory");
    }
    return false;
}

void Run::ForEach(const std::vector<std::string>& files, const std::function<void(const std::string&)>& work) {
    for (const auto& file : files) Attempt(file, [&] { work(file); });
}

void Run::AwaitTurn() {
    if (t_place == kNoPlace) return;
    std::unique_lock lock(m_turnMutex);
    m_turnPassed.wait(lock, [&] { return m_turn >= t_place; });
}

void Run::PassTurn() {
    if (t_place == kNoPlace) return;
    const std::lock_guard lock(m_turnMutex);
    m_passed[t_place] = true;
    while (m_turn < m_passed.size() && m_passed[m_turn]) ++m_turn;
    m_turnPassed.notify_all();
}

void Run::ForEachAtOnce(std::string_view title, const std::vector<std::string>& files,
                        const std::function<std::string(const std::string&)>& work) {
    std::mutex order;
    std::vector<std::optional<std::string>> texts(files.size());
    std::size_t printed = 0, done = 0;
    m_passed.assign(files.size(), false);
    m_turn = 0;
    m_severalAtOnce = files.size() > 1;
    ProgressScope progress(m_severalAtOnce ? m_progress.get() : nullptr, title, files.size());
    // What would be done is told in order.
    ParallelFor(files.size(), m_options.dryRun ? 1 : m_options.jobs, [&](std::size_t i) {
        const Place place(*this, i);
        std::string text;
        Attempt(files[i], [&] { text = work(files[i]); });
        const std::lock_guard lock(order);
        texts[i] = std::move(text);
        progress.Step(++done);
        for (; printed < texts.size() && texts[printed]; ++printed) {
            Attempt("standard output", [&] { Print(*texts[printed]); });
            texts[printed]->clear();
            texts[printed]->shrink_to_fit();
        }
    });
    m_severalAtOnce = false;
}

void Run::Flush() {
    const std::lock_guard lock(m_mutex);
    FlushLocked();
}

void Run::FlushLocked() {
    if (m_pending.empty()) return;
    const auto text = std::exchange(m_pending, {});
    WriteStandardOutput(AsBytes(text));
}

} // namespace pelorin::cli
