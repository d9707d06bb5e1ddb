#include "kavo/push/json/push_json_helper.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "kavo/host/log/log.h"
#include "kavo/push/json/json_utils.h"
#include "tests/support/test_support.h"

namespace {

using namespace Kavo::Push;
using Strings = std::vector<std::string>;
namespace fs = std::filesystem;

const char* const NO_FILE = nullptr;
const char* const A_FIFO = "<fifo>";
const char* const OVER_64_MIB = "<huge>";      // a sparse file one byte over 64 MiB
const char* const EXACTLY_64_MIB = "<limit>";  // a sparse file of 64 MiB: zero bytes, no JSON

enum Op { ROOT, STRING, ARRAY, SET, SET_CAPPED };

// Every case starts from an empty scratch folder. Configuration files live in its "cfg", a link to
// "etc", the second of the two directories in KAVO_CONFIG_DIRS (the first does not exist).
class JsonFileTest : public testing::Test {
protected:
    void SetUp() override
    {
        char pattern[] = "/tmp/kavo_json_XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        dir_ = pattern;
        env_ = std::make_unique<KavoTest::ScopedEnv>("KAVO_CONFIG_DIRS", (dir_ + "/nowhere:" + dir_ + "/cfg").c_str());
    }
    void TearDown() override { fs::remove_all(dir_); }
    // Lays out `content` (NO_FILE, A_FIFO, OVER_64_MIB, EXACTLY_64_MIB or the text) as `file` ("@/name" in the scratch folder,
    // "cfg/name" a configuration file, anything else a path passed as it is), runs `op` on it and
    // gives what it left: ROOT the root's compact text, STRING the member "k", ARRAY the set (seeded
    // with "seed") read from the member "hosts", joined with ','; SET (of "k" to "n\u00e9", the file
    // held to 16 bytes if CAPPED) the file's text, or "<none>"; "" when nothing was set.
    std::string Run(Op op, const std::string& file, const char* content, PushBaseRsp& rsp)
    {
        fs::remove_all(dir_);
        fs::create_directories(dir_ + "/etc");
        fs::create_directory_symlink(dir_ + "/etc", dir_ + "/cfg");
        const std::string onDisk = file.rfind("@/", 0) == 0 ? dir_ + file.substr(1) : dir_ + "/" + file;
        if (content == A_FIFO) {
            mkfifo(onDisk.c_str(), 0600);
        } else if (content == OVER_64_MIB || content == EXACTLY_64_MIB) {
            std::ofstream(onDisk).close();
            fs::resize_file(onDisk, (64u << 20) + (content == OVER_64_MIB));
        } else if (content != NO_FILE) {
            fs::create_directories(fs::path(onDisk).parent_path());
            std::ofstream(onDisk, std::ios::binary) << content;
        }
        const bool config = file.rfind("cfg/", 0) == 0;
        const std::string path = config ? file.substr(4) : file.rfind("@/", 0) == 0 ? onDisk : file;
        Json::Value root("untouched");
        std::string value = "untouched";
        std::set<std::string> values = {"seed"};
        errno = EINTR;  // left by an interrupted call of the caller's: no read may take it for its own
        switch (op) {
            case ROOT:
                rsp = PushJsonHelper::GetJsonRootFromPath(path, config, root);
                return root == Json::Value("untouched") ? "" : JsonUtils::Json2Str(root);
            case STRING:
                rsp = PushJsonHelper::GetStringFromJson(path, config, "k", value);
                return value == "untouched" ? "" : value;
            case ARRAY:
                rsp = PushJsonHelper::GetArrayFromJson(path, config, "hosts", values);
                break;
            case SET:
            case SET_CAPPED: {
                struct rlimit old {};
                getrlimit(RLIMIT_FSIZE, &old);
                struct rlimit capped = {op == SET_CAPPED ? 16 : old.rlim_cur, old.rlim_max};
                auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
                setrlimit(RLIMIT_FSIZE, &capped);
                rsp = PushJsonHelper::SetStringToJson(path, config, "k", "n\xC3\xA9");
                setrlimit(RLIMIT_FSIZE, &old);
                std::signal(SIGXFSZ, oldHandler);
                std::ifstream in(onDisk, std::ios::binary);
                return in ? std::string(std::istreambuf_iterator<char>(in), {}) : "<none>";
            }
        }
        value.clear();
        for (const std::string& item : values) {
            value += (value.empty() ? "" : ",") + item;
        }
        return value;
    }

