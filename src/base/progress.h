// How long work tells where it stands: the window shows a dialog with Stop, the command line a bar on a terminal.
#pragma once

#include <cstdint>
#include <string_view>

namespace pelorin {

class Progress {
public:
    virtual ~Progress() = default;
    /// A job of `total` steps starts; `text` is what is being done ("Reading BMP...").
    virtual void Begin(std::string_view text, std::uint64_t total) = 0;
    /// `done` steps of the job are behind us.
    virtual void Step(std::uint64_t done) = 0;
    virtual void End() = 0;
    /// True once the person asked to stop; the job ends as soon as it leaves nothing half done.
    [[nodiscard]] virtual bool StopAsked() const { return false; }
};

/// For callers that show nothing.
class NoProgress final : public Progress {
public:
    void Begin(std::string_view, std::uint64_t) override {}
    void Step(std::uint64_t) override {}
    void End() override {}
};

/// Begin and End as a scope, so that a reader that gives up half way does not leave a bar behind. A null pointer is
/// allowed and shows nothing.
class ProgressScope {
public:
    ProgressScope(Progress* progress, std::string_view text, std::uint64_t total) : m_progress(progress) {
        if (m_progress) m_progress->Begin(text, total);
    }
    ~ProgressScope() {
        if (m_progress) m_progress->End();
    }
    ProgressScope(const ProgressScope&) = delete;
    ProgressScope& operator=(const ProgressScope&) = delete;

    void Step(std::uint64_t done) {
        if (m_progress) m_progress->Step(done);
    }
    [[nodiscard]] bool StopAsked() const { return m_progress && m_progress->StopAsked(); }

private:
    Progress* m_progress;
};

} // namespace pelorin
