// How a verb declares what it takes. The rules that hold for every verb (spelling of the shared options, how values are
// written, what a mistake says) are written here once; the parser library is known to verb_setup.cpp alone.
#pragma once

#include "cli/syntax.h"
#include "cli/usage_error.h"

#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace pelorin::cli {

/// The options that mean the same for every verb that has them.
struct CommonOptions {
    std::string output; ///< empty: derive names
    bool force = false;
    bool inPlace = false;
    std::string backup; ///< suffix for the old file's copy; empty: none
    bool json = false;
    unsigned jobs = 0; ///< 0: one a core
    bool dryRun = false;
    bool quiet = false, verbose = false, noProgress = false;
    std::optional<bool> answer; ///< --yes, --no
};

/// One word of an option that chooses by word.
template <class T>
struct ChoiceRow {
    std::string_view word;
    T value;
};

/// Options of one kind of verb that are carried out in the order in which they were given ("--scale 48 --blur 2").
struct OrderedOption {
    std::string name;  ///< without the dashes
    std::string value; ///< empty for a flag
};

class VerbSetup {
public:
    /// Spelled "-x,--long-name"; every reference must live until the verb has run.
    using Take = std::function<void(std::string_view text)>;

    // ---- inputs, in the order of the command line ----

    void Input(std::string_view name, std::string& value, std::string_view help, bool required = true);
    /// One or more; takes all that is left. With `required` false none is fine too.
    void Inputs(std::string_view name, std::vector<std::string>& values, std::string_view help, bool required = true);

    // ---- options of this verb ----

    void Flag(std::string_view names, bool& value, std::string_view help);
    /// A value of any type that syntax.h reads. A vector takes parts between commas, and the option again and again.
    template <class T>
    void Option(std::string_view names, T& value, std::string_view metavar, std::string_view help) {
        Add(names, metavar, help, IsList(value), [&value](std::string_view text) { ParseValue(text, value); });
    }
    /// A whole number from `low` to `high`.
    void Number(std::string_view names, int& value, int low, int high, std::string_view help);
    void Number(std::string_view names, std::optional<int>& value, int low, int high, std::string_view help);
    /// One of the words; another one is refused with the nearest.
    template <class T>
    void Choice(std::string_view names, T& value, std::vector<ChoiceRow<T>> rows, std::string_view help) {
        std::vector<std::string> words;
        for (const auto& row : rows) words.emplace_back(row.word);
        Add(names, Joined(words), help, false, [&value, rows, words](std::string_view text) {
            for (const auto& row : rows) {
                if (row.word == text) {
                    value = row.value;
                    return;
                }
            }
            RefuseWord(text, words);
        });
    }
    /// The option is appended to `list` each time it is given, behind the ordered ones before it. An empty `metavar`
    /// makes it a flag.
    void Ordered(std::string_view name, std::string_view metavar, std::vector<OrderedOption>& list,
                 std::string_view help);

    // ---- the shared options; every verb has -q, -v, --no-progress, --yes and --no ----

    void MakesFiles(); ///< -o, -f, -n
    /// Of two inputs without -o the second is the output: "image IN OUT".
    void SecondInputIsOutput(std::vector<std::string>& values);
    void RewritesFiles(); ///< those, --in-place and --backup
    void Reports();       ///< --json
    void UsesCores();     ///< -j

    /// Lines below the options in the verb's help: examples, rules.
    void Footer(std::string_view text);

private:
    friend class CommandParser;
    struct Impl;
    explicit VerbSetup(Impl& impl) : m_impl(impl) {}

    void Add(std::string_view names, std::string_view metavar, std::string_view help, bool list, Take take);
    template <class T>
    static constexpr bool IsList(const T&) {
        return false;
    }
    template <class T>
    static constexpr bool IsList(const std::vector<T>&) {
        return true;
    }
    [[nodiscard]] static std::string Joined(const std::vector<std::string>& words);
    [[noreturn]] static void RefuseWord(std::string_view text, const std::vector<std::string>& words);

    Impl& m_impl;
};

struct Verb;

/// Declares one verb and parses its arguments.
class CommandParser {
public:
    explicit CommandParser(const Verb& verb);
    ~CommandParser();

    enum class Wish { Run, Help };
    /// Throws `UsageError`.
    [[nodiscard]] Wish Parse(const std::vector<std::string>& arguments);
    [[nodiscard]] std::string HelpText() const;
    [[nodiscard]] const CommonOptions& Common() const;
    /// What `setUp` of the verb gave.
    [[nodiscard]] const std::function<void(class Run&)>& Action() const;

private:
    std::unique_ptr<VerbSetup::Impl> m_impl;
};

} // namespace pelorin::cli
