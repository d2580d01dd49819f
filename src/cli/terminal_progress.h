// A line that shows how far long work is: bar, count, rate and time left.
#pragma once

#include "base/progress.h"

#include <chrono>
#include <mutex>
#include <string>

namespace pelorin::cli {

/// On standard error, which must be a terminal. Shows once a job has taken half a second, and is wiped when it ends.
/// The innermost job of nested ones is not shown. Threads may call `Step`.
class TerminalProgress final : public Progress {
public:
    void Begin(std::string_view text, std::uint64_t total) override;
    void Step(std::uint64_t done) override;
    void End() override;

private:
    using Clock = std::chrono::steady_clock;

    std::mutex m_mutex;
    std::string m_text;
    std::uint64_t m_total = 0;
    int m_depth = 0;
    bool m_shown = false;
    Clock::time_point m_started, m_lastDrawn;
};

/// "title ████░░░░ 12/412  1,180/s  3 s left" in at most `columns` columns.
[[nodiscard]] std::string ProgressLine(std::string_view title, std::uint64_t done, std::uint64_t total, double seconds,
                                       int columns);

} // namespace pelorin::cli
