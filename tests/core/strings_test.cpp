#include "core/strings.h"
#include "core/user_prompt.h"

#include <gtest/gtest.h>

namespace pelorin {
namespace {

struct LanguageScope {
    explicit LanguageScope(std::map<int, std::string> texts) { SetLanguageTexts(std::move(texts)); }
    ~LanguageScope() { SetLanguageTexts({}); }
};

TEST(Strings, ModuleTextsStandBeforeTheBuiltInOnes) {
    EXPECT_EQ(LoadText(55714), "Windows Icon File");
    EXPECT_EQ(LoadText(59806), "Èeský - Czech (ResCze.dll)");
    EXPECT_EQ(LoadText(1), "");
    const LanguageScope french({{55714, "Fichier icône"}, {1, "un"}});
    EXPECT_EQ(LoadText(55714), "Fichier icône");
    EXPECT_EQ(LoadText(1), "un");
    EXPECT_EQ(LoadText(55715), "Amiga IFF Bitmap");
    EXPECT_EQ(BuiltInText(55714), "Windows Icon File");
}

// A module is a file from elsewhere: what its texts ask for must never reach for arguments that are not there.
TEST(Strings, TextsThatAskForTooMuchGiveWay) {
    for (const char* bad : {"%s %s %s", "%d %n", "%", "%*.*s", "%s %q"}) {
        const LanguageScope module({{str::kErrorSavingChanges, bad}});
        EXPECT_EQ(FormatText(str::kErrorSavingChanges, "a.ico"), "Unable to save changes to file \"a.ico\".") << bad;
    }
}

TEST(Prompt, TitleStandsBeforeTheBarOfTheTextAlone) {
    ScriptedPrompt prompt{PromptAnswer::Yes};
    prompt.Tell(PromptIcon::Stop, str::kFileNotFound, "a|b.ico");
    prompt.Tell(PromptIcon::Warning, str::kFileNotSupported, "a|b.txt");
    EXPECT_EQ(prompt.Ask(PromptButtons::YesNo, str::kAskCreateFolder, "x"), PromptAnswer::Yes);
    EXPECT_EQ(prompt.Ask(PromptButtons::YesNoCancel, str::kAskSaveLibrary, "x"), PromptAnswer::Cancel);
    EXPECT_EQ(prompt.TakeTexts(),
              (std::vector<std::string>{
                  "File Not Found!|The file \"a|b.ico\" cannot be opened or is not found. Please check pathname and "
                  "try again.",
                  "Vantrel Pelorin|The file \"a|b.txt\" cannot be opened.\nThis file type is not supported by Vantrel "
                  "Pelorin.",
                  "Vantrel Pelorin|The folder \"x\" does not exist.\nDo you want to create it?",
                  "Vantrel Pelorin|Save changes in the library \"x\" ?"}));
    EXPECT_EQ(prompt.Shown()[1].icon, PromptIcon::Warning);
}

} // namespace
} // namespace pelorin
