#include "cli/console_prompt.h"

#include "base/text.h"

namespace pelorin::cli {

namespace {

struct AnswerRow {
    PromptButtons buttons;
    PromptAnswer yes, no;
};
constexpr AnswerRow kAnswers[] = {
    {PromptButtons::Ok, PromptAnswer::Ok, PromptAnswer::Ok},
    {PromptButtons::OkCancel, PromptAnswer::Ok, PromptAnswer::Cancel},
    {PromptButtons::YesNo, PromptAnswer::Yes, PromptAnswer::No},
    {PromptButtons::YesNoCancel, PromptAnswer::Yes, PromptAnswer::No},
    {PromptButtons::AbortRetryIgnore, PromptAnswer::Ignore, PromptAnswer::Abort},
};

} // namespace

PromptAnswer ConsolePrompt::Show(const Prompt& prompt) {
    const auto text = ReplaceAll(prompt.text, "\n", " ");
    if (prompt.buttons == PromptButtons::Ok) {
        const bool failure = prompt.icon == PromptIcon::Warning || prompt.icon == PromptIcon::Stop;
        if (failure) {
            m_run.Fail(m_subject.empty() ? prompt.title : m_subject, text);
        } else {
            m_run.Note(text);
        }
        return PromptAnswer::Ok;
    }
    const auto& answer = m_run.Options().answer;
    for (const auto& row : kAnswers) {
        if (answer && row.buttons == prompt.buttons) return *answer ? row.yes : row.no;
    }
    m_run.Fail(m_subject.empty() ? prompt.title : m_subject, text + " (--yes or --no decides)");
    return HarmlessAnswer(prompt.buttons);
}

} // namespace pelorin::cli
