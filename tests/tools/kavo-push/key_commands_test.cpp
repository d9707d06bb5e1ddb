#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>
#include <vector>

#include "kavo/push/codec/hex_coder_convert.h"
#include "tests/host/dcm/dcm_test_util.h"
#include "tests/tools/kavo-push/tool_runner.h"

namespace {

using KavoTest::RunProgram;
using KavoTest::RunTool;
using KavoTest::TempDir;
using KavoTest::ToolRun;

// The hex after "NAME: " on its line, as bytes.
std::string HexField(const std::string& out, const std::string& name)
{
    const size_t at = out.find(name + ": ") + name.size() + 2;
    const auto bytes = Kavo::Push::HexCoderConvert::HexStream2Byte(out.substr(at, out.find('\n', at) - at));
    return std::string(bytes.data(), bytes.size());
}

TEST(KeyCommandsTest, KeygenPrintsOrWritesOneFreshKeyPair)
{
    TempDir dir;
    std::string firstDer;
    for (bool toFiles : {false, true}) {
        SCOPED_TRACE(toFiles ? "files" : "hex on standard output");
        std::vector<std::string> args = {"keygen"};
        if (toFiles) {
            args.insert(args.end(), {"--out-dir", dir.Path()});
        }
        ToolRun run = RunTool(args);
        ASSERT_EQ(run.status, 0) << run.err;
        std::string material = toFiles ? dir.Read("key_material.bin") : HexField(run.out, "key-material");
        std::string der = toFiles ? dir.Read("public_key.der") : HexField(run.out, "public-key-der");
        ASSERT_EQ(material.size(), 84u);
        EXPECT_EQ(der.substr(12), material.substr(20, 32)) << "one key pair; its layout is the codec suite's";
        EXPECT_NE(der, firstDer) << "every run makes a new key";
        firstDer = der;
        if (toFiles) {
            EXPECT_EQ(run.out, dir.File("key_material.bin") + "\n" + dir.File("public_key.der") + "\n");
            struct stat info = {};
            ASSERT_EQ(stat(dir.File("key_material.bin").c_str(), &info), 0);
            EXPECT_EQ(info.st_mode & 0777, 0600u) << "the private key is for its owner alone";
        }
    }
}

// Splits the printed chain at its end markers, each PEM keeping its line break.
std::vector<std::string> SplitPems(const std::string& out)
{
    const std::string end = "-----END CERTIFICATE-----\n";
    std::vector<std::string> pems;
    for (size_t start = 0, stop = 0; (stop = out.find(end, start)) != std::string::npos; start = stop + end.size()) {
        pems.push_back(out.substr(start, stop + end.size() - start));
    }
    return pems;
}

// A challenge with spaces and UTF-8 on standard output, an empty one into the three files: each
// reaches the leaf certificate as it is.
TEST(KeyCommandsTest, CertchainOutputVerifiesWithOpenssl)
{
    for (const std::string challenge : {"nonce with spaces \xc3\xa9", ""}) {
        const bool toFiles = challenge.empty();
        SCOPED_TRACE(toFiles ? "files" : "standard output");
        TempDir dir;
        std::vector<std::string> args = {"certchain", "--challenge", challenge};
        if (toFiles) {
            args.insert(args.end(), {"--out-dir", dir.Path()});
        }
        ToolRun run = RunTool(args);
        ASSERT_EQ(run.status, 0) << run.err;
        const char* names[] = {"device.pem", "intermediate.pem", "root.pem"};
        if (toFiles) {
            EXPECT_EQ(run.out, dir.File(names[0]) + "\n" + dir.File(names[1]) + "\n" + dir.File(names[2]) + "\n");
        } else {
            std::vector<std::string> pems = SplitPems(run.out);
            ASSERT_EQ(pems.size(), 3u) << run.out;
            EXPECT_EQ(pems[0] + pems[1] + pems[2], run.out) << "nothing around the three PEM texts";
            for (size_t i = 0; i < pems.size(); ++i) {
                dir.Write(names[i], pems[i]);
            }
        }
        ToolRun verify = RunProgram({"openssl", "verify", "-CAfile", dir.File("root.pem"), "-untrusted",
                                     dir.File("intermediate.pem"), dir.File("device.pem")});
        EXPECT_EQ(verify.status, 0) << verify.out << verify.err;
        auto leaf = KavoTest::ParsePem(dir.Read("device.pem"));
        ASSERT_NE(leaf, nullptr);
        EXPECT_EQ(KavoTest::ChallengeOf(leaf.get()), challenge);
    }
}

}  // namespace
