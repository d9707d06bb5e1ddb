#include "kavo/push/json/push_json_helper.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "kavo/push/json/json_utils.h"
#include "tests/push/json/json_test_util.h"
#include "tests/support/test_support.h"

namespace {

using Kavo::Push::JsonUtils;
using Kavo::Push::PushBaseRsp;
using Kavo::Push::PushJsonHelper;
using Strings = std::vector<std::string>;

const std::string NOT_JSON_ERRS = "* Line 1, Column 1\n  Syntax error: value, object or array expected.\n";
const std::string DEEP_ERRS = "Exceeded stackLimit in readValue().";
const char* const NO_FILE = nullptr;
const char* const A_DIRECTORY = "<dir>";

// Files live in the scratch folder; configuration files in its "cfg" folder, the second of
// the two directories in KAVO_CONFIG_DIRS (the first one does not exist).
class JsonFileTest : public KavoTest::ScratchDirTest {
protected:
    void SetUp() override
    {
        KavoTest::ScratchDirTest::SetUp();
        env_ = std::make_unique<KavoTest::ScopedEnv>("KAVO_CONFIG_DIRS",
                                                     (PathOf("nowhere") + ":" + PathOf("cfg")).c_str());
    }

    // Lays out the file named `name` with `content` and gives the path to pass.
    std::string Place(const char* name, const char* content, bool isConfigFile)
    {
        std::string file = isConfigFile ? "cfg/" + std::string(name) : name;
        if (content == A_DIRECTORY) {
            std::filesystem::create_directories(PathOf(file));
        } else if (content != NO_FILE) {
            Write(file, content);
        }
        return isConfigFile ? name : PathOf(file);
    }

