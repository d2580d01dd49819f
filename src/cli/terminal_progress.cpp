#include "cli/terminal_progress.h"

#include "platform/terminal.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>

namespace pelorin::cli {

using namespace std::chrono_literals;

std::string ProgressLine(std::string_view title, std::uint64_t done, std::uint64_t total, double seconds, int columns) {
    done = std::min(done, total);
    const double rate = seconds > 0 ? static_cast<double>(done) / seconds : 0;
    std::string figures = fmt::format(" {}/{}", done, total);
    if (rate > 0) {
        const auto perSecond = static_cast<std::uint64_t>(rate);
        figures += perSecond >= 1000 ? fmt::format("  {},{:03}/s", perSecond / 1000, perSecond % 1000)
                                     : fmt::format("  {:.{}f}/s", rate, rate < 10 ? 1 : 0);
        figures += fmt::format("  {:.0f} s left", static_cast<double>(total - done) / rate);
    }
    const auto taken = static_cast<int>(title.size() + figures.size()) + 2;
    const int width = std::clamp(columns - taken, 0, 30);
    const auto filled =
        total == 0
            ? 0
            : static_cast<int>(static_cast<double>(width) * static_cast<double>(done) / static_cast<double>(total));
    std::string bar;
    for (int i = 0; i < width; ++i) bar += i < filled ? "\u2588" : "\u2591";
    return fmt::format("{} {}{}", title, bar, figures);
}

void TerminalProgress::Begin(std::string_view text, std::uint64_t total) {
    const std::lock_guard lock(m_mutex);
    if (m_depth++ > 0) return;
    m_text = text;
    m_total = total;
    m_started = m_lastDrawn = Clock::now();
}

void TerminalProgress::Step(std::uint64_t done) {
    const std::lock_guard lock(m_mutex);
    const auto now = Clock::now();
    if (m_depth != 1 || now - m_started < 500ms || now - m_lastDrawn < 100ms) return;
    m_lastDrawn = now;
    const double seconds = std::chrono::duration<double>(now - m_started).count();
    const auto line = "\r" + ProgressLine(m_text, done, m_total, seconds, TerminalColumns(Stream::Error)) + "\x1b[K";
    std::fwrite(line.data(), 1, line.size(), stderr);
    m_shown = true;
}

void TerminalProgress::End() {
    const std::lock_guard lock(m_mutex);
    if (--m_depth > 0 || !m_shown) return;
    std::fputs("\r\x1b[K", stderr);
    m_shown = false;
}

} // namespace pelorin::cli
