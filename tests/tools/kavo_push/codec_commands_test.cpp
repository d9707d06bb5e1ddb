// base64, sha256, mask and errors as a user runs them: fixed answers, and the same answer
// whether the input comes from a file, from "-" or from standard input.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "tests/tools/kavo_push/tool_runner.h"

namespace {

using KavoTest::RunProgram;
using KavoTest::RunTool;
using KavoTest::ToolRun;

const std::string ABC_SHA256 = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";

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
        {"four bytes", {"base64", "encode"}, "foob", "Zm9vYg==\n"},
        {"five bytes", {"base64", "encode"}, "fooba", "Zm9vYmE=\n"},
        {"six bytes", {"base64", "encode"}, "foobar", "Zm9vYmFy\n"},
        {"binary bytes and the top of the alphabet", {"base64", "encode"}, std::string("\0\xfb\xff", 3), "APv/\n"},
        {"decoding with its line break", {"base64", "decode"}, "Zm9vYmE=\n", "fooba"},
        {"decoding wrapped text with CRLF", {"base64", "decode"}, "Zm9v\r\nYmFy\r\n", "foobar"},
        {"decoding to binary bytes", {"base64", "decode"}, "APv/", std::string("\0\xfb\xff", 3)},
        {"digest of abc", {"sha256"}, "abc", ABC_SHA256 + "\n"},
        {"digest of nothing", {"sha256"}, "", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855\n"},
        {"digest of two blocks",
         {"sha256"},
         "abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
         "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1\n"},
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

// Large inputs cross the read buffer; arbitrary bytes check that nothing is lost on the way.
TEST(CodecCommandsTest, FileDashAndStandardInputAgree)
{
    std::mt19937 random(7);
    std::string bytes(200000, '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(random());
    }
    KavoTest::TempDir dir;
    const std::string file = dir.Write("input", bytes);
    ToolRun openssl = RunProgram({"openssl", "dgst", "-sha256", "-r", file});
    ASSERT_EQ(openssl.status, 0) << "the openssl command is needed: scripts/setup.sh installs it";
    ToolRun encoded = RunTool({"base64", "encode", file});
    ASSERT_EQ(encoded.status, 0);
    struct Case {
        const char* behaviour;
        std::vector<std::string> args;
        std::string input;
        std::string out;
    };
    const Case cases[] = {
        {"sha256 matches openssl", {"sha256"}, bytes, openssl.out.substr(0, 64) + "\n"},
        {"base64 encodes on one line", {"base64", "encode"}, bytes, encoded.out},
        {"base64 decodes back to the bytes", {"base64", "decode"}, encoded.out, bytes},
    };
    EXPECT_EQ(encoded.out.size(), (bytes.size() + 2) / 3 * 4 + 1);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        const std::string path = dir.Write("case", c.input);
        for (const std::string& source : {std::string(), std::string("-"), path}) {
            std::vector<std::string> args = c.args;
            if (!source.empty()) {
                args.push_back(source);
            }
            ToolRun run = RunTool(args, source == path ? "" : c.input);
            EXPECT_EQ(run.status, 0) << source;
            EXPECT_TRUE(run.out == c.out) << "reading " << (source.empty() ? "standard input" : source);
        }
    }
}

}  // namespace
