// What documents tell and ask, on the command line: messages are kept for the verb to report, questions are answered by
// --yes and --no.
#pragma once

#include "cli/run.h"
#include "core/user_prompt.h"

namespace pelorin::cli {

class RunPrompt final : public UserPrompt {
public:
    explicit RunPrompt(const Run& run) : m_run(run) {}

    /// A question that means an option of its own: with it the answer would be yes.
    void NameOption(int question, std::string option) { m_options.emplace_back(question, std::move(option)); }
    /// The messages so far, on one line; `otherwise` when there were none.
    [[nodiscard]] std::string Reason(std::string_view otherwise) const;

protected:
    PromptAnswer Show(const Prompt& prompt) override;

private:
    const Run& m_run;
    std::vector<std::pair<int, std::string>> m_options;
    std::string m_told;
};

} // namespace pelorin::cli