    std::string dir_;
    std::unique_ptr<KavoTest::ScopedEnv> env_;
};

TEST_F(JsonFileTest, EachOperationReportsEachFailureWithItsTexts)
{
    const std::string p4095(4095, 'p'), p4096(4096, 'p'), deep(5000, '[');
    const std::string longName = std::string(100, 'a') + "/" + std::string(100, 'b') + "/" + std::string(60, 'c');
    const std::string open = "E GetJsonRootFromPath: Open File Error", noRealPath = "Parse real path failed";
    const std::string illegal = "W GetRealPath: Path is Illeage", unresolved = "E GetRealPath: Parse Real Path Failed";
    const std::string rootNoPath = "E GetJsonRootFromPath: GetRealPath Failed";
    const std::string notJson = "* Line 1, Column 1\n  Syntax error: value, object or array expected.\n.";
    const std::string deepThrown = "Get string from json error: Exceeded stackLimit in readValue()..";
    const std::string tooLarge = "file is larger than the limit of 67108864 bytes (64 MiB)";
    const std::string ios = "basic_ios::clear: iostream error";
    const std::string refused = "in Json::Value::resolveReference(key, end): requires objectValue";
    struct Case {
        const char* name;
        Op op;
        std::string file;         // as Run takes it
        const char* content;      // as Run takes it
        std::string desc, value;  // desc empty on success; value as Run gives it
        Strings logs;
    };
    const Case cases[] = {
        {"an empty path", ROOT, "", NO_FILE, "Path is illeage.", "", Strings{illegal, rootNoPath}},
        {"a 4096-byte path", ROOT, p4096, NO_FILE, "Path is illeage.", "", Strings{illegal, rootNoPath}},
        {"a 4095-byte path is opened", ROOT, p4095, NO_FILE, "Open file error.", "", Strings{open}},
        {"a FIFO is no file to open, and does not block", ROOT, "@/p", A_FIFO, "Open file error.", "", Strings{open}},
        {"a device is no file to open", ROOT, "/dev/zero", NO_FILE, "Open file error.", "", Strings{open}},
        {"a file over 64 MiB is not read", ROOT, "@/f", OVER_64_MIB, "Read file failed " + tooLarge + ".", "",
         Strings{"E GetJsonRootFromPath: Read File Failed " + tooLarge + "."}},
        {"a file of exactly 64 MiB is read", ROOT, "@/f", EXACTLY_64_MIB, "Read file failed " + notJson, "",
         Strings{"E GetJsonRootFromPath: Read File Failed " + notJson}},
        {"no JSON", ROOT, "@/f", "x", "Read file failed " + notJson, "",
         Strings{"E GetJsonRootFromPath: Read File Failed " + notJson}},
        {"nesting too deep", ROOT, "@/f", deep.c_str(), "Read file failed Exceeded stackLimit in readValue()..", "",
         Strings{"E GetJsonRootFromPath: Read File Failed Exceeded stackLimit in readValue().."}},
        {"string: nesting too deep reaches the reader's handler", STRING, "@/f", deep.c_str(), deepThrown, "",
         Strings{"E Get string from json error: Exceeded stackLimit in readValue()."}},
        {"array: nesting too deep reaches the reader's handler", ARRAY, "@/f", deep.c_str(), deepThrown, "seed",
         Strings{"E Get string from json error: Exceeded stackLimit in readValue()."}},
        {"a configuration file found nowhere", ROOT, "cfg/p.json", NO_FILE, noRealPath, "",
         Strings{unresolved, rootNoPath}},
        {"a looked-up path past its buffer", ROOT, "cfg/" + longName, "{}", noRealPath, "",
         Strings{unresolved, rootNoPath}},
        {"string read", STRING, "@/f", R"({"k": "v", "j": 1})", "", "v", Strings{}},
        {"string: missing file", STRING, "@/f", NO_FILE, "Open file error.", "",
         Strings{open, "E GetStringFromJson: GetJsonRootFromPath Faild"}},
        {"string: root not an object", STRING, "@/f", R"(["k"])", "Json is illegal.", "",
         Strings{"E GetStringFromJson: Json is Illegal"}},
        {"string: key absent", STRING, "@/f", R"({"j": "v"})", "Json has no this key.", "",
         Strings{"E GetStringFromJson: Json Has No This Key"}},
        {"string: null member", STRING, "@/f", R"({"k": null})", "Json value type is not string.", "",
         Strings{"E GetStringFromJson: Json Value Type is Not String"}},
        {"array: duplicates collapse, earlier items stay", ARRAY, "cfg/p.json", R"({"hosts": ["b", "a"]})", "",
         "a,b,seed", Strings{}},
        {"array: a non-string item stops, earlier strings stay", ARRAY, "@/f", R"({"hosts": ["a", 1, "c"]})",
         "Item in hosts is not string.", "a,seed", Strings{}},
        {"array: object member", ARRAY, "@/f", R"({"hosts": {"0": "a"}})", "Json value type is not array.", "seed",
         Strings{"E GetArrayFromJson: Json Value Type is Not Array"}},
        {"array: missing file", ARRAY, "@/f", NO_FILE, "Open file error.", "seed",
         Strings{open, "E GetArrayFromJson: GetJsonRootFromPath Failed"}},
        {"array: root not an object", ARRAY, "@/f", "\"hosts\"", "Json is illegal.", "seed",
         Strings{"E GetArrayFromJson: Json is Illegal"}},
        {"array: key absent", ARRAY, "@/f", R"({"host": []})", "Json has no this key.", "seed",
         Strings{"E GetArrayFromJson: Json Has No This Key"}},
        {"set: replaces a member, keeps the others", SET, "@/f", R"({"a": 1, "k": {"d": [1]}, "z": "x"})", "",
         "{\n\t\"a\" : 1,\n\t\"k\" : \"n\\u00e9\",\n\t\"z\" : \"x\"\n}", Strings{}},
        {"set: adds a key to a configuration file", SET, "cfg/s.json", R"({"a": 1})", "",
         "{\n\t\"a\" : 1,\n\t\"k\" : \"n\\u00e9\"\n}", Strings{}},
        {"set: a missing file is not created", SET, "@/f", NO_FILE, "Open file error.", "<none>",
         Strings{open, "W Get json from path error: Open file error.: error(1000900001)"}},
        {"set: a write the system refuses is reported", SET_CAPPED, "@/f", "{}", "Write to file error: " + ios + ".",
         "{\n\t\"k\" : \"n\\u00e", Strings{"E SetStringToJson: Write to File Error: " + ios}},
        {"set: an array root is refused before opening", SET, "@/f", "[1, 2]", "Write to file error: " + refused + ".",
         "[1, 2]", Strings{"E SetStringToJson: Write to File Error: " + refused}},
    };
    // Standard input closed, as in a daemon: a file the library opens may be descriptor 0.
    const int input = dup(0);
    close(0);
    auto openFiles = [] { return std::distance(fs::directory_iterator("/proc/self/fd"), {}); };
    for (const Case& c : cases) {
        Kavo::LogCapture cap;
        PushBaseRsp rsp;
        const auto opened = openFiles();
        EXPECT_EQ(Run(c.op, c.file, c.content, rsp), c.value) << c.name;
        EXPECT_EQ(openFiles(), opened) << c.name << ": a file left open";
        EXPECT_EQ(rsp.GetErrAsInt32(), c.desc.empty() ? 0 : 1000900001) << c.name;
        EXPECT_EQ(rsp.GetErrDescription(), c.desc) << c.name;
        EXPECT_EQ(KavoTest::LogLines(cap), c.logs) << c.name;
    }
    dup2(input, 0);
    close(input);
}

}  // namespace
