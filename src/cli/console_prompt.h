// The program's messages and questions on the command line.
#pragma once

#include "cli/run.h"
#include "core/user_prompt.h"

namespace pelorin::cli {

/// Messages are lines: what went wrong is a failure of the run, the rest a note. Questions are answered by --yes or
/// --no; without them they are failures that say so, and get the answer that changes nothing. A retry is never chosen.
class ConsolePrompt final : public UserPrompt {
public:
    explicit ConsolePrompt(Run& run) : m_run(run) {}

    /// The file that the messages to come are about.
    void SetSubject(std::string file) { m_subject = std::move(file); }

protected:
    PromptAnswer Show(const Prompt& prompt) override;

private:
    Run& m_run;
    std::string m_subject;
};

} // namespace pelorin::cli
