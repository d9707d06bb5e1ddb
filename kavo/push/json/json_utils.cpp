#include "kavo/push/json/json_utils.h"

#include <exception>
#include <memory>

#include "kavo/push/common/push_log.h"

namespace Kavo::Push {

namespace {

const Json::CharReaderBuilder& ReaderBuilder()
{
    static const Json::CharReaderBuilder builder;
    return builder;
}

Json::StreamWriterBuilder MakeWriterBuilder(bool compact)
{
    Json::StreamWriterBuilder builder;
    builder["emitUTF8"] = true;
    if (compact) {
        // Comments kept from a parsed text stay too, as the writer's defaults have it: the one-line
        // form of a commented value does not read back, which is why the fuzz oracle skips them.
        builder["indentation"] = "";
    }
    return builder;
}

// The member `key` of `root` when `root` is an object holding it, else null.
const Json::Value* FindMember(const Json::Value& root, const std::string& key)
{
    if (!root.isObject()) {
        return nullptr;
    }
    return root.find(key.data(), key.data() + key.size());
}

// The one rule of every typed read: the converted member when it passes `accepts`, else the default.
template <typename T, typename Accepts, typename Convert>
void ReadMember(const Json::Value& root, const std::string& key, T& value, const T& defaultValue, Accepts accepts,
                Convert convert)
{
    const Json::Value* member = FindMember(root, key);
    value = (member != nullptr && accepts(*member)) ? convert(*member) : defaultValue;
}

bool IsInt(const Json::Value& v)
{
    return v.isInt();
}
bool IsInt64(const Json::Value& v)
{
    return v.isInt64();
}
bool IsString(const Json::Value& v)
{
    return v.isString();
}

}  // namespace

PushBaseRsp JsonUtils::Str2Json(const std::string& text, Json::Value& root)
{
    Json::Value parsed;
    std::string errs;
    bool ok = false;
    try {
        std::unique_ptr<Json::CharReader> reader(ReaderBuilder().newCharReader());
        ok = reader->parse(text.data(), text.data() + text.size(), &parsed, &errs);
    } catch (const std::exception& e) {
        // The parser gives up on nesting deeper than it allows by throwing; that is a parse
        // failure like any other, with the parser's text.
        ok = false;
        errs = e.what();
    }
    if (ok && errs.empty()) {
        root.swap(parsed);
        return PushBaseRsp();
    }
    PUSH_LOGW("json parse error");
    return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL,
                       "json parse error, ret: " + std::to_string(ok ? 1 : 0) + ", errs: " + errs);
}

void JsonUtils::Json2Str(const Json::Value& root, std::string& text)
{
    static const Json::StreamWriterBuilder builder = MakeWriterBuilder(false);
    text = Json::writeString(builder, root);
}

std::string JsonUtils::Json2Str(const Json::Value& root)
{
    static const Json::StreamWriterBuilder builder = MakeWriterBuilder(true);
    return Json::writeString(builder, root);
}

void JsonUtils::ParseInt(const Json::Value& root, const std::string& key, int& value, const int& defaultValue)
{
    ReadMember(root, key, value, defaultValue, IsInt, [](const Json::Value& v) { return v.asInt(); });
}

void JsonUtils::ParseInt(const Json::Value& root, const std::string& key, int& value)
{
    ParseInt(root, key, value, 0);
}

void JsonUtils::ParseInt64(const Json::Value& root, const std::string& key, long& value, const long& defaultValue)
{
    ReadMember(root, key, value, defaultValue, IsInt64,
               [](const Json::Value& v) { return static_cast<long>(v.asInt64()); });
}

void JsonUtils::ParseUInt8(const Json::Value& root, const std::string& key, unsigned char& value,
                           const unsigned char& defaultValue)
{
    ReadMember(root, key, value, defaultValue, IsInt,
               [](const Json::Value& v) { return static_cast<unsigned char>(v.asInt() & 0xFF); });
}

void JsonUtils::ParseUint(const Json::Value& root, const std::string& key, unsigned int& value,
                          const unsigned int& defaultValue)
{
    ReadMember(root, key, value, defaultValue, IsInt,
               [](const Json::Value& v) { return static_cast<unsigned int>(v.asInt()); });
}

void JsonUtils::ParseString(const Json::Value& root, const std::string& key, std::string& value,
                            const std::string& defaultValue)
{
    ReadMember(root, key, value, defaultValue, IsString, [](const Json::Value& v) { return v.asString(); });
}

void JsonUtils::ParseString(const Json::Value& root, const std::string& key, std::string& value)
{
    ParseString(root, key, value, std::string());
}

}  // namespace Kavo::Push
