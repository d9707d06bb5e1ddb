// Feeds arbitrary text to Str2Json, then every typed read over the members it finds, and writes
// the value back out in both forms. Traps on any broken promise: a failure text without its
// prefix, a typed read that neither gave the member nor the default, a text that does not read
// back as the same value. The indented form is read back for values nested at most 64 deep: its
// size grows with the square of the depth, and deeper values are checked in the compact form.
// Texts nested deeper than 128 are skipped: once the corpus holds them (the parser accepts up to
// 1000 levels) they take nearly all of the run, at a fraction of the speed, for no new coverage;
// the parser's own depth limit is pinned by the JSON unit tests.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "kavo/push/json/json_utils.h"

namespace {

using Kavo::Push::JsonUtils;

// Failed parses log at warning level; keep the fuzzer's output readable unless asked otherwise.
[[maybe_unused]] const int QUIET_LOG = setenv("KAVO_LOG_LEVEL", "fatal", 0);

constexpr int MAX_INDENTED_DEPTH = 64;
constexpr int MAX_TEXT_DEPTH = 128;

// The deepest nesting of brackets in `text`, outside strings.
int TextDepth(const std::string& text)
{
    int depth = 0, deepest = 0;
    bool inString = false, escaped = false;
    for (char c : text) {
        if (inString && escaped) {
            escaped = false;
        } else if (inString) {
            escaped = c == '\\';
            inString = c != '"';
        } else if (c == '"') {
            inString = true;
        } else if (c == '[' || c == '{') {
            deepest = std::max(deepest, ++depth);
        } else if (c == ']' || c == '}') {
            --depth;
        }
    }
    return deepest;
}

void Check(bool promise)
{
    if (!promise) {
        __builtin_trap();
    }
}

void CheckTypedReads(const Json::Value& root, const std::string& key)
{
    static const Json::Value absent;
    const bool present = root.isObject() && root.isMember(key);
    const Json::Value& member = present ? root[key] : absent;
    int i = -1;
    JsonUtils::ParseInt(root, key, i, 7);
    Check(i == (present && member.isInt() ? member.asInt() : 7));
    long l = -1;
    JsonUtils::ParseInt64(root, key, l, 7);
    Check(l == (present && member.isInt64() ? member.asInt64() : 7));
    unsigned char u8 = 0;
    JsonUtils::ParseUInt8(root, key, u8, 7);
    Check(u8 == (present && member.isInt() ? static_cast<unsigned char>(member.asInt()) : 7));
    unsigned int u = 0;
    JsonUtils::ParseUint(root, key, u, 7);
    Check(u == (present && member.isInt() ? static_cast<unsigned int>(member.asInt()) : 7u));
    std::string s;
    JsonUtils::ParseString(root, key, s, "dflt");
    Check(s == (present && member.isString() ? member.asString() : "dflt"));
}

// Comments survive parsing and are written back; on one line they swallow the rest of the text.
bool HasComments(const Json::Value& value)
{
    for (auto placement : {Json::commentBefore, Json::commentAfterOnSameLine, Json::commentAfter}) {
        if (value.hasComment(placement)) {
            return true;
        }
    }
    if (value.isArray() || value.isObject()) {
        for (const auto& member : value) {
            if (HasComments(member)) {
                return true;
            }
        }
    }
    return false;
}

int Depth(const Json::Value& value)
{
    int deepest = 0;
    if (value.isArray() || value.isObject()) {
        for (const auto& member : value) {
            deepest = std::max(deepest, Depth(member));
        }
    }
    return deepest + 1;
}

void CheckReadsBack(const Json::Value& root, const std::string& text)
{
    Json::Value back;
    Check(JsonUtils::Str2Json(text, back).Succeed());
    Check(back == root);
}

}  // namespace

// ASan keeps the call stack of every allocation and never forgets one. Nested JSON makes those
// stacks nearly all distinct, so with the default 30 frames the store grew past 2 GB within 12
// minutes and the run slowed to a third; two frames keep it flat. Set ASAN_OPTIONS to see more
// when replaying a finding.
extern "C" const char* __asan_default_options()
{
    return "malloc_context_size=2";
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    if (TextDepth(text) > MAX_TEXT_DEPTH) {
        return 0;
    }
    Json::Value root;
    Kavo::Push::PushBaseRsp rsp = JsonUtils::Str2Json(text, root);
    if (!rsp.Succeed()) {
        Check(rsp.GetErrDescription().rfind("json parse error, ret: 0, errs: ", 0) == 0);
        Check(root.isNull());
        return 0;
    }
    std::vector<std::string> keys = {"", "k"};
    if (root.isObject()) {
        for (const std::string& name : root.getMemberNames()) {
            keys.push_back(name);
        }
    }
    for (const std::string& key : keys) {
        CheckTypedReads(root, key);
    }
    const bool commented = HasComments(root);
    if (!commented) {
        CheckReadsBack(root, JsonUtils::Json2Str(root));
    }
    if (Depth(root) <= MAX_INDENTED_DEPTH) {
        std::string indented;
        JsonUtils::Json2Str(root, indented);
        CheckReadsBack(root, indented);
    }
    return 0;
}
