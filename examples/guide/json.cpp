// JSON values and JSON files: typed reads that fall back to a default, and a settings file
// read and rewritten in place.
#include <stdlib.h>
#include <unistd.h>

#include <fstream>
#include <set>
#include <string>

#include <kavo/push/json/json_utils.h>
#include <kavo/push/json/push_json_helper.h>

#include "show.h"

using namespace Kavo::Push;

int main()
{
    // guide: values
    Json::Value root;
    PushBaseRsp rsp = JsonUtils::Str2Json(R"({"ttl": 3600, "title": "mail", "badge": "three"})", root);
    int ttl = 0, badge = 0, retries = 0;
    JsonUtils::ParseInt(root, "ttl", ttl, 86400);
    JsonUtils::ParseInt(root, "badge", badge, -1);                 // a string, not an int: the default
    JsonUtils::ParseInt(root, "retries", retries, 3);              // absent: the default
    PushBaseRsp broken = JsonUtils::Str2Json("{\"ttl\": ", root);  // root is left as it was
    Guide::Show("parsed", rsp.Succeed(), true);
    Guide::Show("ttl, badge, retries",
                std::to_string(ttl) + ", " + std::to_string(badge) + ", " + std::to_string(retries), "3600, -1, 3");
    Guide::Show("broken text fails", broken.Succeed(), false);
    Guide::Show("compact form", JsonUtils::Json2Str(root), R"({"badge":"three","title":"mail","ttl":3600})");
    // end guide

    char folder[] = "/tmp/kavo-guide-XXXXXX";
    if (mkdtemp(folder) == nullptr) {
        return 1;
    }
    const std::string path = std::string(folder) + "/push.json";
    std::ofstream(path) << R"({"token": "old", "hosts": ["a.example.org", "b.example.org"]})";
    // guide: files
    std::set<std::string> hosts;
    PushJsonHelper::GetArrayFromJson(path, false, "hosts", hosts);  // false: a path, not a config name
    PushJsonHelper::SetStringToJson(path, false, "token", "new");   // the other members are kept
    std::string token;
    PushJsonHelper::GetStringFromJson(path, false, "token", token);
    PushBaseRsp absent = PushJsonHelper::GetStringFromJson(path + ".missing", false, "token", token);
    Guide::Show("hosts", hosts.size(), size_t{2});
    Guide::Show("token", token, "new");
    Guide::Show("a missing file", absent.Succeed(), false);
    // end guide
    unlink(path.c_str());
    rmdir(folder);
    return Guide::ExitStatus();
}
