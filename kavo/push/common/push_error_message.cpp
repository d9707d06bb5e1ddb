#include "kavo/push/common/push_error_message.h"

namespace Kavo::Push {

const std::map<PushError, std::string> PushErrorMessage::errorMessageMap = {
    {PUSH_ERR_CALLER_ILLEGAL, "The caller is illegal."},
    {PUSH_ERR_INVALID_PARAM, "Invalid input parameter."},
    {PUSH_ERR_SYSTEM_INTERNAL, "System internal error."},
    {PUSH_ERR_EXTENSION_NOT_EXIST, "Push extension does not exist."},
    {PUSH_ERR_EXTENSION_CALLBACK_FAILED, "Push extension callback execution failed."},
    {PUSH_ERR_EXTENSION_CALLBACK_TIMEOUT, "Push extension callback execution timed out."},
    {PUSH_ERR_EVENT_REGISTERED, "The event has been registered."},
    {PUSH_ERR_CONNECT_RQID_SERVICE, "Failed to connect to the RQID service."},
    {PUSH_ERR_RQID_SERVICE_INTERNAL, "Internal error of the RQID service."},
    {PUSH_ERR_CONNECT_PUSH_SERVICE, "Failed to connect to the push service."},
    {PUSH_ERR_PUSH_SERVICE_INTERNAL, "Internal error of the push service."},
    {PUSH_ERR_ILLEGAL_APP_IDENTITY, "Illegal application identity."},
    {PUSH_ERR_NETWORK_UNAVAILABLE, "The network is unavailable."},
    {PUSH_ERR_RIGHTS_NOT_ACTIVATED, "Push rights are not activated."},
    {PUSH_ERR_CROSS_LOCATION_APP, "Cross-location application is not allowed to obtain the token."},
    {PUSH_ERR_DEVICE_NOT_SUPPORT_TOKEN, "The device does not support getting token."},
    {PUSH_ERR_PROFILE_APP_LIMIT, "The number of bound profile-app relationships exceeds the maximum."},
    {PUSH_ERR_DISTRIBUTED_ACCOUNT_NOT_LOGIN, "The os distributed account is not logged in."},
    {PUSH_ERR_OPERATION_NOT_SUPPORT, "Current operation does not support."},
    {PUSH_ERR_CALLS_EXCEEDED, "Number of calls exceeded."},
    {PUSH_ERR_ILLEGAL_ENTITY_ID, "Illegal entity id."},
    {PUSH_ERR_APP_TOKEN_EMPTY, "App token is empty."},
    {PUSH_ERR_APP_NOT_AVAILABLE, "App is not available or not registered."},
    {PUSH_ERR_NOTIFICATION_SWITCH_OFF, "Notification switch off."},
    {PUSH_ERR_ENTITY_IDS_EXCEED_LIMIT, "Number of entity ids exceed the upper limit."},
    {PUSH_ERR_SUBSCRIPTION_UI_FAILED, "Failed to display subscription UI."},
    {PUSH_ERR_NO_ENTITY_ID_RIGHTS, "No rights to access entity id."},
    {PUSH_ERR_ILLEGAL_ENTITY_TYPE, "Illegal entity type."},
    {PUSH_ERR_NOTIFICATION_CONTENT_INVALID, "Remote notification content is invalid."},
    {PUSH_ERR_VOIP_SERVICE_INTERNAL, "VoIP service internal error."},
    {PUSH_ERR_ILLEGAL_CALL_ID, "Illegal call id."},
    {PUSH_ERR_NOT_LOGGED_IN, "The user has not logged in with TALVEN ID."},
};

const std::string PushErrorMessage::DESC_SEPARATOR = ", ";

namespace {

// Joins `info` onto `desc`, with the separator only between two non-empty parts.
void AppendInfo(std::string& desc, std::string const& info)
{
    if (!desc.empty()) {
        desc += PushErrorMessage::DESC_SEPARATOR;
    }
    desc += info;
}

bool CarriesNothing(PushBaseRsp const& rsp)
{
    return rsp.Succeed() && rsp.GetErrDescription().empty();
}

}  // namespace

PushBaseRsp PushErrorMessage::RebuildPushRsp(int const& code)
{
    auto it = errorMessageMap.find(static_cast<PushError>(code));
    if (it == errorMessageMap.end()) {
        return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, std::string("System internal error."));
    }
    return PushBaseRsp(it->first, it->second);
}

bool PushErrorMessage::IsErrorExist(int const& code)
{
    return errorMessageMap.count(static_cast<PushError>(code)) != 0;
}

void PushErrorMessage::RebuildErrDesc(PushBaseRsp const& rsp, std::string& desc)
{
    if (CarriesNothing(rsp)) {
        return;
    }
    AppendInfo(desc, rsp.GetInfo());
}

PushBaseRsp PushErrorMessage::RebuildPushRsp(PushBaseRsp& target, PushBaseRsp const& source)
{
    if (CarriesNothing(source)) {
        return target;
    }
    std::string desc = target.GetErrDescription();
    AppendInfo(desc, source.GetInfo());
    target.SetDesc(desc);
    return target;
}

}  // namespace Kavo::Push
