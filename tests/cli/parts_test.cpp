#include "cli/json_writer.h"
#include "cli/run_prompt.h"
#include "cli/syntax.h"
#include "cli/terminal_progress.h"
#include "cli/text_table.h"
#include "cli/verb.h"

#include <gtest/gtest.h>

namespace pelorin::cli {
namespace {

template <class T>
std::optional<T> Parsed(std::string_view text) {
    T value{};
    try {
        ParseValue(text, value);
        return value;
    } catch (const UsageError&) {
        return {};
    }
}

TEST(Syntax, ValuesAndWhatIsNone) {
    EXPECT_EQ(Parsed<Size>("48x32"), (Size{48, 32}));
    EXPECT_EQ(Parsed<Size>("48"), (Size{48, 48}));
    EXPECT_EQ(Parsed<Size>("1X32768"), (Size{1, 32768}));
    for (const char* text : {"", "x", "48x", "x48", "0", "-1", "48x48x48", "32769", "4 8", "99999999999"}) {
        EXPECT_FALSE(Parsed<Size>(text)) << text;
    }
    EXPECT_EQ(Parsed<IconFormat>("48x32x8"), (IconFormat{48, 32, 8}));
    for (const char* text : {"48x48", "48x48x0", "48x48x16", "48x48x32x1", "48x48x32 ", "x48x32"}) {
        EXPECT_FALSE(Parsed<IconFormat>(text)) << text;
    }
    EXPECT_EQ(Parsed<Color>("#102030")->argb, 0xFF102030u);
    EXPECT_EQ(Parsed<Color>("10203040")->argb, 0x40102030u);
    EXPECT_EQ(Parsed<Color>("Fuchsia")->argb, 0xFFFF00FFu);
    for (const char* text : {"", "#", "12345", "#1020", "1020304g", "-12345", "blau"}) {
        EXPECT_FALSE(Parsed<Color>(text)) << text;
    }
    EXPECT_EQ(ColorText(0x40102030, true), "#10203040");
    EXPECT_EQ(Parsed<std::vector<int>>("1,-2,3"), (std::vector<int>{1, -2, 3}));
    EXPECT_FALSE(Parsed<std::vector<int>>("1,,3"));
    EXPECT_EQ(Parsed<double>("0.5"), 0.5);
    for (const char* text : {"0,5", "inf", "nan", "1e", ""}) EXPECT_FALSE(Parsed<double>(text)) << text;
}

TEST(JsonWriter, EscapesAndSeparates) {
    JsonWriter json;
    json.BeginArray();
    json.String("a\"\\\n\t\x01/\xC3\xA4");
    json.String("\xE4"); // not UTF-8
    json.BeginObject();
    json.Field("empty", "");
    json.Key("none");
    json.BeginArray();
    json.EndArray();
    json.Field("half", 0.5);
    json.Field("yes", true);
    json.Key("nothing");
    json.Real(1e308 * 10);
    json.EndObject();
    json.EndArray();
    EXPECT_EQ(json.Take(),
              "[\n  \"a\\\"\\\\\\n\\t\\u0001/\xC3\xA4\",\n  \"\xC3\xA4\",\n  {\n    \"empty\": \"\",\n"
              "    \"none\": [],\n    \"half\": 0.5,\n    \"yes\": true,\n    \"nothing\": null\n  }\n]\n");
}

TEST(TextTable, AlignsCharactersNotBytes) {
    TextTable table("rl");
    table.Row({"1", "\xC3\xA4\xC3\xA4", "x"});
    table.Row({"22", "b", ""});
    EXPECT_EQ(table.Text(), " 1  \xC3\xA4\xC3\xA4  x\n22  b\n");
    EXPECT_EQ(BytesText(999), "999 bytes");
    EXPECT_EQ(BytesText(2048), "2.0 KB");
    EXPECT_EQ(BytesText(67010), "65 KB");
    EXPECT_EQ(BytesText(3u << 20), "3.0 MB");
}

TEST(Progress, LineFitsTheTerminal) {
    EXPECT_EQ(ProgressLine("icons", 5, 10, 0.005, 0), "icons  5/10  1,000/s  0 s left");
    EXPECT_EQ(ProgressLine("icons", 1, 2, 1, 32), "icons \u2588\u2588\u2591\u2591 1/2  1.0/s  1 s left");
    EXPECT_EQ(ProgressLine("icons", 0, 0, 1, 0), "icons  0/0");
}

struct Taken {
    std::vector<OrderedOption> steps;
    std::vector<IconFormat> formats;
    std::vector<std::string> files;
    std::optional<int> number;
    bool flag = false;
} g_taken;

VerbAction SetUpTrial(VerbSetup& setup) {
    g_taken = {};
    setup.Inputs("FILE", g_taken.files, "files");
    setup.Option("--formats", g_taken.formats, "FORMATS", "formats");
    setup.Number("--number", g_taken.number, 1, 9, "number");
    setup.Flag("--flag", g_taken.flag, "flag");
    setup.Ordered("--scale", "SIZE", g_taken.steps, "a step");
    setup.Ordered("--blur", "N", g_taken.steps, "a step");
    setup.Ordered("--flip", "", g_taken.steps, "a step without value");
    return [](Run&) {};
}

constexpr Verb kTrial{"trial", "tries the parser", SetUpTrial};

TEST(CommandParser, StepsKeepTheirOrderAndInputsStayInputs) {
    CommandParser parser(kTrial);
    ASSERT_EQ(parser.Parse({"--scale", "48", "a", "--flip", "--blur=2", "--formats", "1x1x1,2x2x4", "b", "--scale",
                            "16", "--flip", "--formats=3x3x8", "--number", "3", "--yes"}),
              CommandParser::Wish::Run);
    std::string steps;
    for (const auto& step : g_taken.steps) steps += step.name + "=" + step.value + " ";
    EXPECT_EQ(steps, "scale=48 flip= blur=2 scale=16 flip= ");
    EXPECT_EQ(g_taken.files, (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(g_taken.formats.size(), 3u);
    EXPECT_EQ(g_taken.number, 3);
    EXPECT_FALSE(g_taken.flag);
    EXPECT_EQ(parser.Common().answer, true);
}

TEST(CommandParser, NamesThatLookLikeVerbsAndOptions) {
    CommandParser parser(kTrial);
    ASSERT_EQ(parser.Parse({"list", "info", "-", "--", "-x"}), CommandParser::Wish::Run);
    EXPECT_EQ(g_taken.files, (std::vector<std::string>{"list", "info", "-", "-x"}));
}

TEST(RunPrompt, QuestionsAreAnsweredByOptionsOrSayWhichDoes) {
    struct Case {
        std::optional<bool> answer;
        PromptButtons buttons;
        PromptAnswer expected;
        const char* reason;
    };
    const char* const open = "Really? (--yes or --no decides)";
    const Case cases[] = {
        {true, PromptButtons::YesNoCancel, PromptAnswer::Yes, ""},
        {false, PromptButtons::YesNo, PromptAnswer::No, "Really? (--no)"},
        {true, PromptButtons::OkCancel, PromptAnswer::Ok, ""},
        {true, PromptButtons::AbortRetryIgnore, PromptAnswer::Ignore, ""},
        {{}, PromptButtons::YesNo, PromptAnswer::No, open},
        {{}, PromptButtons::AbortRetryIgnore, PromptAnswer::Abort, open},
    };
    for (const auto& c : cases) {
        CommonOptions options;
        options.answer = c.answer;
        pelorin::cli::Run run(options);
        RunPrompt prompt(run);
        EXPECT_EQ(prompt.ShowText(1, "Really?", PromptIcon::Question, c.buttons), c.expected);
        EXPECT_EQ(prompt.Reason(""), c.reason);
    }
}

} // namespace
} // namespace pelorin::cli
