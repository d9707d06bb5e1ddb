#include "kavo/host/config/config_policy.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <regex>

#include "tests/support/test_support.h"

namespace {

// Entries are made below a fresh folder ("@" in the list; "x/" a folder); a guard follows the buffer.
TEST(ConfigLookup, FirstDirectoryHoldingTheFileWinsAndTheBufferIsAlwaysTerminatedAndNeverOverrun)
{
    struct Case {
        const char* name;
        std::vector<std::string> entries;
        const char* dirs;
        const char* found;  // below the folder; "" when nothing is found
        int len;            // > 0: bytes; else the length of the path of a/p.json with its zero, plus `len`
    };
    const Case cases[] = {
        {"the first directory holding the file wins", {"a/p.json", "b/p.json"}, "@/a:@/b", "a/p.json", 256},
        {"a later directory when earlier ones lack the file", {"b/p.json"}, "@/a:@/b", "b/p.json", 256},
        {"empty list entries are skipped", {"b/p.json"}, "::@/b:", "b/p.json", 256},
        {"a trailing slash gives no doubled separator", {"a/p.json"}, "@/a/", "a/p.json", 256},
        {"a directory of that name is not a file", {"a/p.json/", "b/p.json"}, "@/a:@/b", "b/p.json", 256},
        {"nothing found gives an empty path", {"a/o.json"}, "@/a:@/b", "", 256},
        {"room for the path and its zero", {"a/p.json"}, "@/a:@/b", "a/p.json", 0},
        {"one byte short: empty, not shortened", {"a/p.json", "b/p.json"}, "@/a:@/b", "", -1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string root = mkdtemp(std::string("/tmp/kavo_cfg_XXXXXX").data());
        for (const std::string& entry : c.entries) {
            std::filesystem::create_directories(std::filesystem::path(root + "/" + entry).parent_path());
            (void)(entry.back() == '/' || std::ofstream(root + "/" + entry) << "{}");
        }
        KavoTest::ScopedEnv env("KAVO_CONFIG_DIRS", std::regex_replace(c.dirs, std::regex("@"), root).c_str());
        const std::string expected = *c.found ? root + "/" + c.found : "";
        size_t len = c.len > 0 ? c.len : root.size() + sizeof("/a/p.json") + c.len;
        std::vector<char> buf(len + 16, '#');
        EXPECT_EQ(GetOneCfgFile("p.json", buf.data(), unsigned(len)), expected.empty() ? nullptr : buf.data());
        EXPECT_EQ(std::string(buf.data()), expected);
        EXPECT_EQ(std::string(buf.begin() + len, buf.end()), std::string(16, '#'));
        std::filesystem::remove_all(root);
    }
    char guard = '#';  // no buffer, or a zero length, writes nothing; a null name empties the buffer
    EXPECT_TRUE(!GetOneCfgFile("p.json", nullptr, 256) && !GetOneCfgFile("p.json", &guard, 0) && guard == '#');
    EXPECT_TRUE(!GetOneCfgFile(nullptr, &guard, 1) && guard == '\0');
}

TEST(ConfigLookup, WithoutAListTheDefaultDirectoryIsSearched)
{
    pid_t child = fork();
    if (child == 0) {  // a private mount namespace whose /etc is a fresh tmpfs holding kavo/p.json
        char buf[64];
        bool isolated = unshare(CLONE_NEWNS) == 0 && mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                        mount("tmpfs", "/etc", "tmpfs", 0, nullptr) == 0 && unsetenv("KAVO_CONFIG_DIRS") == 0 &&
                        std::filesystem::create_directories("/etc/kavo") && std::ofstream("/etc/kavo/p.json") << "{}";
        bool found = isolated && GetOneCfgFile("p.json", buf, sizeof(buf)) == buf;
        _exit(!isolated ? 2 : found && std::string(buf) == "/etc/kavo/p.json" ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    if (WEXITSTATUS(status) == 2) {
        GTEST_SKIP() << "no private mount namespace for this process";
    }
    EXPECT_EQ(status, 0);
}

}  // namespace
