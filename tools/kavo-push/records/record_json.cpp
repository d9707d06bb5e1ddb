#include "records/record_json.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <sstream>

#include "kavo/push/model/entity_setting.h"
#include "kavo/push/model/msg_time_points.h"
#include "kavo/push/model/push_extension_info.h"
#include "kavo/push/model/push_payload.h"
#include "kavo/push/model/remote_location_request.h"
#include "kavo/push/model/remote_notification_content.h"
#include "kavo/push/model/remote_notification_info.h"
#include "kavo/push/model/remote_notification_request.h"
#include "kavo/push/model/remote_notification_result.h"
#include "kavo/push/model/remote_want_agent.h"
#include "kavo/push/model/report_voip_call_params.h"
#include "kavo/push/model/subscribe_notification_setting.h"
#include "kavo/push/model/voip_info.h"
#include "kavo/push/model/voip_request.h"
#include "kavo/push/model/voip_result.h"
#include "records/json_fields.h"

namespace KavoTool {

namespace {

using namespace Kavo::Push;
using Kavo::AAFwk::WantParams;
using Kavo::Media::PixelMap;

// The reader's own default, named so the message can say it.
constexpr int JSON_NESTING_LIMIT = 1000;

// One mapping per record: the JSON keys, their order and which of them are optional. Writing
// copies the getters' values out and assigns them back unchanged; reading fills the locals and
// builds the record from them.

template <class Io>
bool Map(Io& io, MsgTimePoints& r)
{
    return io.Field("timePoint0", r.timePoint0_) && io.Field("timePoint1", r.timePoint1_) &&
           io.Field("timePoint2", r.timePoint2_) && io.Field("timePoint3", r.timePoint3_) &&
           io.Field("timePoint4", r.timePoint4_) && io.Field("timePoint5", r.timePoint5_);
}

template <class Io>
bool Map(Io& io, RemoteWantAgent& r)
{
    std::string abilityName = r.GetAbilityName();
    std::string parameters = r.GetParameters();
    if (!io.Field("abilityName", abilityName) || !io.Field("parameters", parameters)) {
        return false;
    }
    r.SetAbilityName(abilityName);
    r.SetParameters(parameters);
    return true;
}

template <class Io>
bool Map(Io& io, RemoteNotificationContent& r)
{
    auto title = r.GetTitle();
    auto text = r.GetText();
    auto overlayIcon = r.GetOverlayIcon();
    auto badgeNumber = r.GetBadgeNumber();
    auto setBadgeNumber = r.GetSetBadgeNumber();
    auto wantAgent = r.GetWantAgent();
    auto msgTimePoints = r.GetMsgTimePoints();
    if (!io.Optional("title", title) || !io.Optional("text", text) || !io.Optional("overlayIcon", overlayIcon) ||
        !io.Optional("badgeNumber", badgeNumber) || !io.Optional("setBadgeNumber", setBadgeNumber) ||
        !io.Optional("wantAgent", wantAgent) || !io.Optional("msgTimePoints", msgTimePoints)) {
        return false;
    }
    r.SetTitle(title);
    r.SetText(text);
    r.SetOverlayIcon(overlayIcon);
    r.SetBadgeNumber(badgeNumber);
    r.SetSetBadgeNumber(setBadgeNumber);
    r.SetWantAgent(wantAgent);
    r.SetMsgTimePoints(msgTimePoints);
    return true;
}

template <class Io>
bool Map(Io& io, PushPayload& r)
{
    std::string type = r.GetType();
    std::string data = r.GetData();
    if (!io.Field("type", type) || !io.Field("data", data)) {
        return false;
    }
    r = PushPayload(type, data);
    return true;
}

template <class Io>
bool Map(Io& io, RemoteNotificationInfo& r)
{
    std::string type = r.GetType();
    std::string data = r.GetData();
    int64_t id = r.GetId();
    if (!io.Field("type", type) || !io.Field("data", data) || !io.Field("id", id)) {
        return false;
    }
    r = RemoteNotificationInfo(type, data, id);
    return true;
}

template <class Io>
bool Map(Io& io, RemoteNotificationRequest& r)
{
    int32_t survivalTime = r.GetSurvivalTime();
    int32_t overlayIconSize = r.GetOverlayIconSize();
    int32_t contentSize = r.GetContentSize();
    RemoteNotificationInfo info = r.GetRemoteNotification();
    if (!io.Field("survivalTime", survivalTime) || !io.Field("overlayIconSize", overlayIconSize) ||
        !io.Field("contentSize", contentSize) || !io.Field("remoteNotification", info)) {
        return false;
    }
    r = RemoteNotificationRequest(survivalTime, overlayIconSize, contentSize, info);
    return true;
}

template <class Io>
bool Map(Io& io, RemoteNotificationResult& r)
{
    RemoteNotificationContent content = r.GetContent();
    auto parameters = r.GetParameters();
    if (!io.Field("content", content) || !io.Optional("parameters", parameters)) {
        return false;
    }
    r.SetContent(content);
    r.SetParameters(parameters);
    return true;
}

// PushExtensionInfo and RemoteLocationRequest share their fields.
template <class Io, class R>
bool MapExtensionInfo(Io& io, R& r)
{
    int32_t survivalTime = r.GetSurvivalTime();
    bool sync = r.GetSync();
    PushPayload payload = r.GetPushPayload();
    if (!io.Field("survivalTime", survivalTime) || !io.Field("sync", sync) || !io.Field("pushPayload", payload)) {
        return false;
    }
    r = R(survivalTime, sync, payload);
    return true;
}

template <class Io>
bool Map(Io& io, PushExtensionInfo& r)
{
    return MapExtensionInfo(io, r);
}

template <class Io>
bool Map(Io& io, RemoteLocationRequest& r)
{
    return MapExtensionInfo(io, r);
}

template <class Io>
bool Map(Io& io, VoIPInfo& r)
{
    std::string type = r.GetType();
    std::string data = r.GetData();
    std::string callId = r.GetCallId();
    if (!io.Field("type", type) || !io.Field("data", data) || !io.Field("callId", callId)) {
        return false;
    }
    r = VoIPInfo(type, data, callId);
    return true;
}

template <class Io>
bool Map(Io& io, VoIPRequest& r)
{
    int32_t survivalTime = r.GetSurvivalTime();
    VoIPInfo voIP = r.GetVoIP();
    if (!io.Field("survivalTime", survivalTime) || !io.Field("voIP", voIP)) {
        return false;
    }
    r = VoIPRequest(survivalTime, voIP);
    return true;
}

template <class Io>
bool Map(Io& io, VoIPResult& r)
{
    auto parameters = r.GetParameters();
    if (!io.Optional("parameters", parameters)) {
        return false;
    }
    r.SetParameters(parameters);
    return true;
}

template <class Io>
bool Map(Io& io, ReportVoIPCallParams& r)
{
    std::string callId = r.GetCallId();
    uint32_t status = r.GetStatus();
    if (!io.Field("callId", callId) || !io.Field("status", status)) {
        return false;
    }
    r = ReportVoIPCallParams(callId, status);
    return true;
}

// The keys of EntitySetting::ToJsonValue, and the extra parameters it leaves out.
template <class Io>
bool Map(Io& io, EntitySetting& r)
{
    std::string entityId = r.GetEntityId();
    std::string entityName = r.GetEntityName();
    auto enable = r.GetEnable();
    int32_t entityType = r.GetEntityType();
    auto extraInfo = r.GetExtraInfo();
    if (!io.Field("entityId", entityId) || !io.Field("entityName", entityName) || !io.Optional("enable", enable) ||
        !io.Field("entityType", entityType) || !io.Optional("extraInfo", extraInfo)) {
        return false;
    }
    r.SetEntityId(entityId);
    r.SetEntityName(entityName);
    r.SetEnable(enable);
    r.SetEntityType(static_cast<EntityType>(entityType));
    r.SetExtraInfo(extraInfo);
    return true;
}

template <class Io>
bool Map(Io& io, SubscribeNotificationSetting& r)
{
    std::string bundleName = r.GetBundleName();
    auto enabled = r.GetEnabled();
    if (!io.Field("bundleName", bundleName) || !io.Optional("enabled", enabled)) {
        return false;
    }
    r.SetBundleName(bundleName);
    r.SetEnabled(enabled);
    return true;
}

template <class Io>
bool Map(Io& io, SubscribeNotificationBasicSetting& r)
{
    bool enabled = r.IsEnabled();
    if (!io.Field("enabled", enabled)) {
        return false;
    }
    r.SetEnabled(enabled);
    return true;
}

}  // namespace

template <class R>
void Put(Json::Value& json, R& record)
{
    JsonOut out(json);
    Map(out, record);
}

template <class R>
bool Get(const Json::Value& json, const std::string& path, R& record, std::string& error)
{
    JsonIn in(json, path, error);
    return in.Open() && Map(in, record) && in.Close();
}

namespace {

// Records come back as sptr, the platform's WantParams and PixelMap as owned raw pointers.
template <class R>
std::unique_ptr<R> Take(const Kavo::sptr<R>& record)
{
    return record == nullptr ? nullptr : std::make_unique<R>(*record);
}

template <class R>
std::unique_ptr<R> Take(R* record)
{
    return std::unique_ptr<R>(record);
}

template <class R>
bool Decode(Kavo::Parcel& parcel, Json::Value& json)
{
    std::unique_ptr<R> record = Take(R::Unmarshalling(parcel));
    if (record == nullptr) {
        return false;
    }
    Put(json, *record);
    return true;
}

template <class R>
bool Encode(const Json::Value& json, Kavo::Parcel& parcel, std::string& error)
{
    R record;
    if (!Get(json, "", record, error)) {
        return false;
    }
    if (record.Marshalling(parcel)) {
        return true;
    }
    // Written again without the parcel's limit, a record that is merely too large fits; a value
    // the library refuses to write fails again.
    Kavo::Parcel unbounded;
    if (unbounded.SetMaxCapacity(std::numeric_limits<size_t>::max()) && record.Marshalling(unbounded)) {
        error = "the record takes " + std::to_string(unbounded.GetDataSize()) + " bytes, more than the " +
                std::to_string(parcel.GetMaxCapacity()) + " a parcel holds";
    } else {
        error = "the library refuses to write the record";
    }
    return false;
}

template <class R>
RecordType Entry(const char* name, const char* description)
{
    return RecordType{name, description, Decode<R>, Encode<R>};
}

}  // namespace

const std::vector<RecordType>& RecordTypes()
{
    static const std::vector<RecordType> types = {
        Entry<MsgTimePoints>("MsgTimePoints", "six time points of one message"),
        Entry<RemoteWantAgent>("RemoteWantAgent", "the ability a notification opens, and its parameters"),
        Entry<RemoteNotificationContent>("RemoteNotificationContent", "the notification an extension hands back"),
        Entry<RemoteNotificationInfo>("RemoteNotificationInfo", "a remote notification's type, data and id"),
        Entry<RemoteNotificationRequest>("RemoteNotificationRequest", "a remote notification and its limits"),
        Entry<RemoteNotificationResult>("RemoteNotificationResult", "an extension's content and parameters"),
        Entry<PushPayload>("PushPayload", "a push message's type and data"),
        Entry<PushExtensionInfo>("PushExtensionInfo", "a push message for a push extension"),
        Entry<RemoteLocationRequest>("RemoteLocationRequest", "a location request for an extension"),
        Entry<VoIPInfo>("VoIPInfo", "a VoIP message's type, data and call id"),
        Entry<VoIPRequest>("VoIPRequest", "a VoIP message and its survival time"),
        Entry<VoIPResult>("VoIPResult", "an extension's answer to a VoIP message"),
        Entry<ReportVoIPCallParams>("ReportVoIPCallParams", "the state of a call an application reports"),
        Entry<EntitySetting>("EntitySetting", "the notification switch of one entity"),
        Entry<SubscribeNotificationSetting>("SubscribeNotificationSetting", "a package's subscription switch"),
        Entry<SubscribeNotificationBasicSetting>("SubscribeNotificationBasicSetting", "a subscription switch"),
        Entry<WantParams>("WantParams", "typed parameters of the platform"),
        Entry<PixelMap>("PixelMap", "an image of the platform"),
    };
    return types;
}

const RecordType* FindRecordType(const std::string& name)
{
    const auto& types = RecordTypes();
    auto found = std::find_if(types.begin(), types.end(), [&name](const RecordType& t) { return name == t.name; });
    return found == types.end() ? nullptr : &*found;
}

bool ParseJson(const std::string& text, Json::Value& json, std::string& error)
{
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    builder.settings_["stackLimit"] = JSON_NESTING_LIMIT;
    std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    std::string errors;
    bool parsed = false;
    try {
        parsed = reader->parse(text.data(), text.data() + text.size(), &json, &errors);
    } catch (const Json::Exception&) {
        // The reader throws only when the nesting passes its stack limit.
        error = "invalid JSON: nested more than " + std::to_string(JSON_NESTING_LIMIT) + " levels deep";
        return false;
    }
    if (!parsed) {
        // The reader's first message: "* Line 1, Column 14\n  Missing '}' or object member name\n".
        std::istringstream lines(errors);
        std::string where;
        std::string what;
        std::getline(lines, where);
        std::getline(lines, what);
        where.erase(0, where.find_first_not_of("* "));
        what.erase(0, what.find_first_not_of(' '));
        error = "invalid JSON: " + where + ": " + what;
        return false;
    }
    return true;
}

std::string JsonText(const Json::Value& json)
{
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "  ";
    builder["emitUTF8"] = true;
    return Json::writeString(builder, json) + "\n";
}

}  // namespace KavoTool
