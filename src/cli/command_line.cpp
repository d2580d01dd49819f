#include "cli/command_line.h"

#include "cli/suggestion.h"
#include "cli/text_table.h"
#include "cli/verb.h"
#include "core/settings.h"
#include "platform/doors.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>

namespace pelorin::cli {

namespace {

std::string GeneralHelp(std::string_view group = {}) {
    TextTable table("ll", "  ");
    for (const auto& verb : AllVerbs()) {
        const bool wanted = group.empty() || verb.words.substr(0, verb.words.find(' ')) == group;
        if (wanted) table.Row({std::string(verb.words), std::string(verb.summary)});
    }
    const auto usage = group.empty() ? std::string("VERB") : std::string(group) + " NOUN";
    return fmt::format("usage: pelorin-cli {} INPUT... [-o OUTPUT] [options]\n\n{}\n"
                       "pelorin-cli VERB --help tells the options of a verb; --version the version.\n"
                       "Exit code: 0 all done, 1 something failed, 2 wrong usage, 130 interrupted.\n",
                       usage, table.Text());
}

bool IsHelp(const std::string& word) {
    return word == "--help" || word == "-h" || word == "help";
}

// A verb that the first words name, and how many words that were.
struct Match {
    const Verb* verb = nullptr;
    std::size_t words = 0;
};

bool IsGroup(std::string_view word) {
    const auto prefix = std::string(word) + ' ';
    return std::ranges::any_of(AllVerbs(), [&](const Verb& verb) { return verb.words.starts_with(prefix); });
}

Match FindVerb(const std::vector<std::string>& arguments) {
    Match best;
    for (const auto& verb : AllVerbs()) {
        const std::size_t words = verb.words.find(' ') == std::string_view::npos ? 1 : 2;
        if (arguments.size() < words || words <= best.words) continue;
        const auto given = words == 1 ? arguments[0] : arguments[0] + ' ' + arguments[1];
        if (given == verb.words) best = {&verb, words};
    }
    return best;
}

[[noreturn]] void RefuseVerb(const std::vector<std::string>& arguments) {
    const auto& word = arguments.front();
    std::vector<std::string> known;
    if (IsGroup(word)) {
        const auto prefix = word + ' ';
        for (const auto& verb : AllVerbs()) {
            if (verb.words.starts_with(prefix)) known.emplace_back(verb.words.substr(prefix.size()));
        }
        if (arguments.size() < 2) throw UsageError(fmt::format("{} needs one of {}", word, fmt::join(known, ", ")));
        throw UsageError(fmt::format("{} has no \"{}\"{}", word, arguments[1], DidYouMean(arguments[1], known)));
    }
    for (const auto& verb : AllVerbs()) known.emplace_back(verb.words.substr(0, verb.words.find(' ')));
    throw UsageError(fmt::format("there is no verb \"{}\"{}", word, DidYouMean(word, known)));
}

int RunVerb(const Verb& verb, const std::vector<std::string>& arguments) {
    CommandParser parser(verb);
    if (parser.Parse(arguments) == CommandParser::Wish::Help) {
        std::fputs(parser.HelpText().c_str(), stdout);
        return kAllDone;
    }
    Run run(parser.Common());
    run.Attempt("standard output", [&] {
        // What a verb's options leave open, the stored ones decide.
        LoadSettings(*MakeSystemDoors().settings);
        parser.Action()(run);
        run.Flush();
    });
    return run.Failed() ? kSomethingFailed : kAllDone;
}

int Dispatch(const std::vector<std::string>& arguments) {
    if (arguments.empty()) throw UsageError("a verb is missing; pelorin-cli --help lists them");
    if (arguments[0] == "--version") {
        std::fputs("pelorin-cli " PELORIN_VERSION "\n", stdout);
        return kAllDone;
    }
    if (IsHelp(arguments[0])) {
        if (arguments.size() == 1) {
            std::fputs(GeneralHelp().c_str(), stdout);
            return kAllDone;
        }
        std::vector<std::string> asked(arguments.begin() + 1, arguments.end());
        asked.emplace_back("--help");
        return Dispatch(asked);
    }
    const auto match = FindVerb(arguments);
    if (match.verb == nullptr) {
        if (arguments.size() == 2 && IsHelp(arguments[1]) && IsGroup(arguments[0])) {
            std::fputs(GeneralHelp(arguments[0]).c_str(), stdout);
            return kAllDone;
        }
        RefuseVerb(arguments);
    }
    return RunVerb(*match.verb, {arguments.begin() + static_cast<std::ptrdiff_t>(match.words), arguments.end()});
}

} // namespace

int RunCommandLine(const std::vector<std::string>& arguments) {
    try {
        return Dispatch(arguments);
    } catch (const UsageError& error) {
        const auto line = fmt::format("pelorin-cli: {}\n", Printable(error.what()));
        std::fwrite(line.data(), 1, line.size(), stderr);
        return kWrongUsage;
    }
}

} // namespace pelorin::cli
