#include "core/user_prompt.h"

namespace pelorin {

// Only a bar of the text itself parts it: one in a file's name is part of the name.
Prompt UserPrompt::Make(int number, std::string message, PromptIcon icon, PromptButtons buttons) {
    if (LoadText(number).find('|') == std::string::npos) {
        return {number, LoadText(str::kProgramName), std::move(message), icon, buttons, nullptr};
    }
    auto [title, text] = SplitAtBar(message);
    return {number, std::move(title), std::move(text), icon, buttons, nullptr};
}

PromptAnswer HarmlessAnswer(PromptButtons buttons) {
    switch (buttons) {
    case PromptButtons::Ok: return PromptAnswer::Ok;
    case PromptButtons::YesNo: return PromptAnswer::No;
    case PromptButtons::AbortRetryIgnore: return PromptAnswer::Abort;
    case PromptButtons::OkCancel:
    case PromptButtons::YesNoCancel: break;
    }
    return PromptAnswer::Cancel;
}

PromptAnswer ScriptedPrompt::Show(const Prompt& prompt) {
    m_shown.push_back(prompt);
    if (prompt.keepAsking && m_setChecks) *prompt.keepAsking = false;
    if (prompt.buttons == PromptButtons::Ok) return PromptAnswer::Ok;
    return m_nextAnswer < m_answers.size() ? m_answers[m_nextAnswer++] : HarmlessAnswer(prompt.buttons);
}

std::vector<std::string> ScriptedPrompt::TakeTexts() {
    std::vector<std::string> texts;
    for (; m_taken < m_shown.size(); ++m_taken) texts.push_back(m_shown[m_taken].title + "|" + m_shown[m_taken].text);
    return texts;
}

} // namespace pelorin
