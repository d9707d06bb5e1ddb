// JsonUtils: JSON text to value and back, and typed reads of one member of a JSON object that
// fall back to a default. All functions are stateless and may be called from any thread.
//
//   Json::Value root;
//   if (JsonUtils::Str2Json(text, root).Succeed()) { JsonUtils::ParseInt(root, "ttl", ttl, 86400); }
#ifndef KAVO_PUSH_JSON_JSON_UTILS_H
#define KAVO_PUSH_JSON_JSON_UTILS_H

#include <json/json.h>

#include <string>

#include "kavo/push/common/push_base_rsp.h"
#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT JsonUtils {
public:
    // Parses the whole text. On failure `root` is untouched and the result carries the
    // parser's own error text: "json parse error, ret: 0, errs: ...".
    static PushBaseRsp Str2Json(const std::string& text, Json::Value& root);
    // Indented text (the writer's default indentation); characters outside ASCII stay UTF-8.
    static void Json2Str(const Json::Value& root, std::string& text);
    // Compact text on one line; characters outside ASCII stay UTF-8. Comments kept from a
    // parsed text are written too, as in the indented form, so a commented value's one-line
    // text does not read back.
    static std::string Json2Str(const Json::Value& root);

    // Typed reads: `value` receives the member `key` of the object `root` when it has the
    // type asked for, and `defaultValue` in every other case (root not an object, key
    // absent, member of another type). Integers must fit an int (int64 for ParseInt64).
    static void ParseInt(const Json::Value& root, const std::string& key, int& value, const int& defaultValue);
    static void ParseInt(const Json::Value& root, const std::string& key, int& value);
    static void ParseInt64(const Json::Value& root, const std::string& key, long& value, const long& defaultValue);
    // Keeps the low 8 bits of the int member: 300 reads as 44, -1 as 255.
    static void ParseUInt8(const Json::Value& root, const std::string& key, unsigned char& value,
                           const unsigned char& defaultValue);
    // Takes the int member's bits as unsigned: -1 reads as 4294967295; members above
    // 2147483647 are not ints and give the default.
    static void ParseUint(const Json::Value& root, const std::string& key, unsigned int& value,
                          const unsigned int& defaultValue);
    static void ParseString(const Json::Value& root, const std::string& key, std::string& value,
                            const std::string& defaultValue);
    static void ParseString(const Json::Value& root, const std::string& key, std::string& value);
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_JSON_JSON_UTILS_H
