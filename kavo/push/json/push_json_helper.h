// PushJsonHelper: JSON files holding one object. Read the object, one string member or one
// array-of-strings member, or replace one string member and rewrite the file in place.
// No locking: callers serialise access to one file themselves (a reader running during a
// rewrite may see a truncated file). Otherwise stateless and callable from any thread.
//
//   std::set<std::string> hosts;
//   PushBaseRsp rsp = PushJsonHelper::GetArrayFromJson("push/hosts.json", true, "allow", hosts);
#ifndef KAVO_PUSH_JSON_PUSH_JSON_HELPER_H
#define KAVO_PUSH_JSON_PUSH_JSON_HELPER_H

#include <json/json.h>

#include <set>
#include <string>

#include "kavo/push/common/push_base_rsp.h"
#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

// Every operation names its file by `path` and `isConfigFile`, resolved as GetRealPath does.
class KAVO_PUSH_EXPORT PushJsonHelper {
public:
    // Reads and parses the whole file; `root` is untouched on failure.
    static PushBaseRsp GetJsonRootFromPath(const std::string& path, const bool& isConfigFile, Json::Value& root);
    // Reads the string member `key` of the file's object.
    static PushBaseRsp GetStringFromJson(const std::string& path, const bool& isConfigFile, const std::string& key,
                                         std::string& value);
    // Adds every string of the array member `key` to `values`, which is not cleared first.
    // At the first item that is not a string it fails; the strings before it stay added.
    static PushBaseRsp GetArrayFromJson(const std::string& path, const bool& isConfigFile, const std::string& key,
                                        std::set<std::string>& values);
    // Sets the member `key` of the file's object to the string `value` (whatever it held
    // before), keeps every other member, and rewrites the file in place. The file must exist
    // and hold JSON; it is never created here.
    static PushBaseRsp SetStringToJson(const std::string& path, const bool& isConfigFile, const std::string& key,
                                       const std::string& value);
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_JSON_PUSH_JSON_HELPER_H
