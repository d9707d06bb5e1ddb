// base64, sha256, mask and errors as a user runs them: fixed answers, and the same answer
// whether the input comes from a file, from "-" or from standard input.
#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "tests/tools/kavo_push/tool_runner.h"

namespace {

using KavoTest::RunProgram;
using KavoTest::RunTool;
using KavoTest::ToolRun;

TEST(CodecCommandsTest, FixedInputsGiveKnownOutputs)
{
    struct Case {
        const char* behaviour;
        std::vector<std::string> args;
        std::string input;
        std::string out;
    };
    const Case cases[] = {
        {"nothing encodes to nothing", {"base64", "encode"}, "", ""},
        {"one byte, two pads", {"base64", "encode"}, "f", "Zg==\n"},
        {"two bytes, one pad", {"base64", "encode"}, "fo", "Zm8=\n"},
        {"three bytes, no pad", {"base64", "encode"}, "foo", "Zm9v\n"},
        {"two groups", {"base64", "encode"}, "fooba", "Zm9vYmE=\n"},
        {"binary bytes and the top of the alphabet", {"base64", "encode"}, std::string("\0\xfb\xff", 3), "APv/\n"},
        {"decoding with its line break", {"base64", "decode"}, "Zm9vYmE=\n", "fooba"},
        {"decoding wrapped text with CRLF", {"base64", "decode"}, "Zm9v\r\nYmFy\r\n", "foobar"},
        {"decoding to binary bytes", {"base64", "decode"}, "APv/", std::string("\0\xfb\xff", 3)},
        {"digest of nothing, - naming standard input",
         {"sha256", "-"},
         "",
         "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855\n"},
        {"digest in Base64", {"sha256", "--base64"}, "abc", "ungWv48Bz+pBQUDeXa4iI7ADYaOWF3qctBD/YfIAFa0=\n"},
        {"addresses lose every second digit", {"mask", "192.168.1.10", "fe80::1"}, "", "1*2.*6*.1.*0\nf*8*::1\n"},
        {"without TEXT each input line is masked", {"mask"}, "abcdef\nab-cd\n", "a*c*e*\na*-c*\n"},
        {"a wifi tag", {"mask", "--tag", "wifi-aa:bb:cc:dd:ee:ff-123"}, "", "wifi-aa:bb:cc:dd:**:**-123\n"},
        {"one code and its message", {"errors", "1000900002"}, "", "1000900002\tPush extension does not exist.\n"},
        {"-- ends the options", {"mask", "--", "--tag"}, "", "--t*g\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        ToolRun run = RunTool(c.args, c.input);
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.out, c.out);
        EXPECT_EQ(run.err, "");
    }
}

// A file of many read pieces, checked against openssl: nothing is lost or padded where pieces
// meet, and the file streams through: the tool's memory does not grow with it. The test holds
// nothing large itself, as a child's peak starts from its parent's.
TEST(CodecCommandsTest, LargeFilesStreamAndAgreeWithOpenssl)
{
    KavoTest::TempDir dir;
    std::ofstream input(dir.File("input"), std::ios::binary);
    std::mt19937 random(7);
    for (int i = 0; i < (32 << 20) / 4; ++i) {
        const uint32_t word = random();
        input.write(reinterpret_cast<const char*>(&word), sizeof(word));
    }
    input.close();
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
    const long smallPeakKib = RunTool({"sha256"}, "abc").peakKib;
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

}  // namespace
