// What a person is told and asked, by string number: a window shows a box, the command line prints and takes its
// answers from options, a test scripts the answers and keeps the texts.
#pragma once

#include "core/strings.h"

#include <initializer_list>
#include <string>
#include <vector>

namespace pelorin {

enum class PromptIcon { None, Information, Warning, Stop, Question };
enum class PromptButtons { Ok, OkCancel, YesNo, YesNoCancel, AbortRetryIgnore };
enum class PromptAnswer { Ok, Cancel, Yes, No, Abort, Retry, Ignore };

/// One message or question as it is to be shown.
struct Prompt {
    int number;        ///< of the string it was made from
    std::string title; ///< what stood before the bar, else the program's name
    std::string text;
    PromptIcon icon;
    PromptButtons buttons;
    /// Where given, the box has a check "do not prompt", and a person who sets it turns this off.
    bool* keepAsking = nullptr;
};

class UserPrompt {
public:
    virtual ~UserPrompt() = default;

    /// Tells; there is nothing to answer.
    template <class... Args>
    void Tell(PromptIcon icon, int number, const Args&... args) {
        (void)Show(Make(number, FormatText(number, args...), icon, PromptButtons::Ok));
    }
    /// Asks, and returns one of the answers that the buttons allow.
    template <class... Args>
    [[nodiscard]] PromptAnswer Ask(PromptButtons buttons, int number, const Args&... args) {
        return Show(Make(number, FormatText(number, args...), PromptIcon::Question, buttons));
    }
    /// The same with a check that turns `keepAsking` off, the setting by which this is asked at all.
    template <class... Args>
    [[nodiscard]] PromptAnswer AskWhile(bool& keepAsking, PromptButtons buttons, int number, const Args&... args) {
        auto prompt = Make(number, FormatText(number, args...), PromptIcon::Question, buttons);
        prompt.keepAsking = &keepAsking;
        return Show(prompt);
    }
    /// A text that was put together by the caller, base message and suffix; `number` is that of the base message.
    [[nodiscard]] PromptAnswer ShowText(int number, std::string text, PromptIcon icon, PromptButtons buttons) {
        return Show(Make(number, std::move(text), icon, buttons));
    }

protected:
    [[nodiscard]] virtual PromptAnswer Show(const Prompt& prompt) = 0;

private:
    static Prompt Make(int number, std::string message, PromptIcon icon, PromptButtons buttons);
};

/// Shows nothing, keeps every prompt, and answers as told: first the scripted answers in order, then the most harmless
/// one (Ok, No, Cancel, Abort).
class ScriptedPrompt final : public UserPrompt {
public:
    ScriptedPrompt(std::initializer_list<PromptAnswer> answers = {}) : m_answers(answers) {}

    void Answer(PromptAnswer answer) { m_answers.push_back(answer); }
    /// From now on the checks "do not prompt" are set.
    void SetChecks() { m_setChecks = true; }
    [[nodiscard]] const std::vector<Prompt>& Shown() const { return m_shown; }
    /// The texts shown since the last call, "title|text" each.
    [[nodiscard]] std::vector<std::string> TakeTexts();

protected:
    PromptAnswer Show(const Prompt& prompt) override;

private:
    std::vector<PromptAnswer> m_answers;
    std::vector<Prompt> m_shown;
    std::size_t m_nextAnswer = 0, m_taken = 0;
    bool m_setChecks = false;
};

/// The answer that changes nothing.
[[nodiscard]] PromptAnswer HarmlessAnswer(PromptButtons buttons);

} // namespace pelorin
