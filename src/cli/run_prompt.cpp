#include "cli/run_prompt.h"

#include "base/text.h"

namespace pelorin::cli {

std::string RunPrompt::Reason(std::string_view otherwise) const {
    return m_told.empty() ? std::string(otherwise) : m_told;
}

PromptAnswer RunPrompt::Show(const Prompt& prompt) {
    const auto line = ReplaceAll(prompt.text, "\n", " ");
    if (prompt.buttons == PromptButtons::Ok) {
        m_told = line;
        return PromptAnswer::Ok;
    }
    const auto& answer = m_run.Options().answer;
    if (answer) return *answer ? PromptAnswer::Yes : PromptAnswer::No;
    std::string options = "--yes or --no decides";
    for (const auto& [question, option] : m_options) {
        if (question == prompt.number) options = option + " means yes";
    }
    m_told = line + " (" + options + ")";
    return HarmlessAnswer(prompt.buttons);
}

} // namespace pelorin::cli