    std::unique_ptr<KavoTest::ScopedEnv> env_;
};

enum class Op { ROOT, STRING, ARRAY };

struct ReadCase {
    const char* name;
    Op op;
    const char* file;
    const char* content;  // NO_FILE, A_DIRECTORY or the text
    bool isConfigFile;
    bool ok;
    std::string desc;
    Strings logs;
    std::string value;  // ROOT: compact text of the root; STRING: the value; "untouched" when not set
    std::set<std::string> values;  // ARRAY: the set after the call, which starts as {"seed"}
};

std::string RunRead(const ReadCase& c, const std::string& path, PushBaseRsp& rsp, std::set<std::string>& values)
{
    if (c.op == Op::ROOT) {
        Json::Value root("untouched");
        rsp = PushJsonHelper::GetJsonRootFromPath(path, c.isConfigFile, root);
        return root == Json::Value("untouched") ? "untouched" : JsonUtils::Json2Str(root);
    }
    std::string value = "untouched";
    if (c.op == Op::STRING) {
        rsp = PushJsonHelper::GetStringFromJson(path, c.isConfigFile, "k", value);
    } else {
        rsp = PushJsonHelper::GetArrayFromJson(path, c.isConfigFile, "hosts", values);
    }
    return value;
}

TEST_F(JsonFileTest, ReadsReportEachFailureWithItsTexts)
{
    const std::string open = "GetJsonRootFromPath: Open File Error";
    const std::string deep(5000, '[');
    const ReadCase cases[] = {
        {"root: a missing file cannot be opened", Op::ROOT, "f.json", NO_FILE, false, false, "Open file error.",
         {open}, "untouched", {}},
        {"root: a path through a file cannot be opened", Op::ROOT, "g.json/inner", NO_FILE, false, false,
         "Open file error.", {open}, "untouched", {}},
        {"root: a directory opens but reads as no JSON", Op::ROOT, "d.json", A_DIRECTORY, false, false,
         "Read file failed " + NOT_JSON_ERRS + ".", {"GetJsonRootFromPath: Read File Failed " + NOT_JSON_ERRS + "."},
         "untouched", {}},
        {"root: text that is not JSON carries the parser's text", Op::ROOT, "f.json", "not json", false, false,
         "Read file failed " + NOT_JSON_ERRS + ".", {"GetJsonRootFromPath: Read File Failed " + NOT_JSON_ERRS + "."},
         "untouched", {}},
        {"root: nesting deeper than the parser allows is a read failure", Op::ROOT, "f.json", deep.c_str(),
         false, false, "Read file failed " + DEEP_ERRS + ".", {"GetJsonRootFromPath: Read File Failed " + DEEP_ERRS + "."},
         "untouched", {}},
        {"root: an array is a valid root", Op::ROOT, "f.json", "[1, \"a\"]", false, true, "", {}, "[1,\"a\"]", {}},
        {"root: a configuration file is found through KAVO_CONFIG_DIRS", Op::ROOT, "push.json", R"({"a": 1})", true,
         true, "", {}, R"({"a":1})", {}},
        {"root: a configuration file found nowhere", Op::ROOT, "push.json", NO_FILE, true, false,
         "Parse real path failed", {"GetRealPath: Parse Real Path Failed", "GetJsonRootFromPath: GetRealPath Failed"},
         "untouched", {}},
        {"string: the member is read", Op::STRING, "f.json", R"({"k": "v", "j": 1})", false, true, "", {}, "v", {}},
        {"string: a configuration file is found through KAVO_CONFIG_DIRS", Op::STRING, "push.json", R"({"k": "cfg"})",
         true, true, "", {}, "cfg", {}},
        {"string: a missing file", Op::STRING, "f.json", NO_FILE, false, false, "Open file error.",
         {open, "GetStringFromJson: GetJsonRootFromPath Faild"}, "untouched", {}},
        {"string: a root that is not an object", Op::STRING, "f.json", R"(["k"])", false, false, "Json is illegal.",
         {"GetStringFromJson: Json is Illegal"}, "untouched", {}},
        {"string: the key is absent", Op::STRING, "f.json", R"({"j": "v"})", false, false, "Json has no this key.",
         {"GetStringFromJson: Json Has No This Key"}, "untouched", {}},
        {"string: a number member", Op::STRING, "f.json", R"({"k": 1})", false, false,
         "Json value type is not string.", {"GetStringFromJson: Json Value Type is Not String"}, "untouched", {}},
        {"string: a null member is present but not a string", Op::STRING, "f.json", R"({"k": null})", false, false,
         "Json value type is not string.", {"GetStringFromJson: Json Value Type is Not String"}, "untouched", {}},
        {"array: duplicates collapse and earlier contents stay", Op::ARRAY, "f.json", R"({"hosts": ["a", "b", "a"]})",
         false, true, "", {}, "untouched", {"a", "b", "seed"}},
        {"array: an empty array adds nothing", Op::ARRAY, "f.json", R"({"hosts": []})", false, true, "", {},
         "untouched", {"seed"}},
        {"array: a non-string item stops the walk, the strings before it stay", Op::ARRAY, "f.json",
         R"({"hosts": ["a", 1, "c"]})", false, false, "Item in hosts is not string.", {}, "untouched", {"a", "seed"}},
        {"array: a nested array is not a string item", Op::ARRAY, "f.json", R"({"hosts": [["b"], "a"]})", false,
         false, "Item in hosts is not string.", {}, "untouched", {"seed"}},
        {"array: a string member is not an array", Op::ARRAY, "f.json", R"({"hosts": "a"})", false, false,
         "Json value type is not array.", {"GetArrayFromJson: Json Value Type is Not Array"}, "untouched", {"seed"}},
        {"array: an object member is not an array", Op::ARRAY, "f.json", R"({"hosts": {"0": "a"}})", false, false,
         "Json value type is not array.", {"GetArrayFromJson: Json Value Type is Not Array"}, "untouched", {"seed"}},
        {"array: a missing file", Op::ARRAY, "f.json", NO_FILE, false, false, "Open file error.",
         {open, "GetArrayFromJson: GetJsonRootFromPath Failed"}, "untouched", {"seed"}},
        {"array: a root that is not an object", Op::ARRAY, "f.json", "\"hosts\"", false, false, "Json is illegal.",
         {"GetArrayFromJson: Json is Illegal"}, "untouched", {"seed"}},
        {"array: the key is absent", Op::ARRAY, "f.json", R"({"host": []})", false, false, "Json has no this key.",
         {"GetArrayFromJson: Json Has No This Key"}, "untouched", {"seed"}},
        {"array: a configuration file is found through KAVO_CONFIG_DIRS", Op::ARRAY, "push.json",
         R"({"hosts": ["x"]})", true, true, "", {}, "untouched", {"seed", "x"}},
    };
    for (const ReadCase& c : cases) {
        SCOPED_TRACE(c.name);
        std::filesystem::remove_all(dir_);
        std::string path = Place(c.file, c.content, c.isConfigFile);
        Kavo::LogCapture cap;
        PushBaseRsp rsp;
        std::set<std::string> values = {"seed"};
        std::string value = RunRead(c, path, rsp, values);
        EXPECT_EQ(rsp.Succeed(), c.ok);
        EXPECT_EQ(rsp.GetErr(), c.ok ? Kavo::Push::PUSH_SUCCESS : Kavo::Push::PUSH_ERR_SYSTEM_INTERNAL);
        EXPECT_EQ(rsp.GetErrDescription(), c.desc);
        EXPECT_EQ(cap.Texts(), c.logs);
        EXPECT_EQ(value, c.value);
        if (c.op == Op::ARRAY) {
            EXPECT_EQ(values, c.values);
        }
    }
}

struct SetCase {
    const char* name;
    const char* content;  // NO_FILE or the text
    bool isConfigFile;
    bool ok;
    std::string desc;
    Strings logs;
    const char* after;  // the file's JSON after the call, compact; null: the file is as it was
};

TEST_F(JsonFileTest, SetStringRewritesTheObjectKeepingEveryOtherMember)
{
    const char* const arrayRefused = "in Json::Value::resolveReference(key, end): requires objectValue";
    const SetCase cases[] = {
        {"the member is replaced and the others stay", R"({"a": 1, "k": "old", "z": [true, {"x": null}]})", false,
         true, "", {}, R"({"a":1,"k":"new","z":[true,{"x":null}]})"},
        {"a member of another type is replaced", R"({"k": {"deep": [1]}, "b": "keep"})", false, true, "", {},
         R"({"b":"keep","k":"new"})"},
        {"an absent key is added", R"({"a": 1})", false, true, "", {}, R"({"a":1,"k":"new"})"},
        {"a null root becomes an object", "null", false, true, "", {}, R"({"k":"new"})"},
        {"a configuration file is rewritten where the lookup found it", R"({"a": "cfg"})", true, true, "", {},
         R"({"a":"cfg","k":"new"})"},
        {"a missing file fails and creates nothing", NO_FILE, false, false, "Open file error.",
         {"GetJsonRootFromPath: Open File Error", "Get json from path error: Open file error.: error(1000900001)"},
         nullptr},
        {"a configuration file found nowhere fails", NO_FILE, true, false, "Parse real path failed",
         {"GetRealPath: Parse Real Path Failed", "GetJsonRootFromPath: GetRealPath Failed",
          "Get json from path error: Parse real path failed: error(1000900001)"},
         nullptr},
        {"text that is not JSON is left as it was", "not json", false, false,
         "Read file failed " + NOT_JSON_ERRS + ".",
         {"GetJsonRootFromPath: Read File Failed " + NOT_JSON_ERRS + ".",
          "Get json from path error: Read file failed " + NOT_JSON_ERRS + ".: error(1000900001)"},
         nullptr},
        {"an array root is refused before the file is opened", R"([1, 2])", false, false,
         std::string("Write to file error: ") + arrayRefused + ".",
         {std::string("SetStringToJson: Write to File Error: ") + arrayRefused}, nullptr},
    };
    for (const SetCase& c : cases) {
        SCOPED_TRACE(c.name);
        std::filesystem::remove_all(dir_);
        std::string path = Place("s.json", c.content, c.isConfigFile);
        std::string file = c.isConfigFile ? PathOf("cfg/s.json") : path;
        Kavo::LogCapture cap;
        PushBaseRsp rsp = PushJsonHelper::SetStringToJson(path, c.isConfigFile, "k", "new");
        EXPECT_EQ(rsp.Succeed(), c.ok);
        EXPECT_EQ(rsp.GetErrDescription(), c.desc);
        EXPECT_EQ(cap.Texts(), c.logs);
        if (c.content == NO_FILE) {
            EXPECT_FALSE(std::filesystem::exists(file));
            continue;
        }
        if (c.after == nullptr) {
            EXPECT_EQ(ReadAll(file), c.content);
            continue;
        }
        Json::Value root;
        ASSERT_TRUE(JsonUtils::Str2Json(ReadAll(file), root).Succeed());
        EXPECT_EQ(JsonUtils::Json2Str(root), c.after);
    }
}

TEST_F(JsonFileTest, SetStringWritesIndentedAsciiThatReadsBack)
{
    std::string path = Write("s.json", R"({"a": 1})");
    ASSERT_TRUE(PushJsonHelper::SetStringToJson(path, false, "k", "Zo\xC3\xAB").Succeed());
    EXPECT_EQ(ReadAll(path), "{\n\t\"a\" : 1,\n\t\"k\" : \"Zo\\u00eb\"\n}");
    std::string value;
    ASSERT_TRUE(PushJsonHelper::GetStringFromJson(path, false, "k", value).Succeed());
    EXPECT_EQ(value, "Zo\xC3\xAB");
}

// A file the system refuses to grow: the write error is reported, not swallowed.
TEST_F(JsonFileTest, SetStringReportsAWriteTheSystemRefuses)
{
    std::string path = Write("s.json", "{}");
    struct rlimit old {};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
    auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    struct rlimit small = old;
    small.rlim_cur = 16;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    Kavo::LogCapture cap;
    PushBaseRsp rsp = PushJsonHelper::SetStringToJson(path, false, "k", std::string(1000, 'v'));
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, oldHandler);
    EXPECT_FALSE(rsp.Succeed());
    EXPECT_EQ(rsp.GetErrDescription().rfind("Write to file error: ", 0), 0u) << rsp.GetErrDescription();
    ASSERT_EQ(cap.Texts().size(), 1u);
    EXPECT_EQ(cap.Texts()[0].rfind("SetStringToJson: Write to File Error: ", 0), 0u) << cap.Texts()[0];
}

}  // namespace
