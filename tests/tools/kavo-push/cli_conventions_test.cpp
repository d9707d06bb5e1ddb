#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/test_support.h"
#include "tests/tools/kavo-push/tool_runner.h"

namespace {

using KavoTest::RunProgram;
using KavoTest::RunTool;
using KavoTest::ToolRun;

TEST(CliConventionsTest, EveryCommandIsListedAndHasHelpOnStandardOutput)
{
    ToolRun overview = RunTool({"help"});
    ASSERT_EQ(overview.status, 0);
    for (const std::string name : {"base64", "certchain", "decode", "demo", "encode", "errors", "extension", "keygen",
                                   "mask", "sha256", "types", "validate"}) {
        EXPECT_NE(overview.out.find("\n  " + name + " "), std::string::npos) << name;
        for (const char* flag : {"--help", "-h"}) {
            ToolRun run = RunTool({name, flag});
            EXPECT_EQ(run.status, 0) << name << " " << flag;
            EXPECT_EQ(run.out.rfind("usage: kavo-push " + name, 0), 0u) << name << " " << flag;
            EXPECT_NE(run.out.find("Exit status"), std::string::npos) << name;
            EXPECT_EQ(run.err, "");
        }
    }
}

// Bad usage exits 2 with a hint, a failed operation 1; either prints nothing on standard output
// and says why on standard error, the library's own log lines included where it refused the
// input. No input, however hostile, costs the tool much memory.
TEST(CliConventionsTest, EveryCommandAnswersWithItsStatusOutputAndDiagnostics)
{
    KavoTest::TempDir dir;
    const std::string missing = dir.File("missing");
    struct Case {
        const char* behaviour;
        std::string args;  // split at spaces
        std::string input;
        int status;
        std::string err;       // a part of standard error; none at all when empty
        std::string out = "";  // all of standard output
    };
    const std::string iconMissing = "ERROR D005300/push: overlayIcon_ is Null\n"
                                    "ERROR D005300/push: RemoteNotificationContent Unmarshalling Error\n"
                                    "kavo-push decode: the bytes do not hold a RemoteNotificationContent\n";
    const std::string badBase64 = "kavo-push base64: input is not valid Base64\n";
    const std::string binary("\0\xfb\xff", 3);
    std::string deepParams = R"({"k":{"type":"int32","value":1}})";  // a map inside 32 more maps
    for (int depth = 0; depth < 32; ++depth) {
        deepParams = R"({"k":{"type":"params","value":)" + deepParams + "}}";
    }
    const Case cases[] = {
        {"nothing encodes to nothing", "base64 encode", "", 0, ""},
        {"binary bytes, one line", "base64 encode", binary, 0, "", "APv/\n"},
        {"decoding padded text wrapped with CRLF", "base64 decode", "Zm9v\r\nYmE=\r\n", 0, "", "fooba"},
        {"decoding to binary bytes", "base64 decode", "APv/", 0, "", binary},
        {"a line break across a piece boundary", "base64 decode", std::string(65535, 'A') + "\r\nA", 0, "",
         std::string(49152, '\0')},
        {"digest of nothing, - naming standard input", "sha256 -", "", 0, "",
         "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855\n"},
        {"digest in Base64", "sha256 --base64", "abc", 0, "", "ungWv48Bz+pBQUDeXa4iI7ADYaOWF3qctBD/YfIAFa0=\n"},
        {"addresses lose every second digit", "mask 192.168.1.10 fe80::1", "", 0, "", "1*2.*6*.1.*0\nf*8*::1\n"},
        {"without TEXT each input line is masked", "mask", "abcdef\nab-cd\n", 0, "", "a*c*e*\na*-c*\n"},
        {"a wifi tag", "mask --tag wifi-aa:bb:cc:dd:ee:ff-123", "", 0, "", "wifi-aa:bb:cc:dd:**:**-123\n"},
        {"-- ends the options", "mask -- --tag", "", 0, "", "--t*g\n"},
        {"one code and its message", "errors 1000900002", "", 0, "", "1000900002\tPush extension does not exist.\n"},
        {"no command", "", "", 2, "usage: kavo-push COMMAND"},
        {"an unknown command", "frobnicate", "", 2, "unknown command 'frobnicate'"},
        {"base64 without a mode", "base64", "", 2, "expected encode or decode"},
        {"base64 with an unknown mode", "base64 rot13", "", 2, "expected encode or decode"},
        {"an unknown option", "sha256 --hex", "", 2, "unknown option --hex"},
        {"a value given to a flag", "sha256 --base64=yes", "", 2, "option --base64 takes no value"},
        {"sha256 with two files", "sha256 a b", "", 2, "expected at most one FILE"},
        {"keygen with an argument", "keygen extra", "", 2, "unexpected argument extra"},
        {"an option missing its value", "keygen --out-dir", "", 2, "option --out-dir needs a value"},
        {"certchain without a challenge", "certchain", "", 2, "--challenge TEXT is required"},
        {"an option given twice", "certchain --challenge a --challenge=b", "", 2, "option --challenge given twice"},
        {"errors with trailing letters", "errors 12x", "", 2, "CODE must be a decimal number"},
        {"errors past the 32-bit range", "errors 4294967697", "", 2, "CODE must be a decimal number"},
        {"an unknown demo scenario", "demo --scenario nope", "", 2, "unknown scenario 'nope'"},
        {"extension without a descriptor", "extension", "", 2, "expected --fd N"},
        {"extension told an unknown behaviour", "extension --fd 0 --behaviour sing", "", 2, "expected --fd N"},
        {"no record type", "decode", "", 2, "kavo-push decode: expected TYPE and at most one FILE\n"},
        {"an unknown type", "encode Want", "", 2, "unknown type 'Want'; 'kavo-push types' lists them\n"},
        {"validate without a request", "validate --content -", "", 2, "expected --request FILE, optionally --content"},
        {"a character outside the alphabet", "base64 decode", "Y!Jj", 1, "bio read fail\n" + badBase64},
        {"an unfinished last group the codec would drop", "base64 decode", "YWJjZA", 1, badBase64},
        {"stray bits in the last group", "base64 decode", "YR==", 1, badBase64},
        {"stray bits before one padding character", "base64 decode", "YWJ=", 1, badBase64},
        {"a character outside the alphabet in an early piece", "base64 decode", "Y!Jj" + std::string(65536, 'A'), 1,
         "bio read fail\n" + badBase64},
        {"padding inside a text of many pieces", "base64 decode", std::string(65532, 'A') + "Zg==AAAA", 1, badBase64},
        {"a missing input file", "sha256 " + missing, "", 1, "kavo-push sha256: cannot open " + missing},
        {"a directory as input file", "base64 encode " + dir.Path(), "", 1, "cannot read " + dir.Path()},
        {"a code that is not public", "errors 12345", "", 1, "kavo-push errors: 12345 is not a public error code"},
        {"keys into a missing folder", "keygen --out-dir " + missing, "", 1, "cannot write " + missing},
        {"a chain into a missing folder", "certchain --challenge c --out-dir " + missing, "", 1, "missing/device.pem"},
        {"extension given a file, not a socket", "extension --fd 0", "", 1, "0 is not a connected socket"},
        {"flags announcing an icon that is not there", "decode RemoteNotificationContent --hex", "04000000 00000000", 1,
         iconMissing},
        {"bytes after a record are ignored with a warning", "decode SubscribeNotificationBasicSetting --hex",
         "01000000 ffffffff", 0, "warning: 4 bytes after the SubscribeNotificationBasicSetting are ignored\n",
         "{\n  \"enabled\" : true\n}\n"},
        {"JSON with a trailing comma", "encode PushPayload", R"({"type":"t",})", 1, "Column 13: Missing '}' or object"},
        {"nesting past the reader's limit", "encode WantParams", std::string(100000, '['), 1, "nested more than 1000"},
        {"the same, as validate reads it", "validate --json --request -", std::string(100000, '['), 1, "nested more"},
        {"a mistyped field named by its path", "encode RemoteNotificationResult",
         R"({"content":{"overlayIcon":{"width":"2"}}})", 1,
         "encode: content.overlayIcon.width: expected a 32-bit integer"},
        {"a misspelt field", "encode RemoteNotificationContent", R"({"tilte":"t"})", 1, "tilte: unknown field"},
        {"a missing field", "encode VoIPInfo", R"({"type":"t","data":"d"})", 1, "kavo-push encode: callId: missing\n"},
        {"a value not its type", "encode WantParams", R"({"k":{"type":"int32","value":1.5}})", 1, "k.value: expected"},
        {"a large image with no pixel text", "encode PixelMap",
         R"({"width":46340,"height":46340,"format":"ALPHA_8","pixels":""})", 1, "expected 2147395600 bytes, got 0"},
        {"parameters nested deeper than their reader takes", "encode WantParams", deepParams, 1,
         "kavo-push encode: the library refuses to write the record\n"},
        {"a record larger than a parcel", "encode PushPayload",
         R"({"type":"t","data":")" + std::string(1 << 20, 'a') + R"("})", 1,
         "kavo-push encode: the record takes 1048592 bytes, more than the 1048576 a parcel holds\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        std::istringstream words(c.args);
        const std::vector<std::string> args{std::istream_iterator<std::string>(words), {}};
        ToolRun run = RunTool(args, c.input);
        EXPECT_EQ(run.status, c.status);
        EXPECT_TRUE(run.out == c.out) << run.out;
        EXPECT_NE(run.err.find(c.err), std::string::npos) << run.err;
        EXPECT_EQ(run.err.empty(), c.err.empty()) << run.err;
        EXPECT_LT(run.peakKib, 256 << 10);
        if (c.status == 2 && !args.empty() && args[0] != "frobnicate") {
            EXPECT_NE(run.err.find("Try 'kavo-push " + args[0] + " --help'."), std::string::npos) << run.err;
        }
    }
    KavoTest::ScopedEnv fatalOnly("KAVO_LOG_LEVEL", "fatal");
    EXPECT_EQ(RunTool({"decode", "RemoteNotificationContent", "--hex"}, "04000000 00000000").err, iconMissing)
        << "the library's lines always show";
}

// A file of many read pieces, checked against openssl: nothing is lost or padded where pieces
// meet, and the file streams through: the tool's memory does not grow with it. The test holds
// nothing large itself, as a child's peak starts from its parent's.
TEST(CliConventionsTest, LargeFilesStreamAndAgreeWithOpenssl)
{
    KavoTest::TempDir dir;
    ASSERT_EQ(RunProgram({"head", "-c", "33554432", "/dev/urandom"}, "", dir.File("input")).status, 0);
    ToolRun digest = RunProgram({"openssl", "dgst", "-sha256", "-r", dir.File("input")});
    ASSERT_EQ(digest.status, 0) << "the openssl command is needed: scripts/setup.sh installs it";
    dir.Write("digest", digest.out.substr(0, 64) + "\n");
    ASSERT_EQ(RunProgram({"openssl", "base64", "-A", "-in", dir.File("input"), "-out", dir.File("base64")}).status, 0);
    std::ofstream(dir.File("base64"), std::ios::app) << "\n";
    struct Case {
        const char* behaviour;
        std::vector<std::string> args;
        const char* expected;
    };
    const Case cases[] = {
        {"sha256", {"sha256", dir.File("input")}, "digest"},
        {"base64 encodes on one line", {"base64", "encode", dir.File("input")}, "base64"},
        {"base64 decodes back to the bytes", {"base64", "decode", dir.File("base64")}, "input"},
    };
    [[maybe_unused]] const long smallPeakKib = RunTool({"sha256"}, "abc").peakKib;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        ToolRun run = RunTool(c.args, "", dir.File("out"));
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(RunProgram({"cmp", dir.File("out"), dir.File(c.expected)}).status, 0);
#ifndef __SANITIZE_ADDRESS__  // there freed memory waits in a quarantine
        EXPECT_LT(run.peakKib - smallPeakKib, 8 << 10) << "the file was held whole";
#endif
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
