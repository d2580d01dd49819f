#include "support/run_program.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pelorin {
namespace {

using ::testing::StartsWith;

TEST(CommandLine, GeneralQuestionsAndWrongUsage) {
    struct Case {
        std::vector<std::string> arguments;
        int exitCode;
        std::string out, err;
    };
    const Case cases[] = {
        {{"--version"}, 0, "pelorin-cli 0.", ""},
        {{"--help"}, 0, "usage: pelorin-cli VERB", ""},
        {{}, 2, "", "pelorin-cli: a verb is missing"},
        {{"frobnicate"}, 2, "", "pelorin-cli: there is no verb \"frobnicate\""},
    };
    const test::TempFolder folder;
    for (const auto& c : cases) {
        const auto result = test::RunProgram("pelorin-cli", c.arguments, folder.Path());
        EXPECT_EQ(result.exitCode, c.exitCode);
        EXPECT_THAT(result.out, StartsWith(c.out));
        EXPECT_THAT(result.err, StartsWith(c.err));
    }
}

} // namespace
} // namespace pelorin
