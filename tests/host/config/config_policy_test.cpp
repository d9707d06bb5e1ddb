#include "kavo/host/config/config_policy.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/support/test_support.h"

namespace {

namespace fs = std::filesystem;

constexpr char GUARD = '#';
constexpr size_t GUARD_LEN = 16;

class ConfigLookupTest : public testing::Test {
protected:
    void SetUp() override
    {
        char pattern[] = "/tmp/kavo_cfg_XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        root_ = pattern;
    }
    void TearDown() override { fs::remove_all(root_); }

    // "dir/name" creates a regular file, "dir/name/" a directory of that name.
    void Create(const std::string& entry)
    {
        fs::path path = fs::path(root_) / entry;
        if (entry.back() == '/') {
            fs::create_directories(path);
            return;
        }
        fs::create_directories(path.parent_path());
        std::ofstream(path) << "{}";
    }

    // The directory list with every "@" replaced by the test's root folder.
    std::string Dirs(const std::string& pattern) const
    {
        std::string dirs;
        for (char c : pattern) {
            dirs += c == '@' ? root_ : std::string(1, c);
        }
        return dirs;
    }

    std::string root_;
};

struct LookupCase {
    const char* name;
    std::vector<std::string> entries;
    const char* dirs;      // "@" stands for the test's root folder
    const char* query;
    const char* expected;  // relative to the root folder; "" when nothing is found
};

TEST_F(ConfigLookupTest, FindsTheFileInTheFirstDirectoryHoldingIt)
{
    const LookupCase cases[] = {
        {"the first directory holding the file wins", {"a/push.json", "b/push.json"}, "@/a:@/b", "push.json",
         "a/push.json"},
        {"a later directory is used when the earlier ones lack the file", {"a/other.json", "b/push.json"},
         "@/a:@/b", "push.json", "b/push.json"},
        {"empty entries of the list are skipped", {"b/push.json"}, "::@/b:", "push.json", "b/push.json"},
        {"a trailing slash gives no doubled separator", {"a/push.json"}, "@/a/", "push.json", "a/push.json"},
        {"a name with folders is looked up below each directory", {"b/etc/push/cfg.json"}, "@/a:@/b",
         "etc/push/cfg.json", "b/etc/push/cfg.json"},
        {"a directory of that name is not a file", {"a/push.json/", "b/push.json"}, "@/a:@/b", "push.json",
         "b/push.json"},
        {"no directory holding the file gives an empty path", {"a/other.json"}, "@/a:@/b", "push.json", ""},
        {"an empty list finds nothing", {"a/push.json"}, "", "push.json", ""},
        {"an empty name finds nothing", {"a/push.json"}, "@/a", "", ""},
    };
    for (const LookupCase& c : cases) {
        SCOPED_TRACE(c.name);
        for (const std::string& entry : c.entries) {
            Create(entry);
        }
        KavoTest::ScopedEnv env("KAVO_CONFIG_DIRS", Dirs(c.dirs).c_str());
        std::vector<char> buf(256 + GUARD_LEN, GUARD);
        char* result = GetOneCfgFile(c.query, buf.data(), 256);
        std::string expected = c.expected[0] == '\0' ? "" : root_ + "/" + c.expected;
        EXPECT_EQ(std::string(buf.data()), expected);
        EXPECT_EQ(result, expected.empty() ? nullptr : buf.data());
        EXPECT_EQ(std::string(buf.end() - GUARD_LEN, buf.end()), std::string(GUARD_LEN, GUARD));
        fs::remove_all(root_);
        fs::create_directories(root_);
    }
}

struct BufferCase {
    const char* name;
    long slack;  // buffer length minus the length of the found path
    bool found;
};

TEST_F(ConfigLookupTest, NeverWritesPastTheBufferAndAlwaysTerminatesIt)
{
    const BufferCase cases[] = {
        {"room for the path and its terminator gives the path", 1, true},
        {"a buffer one byte short gives an empty path, not a shortened one", 0, false},
        {"a buffer of one byte holds only the terminator", -1, false},
    };
    Create("a/push.json");
    KavoTest::ScopedEnv env("KAVO_CONFIG_DIRS", Dirs("@/a:@/b").c_str());
    const std::string path = root_ + "/a/push.json";
    for (const BufferCase& c : cases) {
        SCOPED_TRACE(c.name);
        unsigned int len = c.slack < 0 ? 1 : static_cast<unsigned int>(path.size() + c.slack);
        std::vector<char> buf(len + GUARD_LEN, GUARD);
        char* result = GetOneCfgFile("push.json", buf.data(), len);
        EXPECT_EQ(result, c.found ? buf.data() : nullptr);
        EXPECT_EQ(std::string(buf.data()), c.found ? path : "");
        EXPECT_EQ(std::string(buf.begin() + len, buf.end()), std::string(GUARD_LEN, GUARD));
    }
}

TEST_F(ConfigLookupTest, RefusesAMissingBufferWithoutWriting)
{
    Create("a/push.json");
    KavoTest::ScopedEnv env("KAVO_CONFIG_DIRS", Dirs("@/a").c_str());
    char buf[8] = {GUARD, GUARD, GUARD, GUARD, GUARD, GUARD, GUARD, GUARD};
    EXPECT_EQ(GetOneCfgFile("push.json", nullptr, 256), nullptr);
    EXPECT_EQ(GetOneCfgFile("push.json", buf, 0), nullptr);
    EXPECT_EQ(buf[0], GUARD);
    EXPECT_EQ(GetOneCfgFile(nullptr, buf, sizeof(buf)), nullptr);
    EXPECT_EQ(buf[0], '\0');
}

}  // namespace
