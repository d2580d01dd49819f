#include "cli/verb_setup.h"

#include "base/text.h"
#include "cli/suggestion.h"
#include "cli/verb.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <fmt/format.h>

#include <map>

namespace pelorin::cli {

struct VerbSetup::Impl {
    explicit Impl(const Verb& verb) : app(std::string(verb.summary), "pelorin-cli " + std::string(verb.words)) {}

    CLI::App app;
    CommonOptions common;
    VerbAction action;
    bool yes = false, no = false, backup = false;
    int jobs = 0;
    std::vector<std::string>* secondIsOutput = nullptr;

    struct OrderedSlot {
        std::string name;
        std::vector<OrderedOption>* list;
        std::vector<std::string> values;
    };
    std::map<const CLI::Option*, OrderedSlot> ordered;
};

namespace {

std::string Lead(std::string_view names, const std::string& reason) {
    const auto last = names.rfind(',');
    return std::string(last == std::string_view::npos ? names : names.substr(last + 1)) + ": " + reason;
}

void CheckRange(int value, int low, int high) {
    if (value < low || value > high) throw UsageError(fmt::format("{} is not between {} and {}", value, low, high));
}

} // namespace

void VerbSetup::Input(std::string_view name, std::string& value, std::string_view help, bool required) {
    m_impl.app.add_option(std::string(name), value, std::string(help))->required(required)->type_name("");
}

void VerbSetup::Inputs(std::string_view name, std::vector<std::string>& values, std::string_view help, bool required) {
    m_impl.app.add_option(std::string(name), values, std::string(help))->required(required)->type_name("");
}

void VerbSetup::Flag(std::string_view names, bool& value, std::string_view help) {
    m_impl.app.add_flag(std::string(names), value, std::string(help));
}

void VerbSetup::Add(std::string_view names, std::string_view metavar, std::string_view help, bool list, Take take) {
    const auto callback = [take = std::move(take), names = std::string(names)](const std::vector<std::string>& texts) {
        for (const auto& text : texts) {
            try {
                take(text);
            } catch (const UsageError& error) {
                throw UsageError(Lead(names, error.what()));
            }
        }
        return true;
    };
    auto* option = m_impl.app.add_option(std::string(names), callback, std::string(help));
    option->type_name(std::string(metavar))->expected(1);
    if (list) option->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

void VerbSetup::Number(std::string_view names, int& value, int low, int high, std::string_view help) {
    Add(names, "N", help, false, [&value, low, high](std::string_view text) {
        ParseValue(text, value);
        CheckRange(value, low, high);
    });
}

void VerbSetup::Number(std::string_view names, std::optional<int>& value, int low, int high, std::string_view help) {
    Add(names, "N", help, false, [&value, low, high](std::string_view text) {
        ParseValue(text, value);
        CheckRange(*value, low, high);
    });
}

void VerbSetup::Ordered(std::string_view name, std::string_view metavar, std::vector<OrderedOption>& list,
                        std::string_view help) {
    const std::string spelled(name);
    const bool flag = metavar.empty();
    auto* option = flag ? m_impl.app.add_flag(spelled) : m_impl.app.add_option(spelled);
    option->description(std::string(help));
    if (!flag) option->type_name(std::string(metavar))->expected(1);
    option->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    m_impl.ordered[option] = {spelled.substr(spelled.find_first_not_of('-')), &list, {}};
}

void VerbSetup::MakesFiles() {
    auto& common = m_impl.common;
    Option("-o,--output", common.output, "PATH",
           "the file to write, or the folder when several come out; - is standard output");
    Flag("-f,--force", common.force, "replace files that exist");
    Flag("-n,--dry-run", common.dryRun, "say what would be written, write nothing");
}

void VerbSetup::SecondInputIsOutput(std::vector<std::string>& values) {
    m_impl.secondIsOutput = &values;
}

void VerbSetup::RewritesFiles() {
    MakesFiles();
    Flag("--in-place", m_impl.common.inPlace, "replace the input itself");
    m_impl.app.add_flag("--backup{.bak}", m_impl.common.backup,
                        "with --in-place: keep the old file under this suffix (--backup=SUFFIX; .bak)");
}

void VerbSetup::Reports() {
    Flag("--json", m_impl.common.json, "one JSON document instead of a table");
}

void VerbSetup::UsesCores() {
    Number("-j,--jobs", m_impl.jobs, 1, 1024, "files worked on at the same time (default: one a core)");
}

void VerbSetup::Footer(std::string_view text) {
    m_impl.app.footer(std::string(text));
}

std::string VerbSetup::Joined(const std::vector<std::string>& words) {
    return fmt::format("{}", fmt::join(words, "|"));
}

void VerbSetup::RefuseWord(std::string_view text, const std::vector<std::string>& words) {
    throw UsageError(fmt::format("\"{}\" is none of {}{}", text, fmt::join(words, ", "), DidYouMean(text, words)));
}

CommandParser::CommandParser(const Verb& verb) : m_impl(std::make_unique<VerbSetup::Impl>(verb)) {
    auto& app = m_impl->app;
    app.set_help_flag("-h,--help", "this text");
    VerbSetup setup(*m_impl);
    m_impl->action = verb.setUp(setup);
    setup.Flag("-q,--quiet", m_impl->common.quiet, "errors only");
    setup.Flag("-v,--verbose", m_impl->common.verbose, "say more");
    setup.Flag("--no-progress", m_impl->common.noProgress, "no progress bar");
    setup.Flag("--yes", m_impl->yes, "answer every question with yes");
    setup.Flag("--no", m_impl->no, "answer every question with no");
}

CommandParser::~CommandParser() = default;

namespace {

// What the parser could not place; the mark behind which nothing is an option is among it, and harmless.
std::vector<std::string> Extras(const CLI::App& app) {
    auto extras = app.remaining();
    std::erase(extras, "--");
    return extras;
}

[[noreturn]] void RefuseExtra(const CLI::App& app, const std::vector<std::string>& extras) {
    for (const auto& extra : extras) {
        if (extra.size() < 2 || extra[0] != '-') continue;
        std::vector<std::string> known;
        for (const auto* option : app.get_options()) {
            for (const auto& name : option->get_lnames()) known.push_back("--" + name);
        }
        const auto name = extra.substr(0, extra.find('='));
        throw UsageError(fmt::format("there is no option {}{}", name, DidYouMean(name, known)));
    }
    throw UsageError("unexpected argument " + (extras.empty() ? std::string() : "\"" + extras.front() + "\""));
}

} // namespace

CommandParser::Wish CommandParser::Parse(const std::vector<std::string>& arguments) {
    auto& app = m_impl->app;
    app.allow_extras();
    try {
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::CallForHelp&) {
        return Wish::Help;
    } catch (const CLI::ParseError& error) {
        // A mistyped option explains more than the input that it swallowed.
        if (const auto extras = Extras(app); !extras.empty()) RefuseExtra(app, extras);
        throw UsageError(error.what());
    }
    if (const auto extras = Extras(app); !extras.empty()) RefuseExtra(app, extras);
    if (m_impl->yes && m_impl->no) throw UsageError("--yes and --no exclude each other");
    auto& common = m_impl->common;
    if (m_impl->yes || m_impl->no) common.answer = m_impl->yes;
    common.jobs = static_cast<unsigned>(m_impl->jobs);
    if (auto* inputs = m_impl->secondIsOutput; inputs && inputs->size() == 2 && common.output.empty()) {
        common.output = inputs->back();
        inputs->pop_back();
    }
    if (common.inPlace && !common.output.empty()) throw UsageError("--in-place and --output exclude each other");
    if (!common.backup.empty() && !common.inPlace) throw UsageError("--backup goes with --in-place");

    std::map<const CLI::Option*, std::size_t> used;
    for (const auto* option : app.parse_order()) {
        const auto slot = m_impl->ordered.find(option);
        if (slot == m_impl->ordered.end()) continue;
        const auto index = used[option]++;
        const bool flag = option->get_expected_max() == 0;
        slot->second.list->push_back({slot->second.name, flag ? std::string() : option->results().at(index)});
    }
    return Wish::Run;
}

std::string CommandParser::HelpText() const {
    return m_impl->app.help();
}

const CommonOptions& CommandParser::Common() const {
    return m_impl->common;
}

const VerbAction& CommandParser::Action() const {
    return m_impl->action;
}

} // namespace pelorin::cli
