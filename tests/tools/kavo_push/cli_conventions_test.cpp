// The conventions every command keeps: help, usage errors, failures, and where output goes.
#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tests/tools/kavo_push/tool_runner.h"

namespace {

using KavoTest::RunTool;
using KavoTest::ToolRun;

// The names under "Commands:" in the overview.
std::set<std::string> ListedCommands(const std::string& overview)
{
    std::set<std::string> names;
    std::istringstream lines(overview.substr(overview.find("Commands:\n") + 10));
    for (std::string line; std::getline(lines, line) && line.rfind("  ", 0) == 0;) {
        names.insert(line.substr(2, line.find(' ', 2) - 2));
    }
    return names;
}

TEST(CliConventionsTest, EveryListedCommandHasHelpOnStandardOutput)
{
    ToolRun overview = RunTool({"help"});
    ASSERT_EQ(overview.status, 0);
    std::set<std::string> names = ListedCommands(overview.out);
    for (const char* name :
         {"base64", "certchain", "decode", "encode", "errors", "keygen", "mask", "sha256", "types", "validate"}) {
        EXPECT_EQ(names.count(name), 1u) << name;
    }
    for (const std::string& name : names) {
        for (const char* flag : {"--help", "-h"}) {
            ToolRun run = RunTool({name, flag});
            EXPECT_EQ(run.status, 0) << name << " " << flag;
            EXPECT_EQ(run.out.rfind("usage: kavo-push " + name, 0), 0u) << name << " " << flag;
            EXPECT_NE(run.out.find("Exit status"), std::string::npos) << name;
            EXPECT_EQ(run.err, "");
        }
    }
}

TEST(CliConventionsTest, BadUsageExitsTwoWithAHintAndNoOutput)
{
    struct Case {
        const char* behaviour;
        std::vector<std::string> args;
        const char* diagnostic;
    };
    const Case cases[] = {
        {"no command", {}, "usage: kavo-push COMMAND"},
        {"an unknown command", {"frobnicate"}, "unknown command 'frobnicate'"},
        {"base64 without a mode", {"base64"}, "expected encode or decode"},
        {"base64 with an unknown mode", {"base64", "rot13"}, "expected encode or decode"},
        {"an unknown option", {"sha256", "--hex"}, "unknown option --hex"},
        {"a single-dash option", {"sha256", "-x"}, "unknown option -x"},
        {"a value given to a flag", {"sha256", "--base64=yes"}, "option --base64 takes no value"},
        {"sha256 with two files", {"sha256", "a", "b"}, "expected at most one FILE"},
        {"keygen with an argument", {"keygen", "extra"}, "unexpected argument extra"},
        {"an option missing its value", {"keygen", "--out-dir"}, "option --out-dir needs a value"},
        {"certchain without a challenge", {"certchain"}, "--challenge TEXT is required"},
        {"an option given twice", {"certchain", "--challenge", "a", "--challenge=b"}, "option --challenge given twice"},
        {"mask with an unknown option", {"mask", "--bogus", "x"}, "unknown option --bogus"},
        {"errors with trailing letters", {"errors", "12x"}, "CODE must be a decimal number"},
        {"errors past the 32-bit range", {"errors", "4294967697"}, "CODE must be a decimal number"},
        {"an unknown demo scenario", {"demo", "--scenario", "nope"}, "unknown scenario 'nope'"},
        {"extension without a descriptor", {"extension"}, "expected --fd N"},
        {"extension told an unknown behaviour", {"extension", "--fd", "0", "--behaviour", "sing"}, "expected --fd N"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        ToolRun run = RunTool(c.args, "input that must not be read");
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.out, "");
        EXPECT_NE(run.err.find(c.diagnostic), std::string::npos) << run.err;
        if (!c.args.empty() && c.args[0] != "frobnicate") {
            EXPECT_NE(run.err.find("Try 'kavo-push " + c.args[0] + " --help'."), std::string::npos) << run.err;
        }
    }
}

// A failure prints nothing on standard output; the diagnostic names the command, and where the
// library refused the input its own log line is there too.
TEST(CliConventionsTest, FailedOperationsExitOneWithTheirDiagnostics)
{
    KavoTest::TempDir dir;
    const std::string missing = dir.File("missing");
    struct Case {
        const char* behaviour;
        std::vector<std::string> args;
        std::string input;
        std::vector<std::string> diagnostics;
    };
    const Case cases[] = {
        {"a character outside the alphabet",
         {"base64", "decode"},
         "Y!Jj",
         {"kavo-push base64: input is not valid Base64", "ERROR D005300/push: Base64Decode error: bio read fail"}},
        {"text shorter than one group", {"base64", "decode"}, "YWJ\n", {"Base64Decode error: bio read fail"}},
        {"an unfinished last group the codec would drop", {"base64", "decode"}, "YWJjZA", {"not valid Base64"}},
        {"padding before the end of a text longer than a read",
         {"base64", "decode"},
         std::string(65532, 'A') + "Zg==AAAA",
         {"not valid Base64"}},
        {"stray bits in the last group", {"base64", "decode"}, "YR==", {"not valid Base64"}},
        {"a missing input file", {"sha256", missing}, "", {"kavo-push sha256: cannot open " + missing}},
        {"a directory as input file", {"base64", "encode", dir.Path()}, "", {"cannot read " + dir.Path()}},
        {"a code that is not public", {"errors", "12345"}, "", {"kavo-push errors: 12345 is not a public error code"}},
        {"keys into a missing folder", {"keygen", "--out-dir", missing}, "", {"cannot write " + missing}},
        {"a chain into a missing folder",
         {"certchain", "--challenge", "c", "--out-dir", missing},
         "",
         {"cannot write " + missing + "/device.pem"}},
        {"extension given a file, not a socket", {"extension", "--fd", "0"}, "", {"0 is not a connected socket"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        ToolRun run = RunTool(c.args, c.input);
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.out, "");
        for (const std::string& text : c.diagnostics) {
            EXPECT_NE(run.err.find(text), std::string::npos) << run.err;
        }
    }
}

TEST(CliConventionsTest, OutputThatCannotBeWrittenFailsTheCommand)
{
    const std::vector<std::string> commands[] = {{"sha256"}, {"help"}, {"errors"}, {"keygen"}, {"mask", "x"}};
    for (const auto& args : commands) {
        SCOPED_TRACE(args[0]);
        ToolRun run = RunTool(args, "abc", "/dev/full");
        EXPECT_EQ(run.status, 1);
        EXPECT_NE(run.err.find("kavo-push: cannot write standard output"), std::string::npos) << run.err;
    }
}

}  // namespace
