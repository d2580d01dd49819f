#include "cli/run_prompt.h"

#include "base/text.h"

namespace pelorin::cli {

namespace {

// What --yes and --no mean by the buttons of a question. A retry is never chosen.
struct AnswerRow {
    PromptButtons buttons;
    PromptAnswer yes, no;
};
constexpr AnswerRow kAnswers[] = {
    {PromptButtons::OkCancel, PromptAnswer::Ok, PromptAnswer::Cancel},
    {PromptButtons::YesNo, PromptAnswer::Yes, PromptAnswer::No},
    {PromptButtons::YesNoCancel, PromptAnswer::Yes, PromptAnswer::No},
    {PromptButtons::AbortRetryIgnore, PromptAnswer::Ignore, PromptAnswer::Abort},
};

} // namespace

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
    for (const auto& row : kAnswers) {
        if (!answer || row.buttons != prompt.buttons) continue;
        if (!*answer) m_told = line + " (--no)";
        return *answer ? row.yes : row.no;
    }
    std::string options = "--yes or --no decides";
    for (const auto& [question, option] : m_options) {
        if (question == prompt.number) options = option + " means yes";
    }
    m_told = line + " (" + options + ")";
    return HarmlessAnswer(prompt.buttons);
}

} // namespace pelorin::cli
