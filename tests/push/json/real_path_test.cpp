#include "kavo/push/json/real_path.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/push/json/json_test_util.h"
#include "tests/support/test_support.h"

namespace {

using Kavo::Push::GetRealPath;
using Kavo::Push::PushBaseRsp;

class RealPathTest : public KavoTest::ScratchDirTest {};

struct RealPathCase {
    const char* name;
    std::string path;      // "@" at the start stands for the scratch folder
    bool isConfigFile;
    bool ok;
    std::string expected;  // the path returned, or the failure text
    Kavo::LogLevel level;  // of the one log line on failure
    const char* logLine;
};

TEST_F(RealPathTest, ResolvesPlainPathsAsGivenAndConfigNamesThroughTheLookup)
{
    Write("etc/push.json", "{}");
    std::filesystem::create_directory_symlink(PathOf("etc"), PathOf("linked"));
    KavoTest::ScopedEnv env("KAVO_CONFIG_DIRS", (PathOf("missing") + ":" + PathOf("linked")).c_str());
    const std::string longName = std::string(100, 'a') + "/" + std::string(100, 'b') + "/" + std::string(60, 'c');
    const RealPathCase cases[] = {
        {"an empty path is refused", "", false, false, "Path is illeage.", Kavo::LOG_WARN,
         "GetRealPath: Path is Illeage"},
        {"a 4096-byte path is refused", std::string(4096, 'p'), false, false, "Path is illeage.", Kavo::LOG_WARN,
         "GetRealPath: Path is Illeage"},
        {"a 4096-byte configuration name is refused", std::string(4096, 'p'), true, false, "Path is illeage.",
         Kavo::LOG_WARN, "GetRealPath: Path is Illeage"},
        {"a 4095-byte plain path is kept as given", std::string(4095, 'p'), false, true, std::string(4095, 'p'),
         Kavo::LOG_ERROR, nullptr},
        {"a plain path to nothing is kept as given", "@/nothing/here.json", false, true, "@/nothing/here.json",
         Kavo::LOG_ERROR, nullptr},
        {"a configuration name gives the looked-up path, not the resolved one", "push.json", true, true,
         "@/linked/push.json", Kavo::LOG_ERROR, nullptr},
        {"a configuration name found nowhere fails resolution", "absent.json", true, false,
         "Parse real path failed", Kavo::LOG_ERROR, "GetRealPath: Parse Real Path Failed"},
        {"a looked-up path too long for the lookup buffer fails resolution", longName, true, false,
         "Parse real path failed", Kavo::LOG_ERROR, "GetRealPath: Parse Real Path Failed"},
    };
    Write("linked/" + longName, "{}");
    for (const RealPathCase& c : cases) {
        SCOPED_TRACE(c.name);
        auto expand = [this](const std::string& s) { return !s.empty() && s[0] == '@' ? dir_ + s.substr(1) : s; };
        Kavo::LogCapture cap;
        std::string realPath = "untouched";
        PushBaseRsp rsp = GetRealPath(expand(c.path), c.isConfigFile, realPath);
        ASSERT_EQ(rsp.Succeed(), c.ok);
        if (c.ok) {
            EXPECT_EQ(realPath, expand(c.expected));
            EXPECT_TRUE(cap.Lines().empty());
            continue;
        }
        EXPECT_EQ(realPath, "untouched");
        EXPECT_EQ(rsp.GetErr(), Kavo::Push::PUSH_ERR_SYSTEM_INTERNAL);
        EXPECT_EQ(rsp.GetErrDescription(), c.expected);
        ASSERT_EQ(cap.Lines().size(), 1u);
        EXPECT_EQ(cap.Lines()[0].level, c.level);
        EXPECT_EQ(cap.Lines()[0].text, c.logLine);
    }
}

}  // namespace
