#include "kavo/push/event/push_event_report.h"

#include <map>

namespace Kavo::Push {

namespace {

// The catalogue and its keys are built at load time and never destroyed: detached threads may
// still send events while the process exits.
const std::string& DOMAIN_PUSH_MANAGER = *new std::string("PUSH_MANAGER");
const std::string& KEY_EXTENSION_TYPE = *new std::string("EXTENSION_TYPE");
const std::string& KEY_URI = *new std::string("URI");
const std::string& KEY_BUNDLE_NAME = *new std::string("BUNDLE_NAME");
const std::string& KEY_ABILITY_NAME = *new std::string("ABILITY_NAME");
const std::string& KEY_ACCOUNT_ID = *new std::string("ACCOUNT_ID");
const std::string& KEY_ERROR_CODE = *new std::string("ERROR_CODE");
const std::string& KEY_COST_TIME = *new std::string("COST_TIME");

const std::map<PushEvent, PushEventLevel>& EVENT_CATALOGUE = *new std::map<PushEvent, PushEventLevel>{
    {PushEvent::START_EXTENSION, PushEventLevel("START_EXTENSION", EventType::BEHAVIOR)},
    {PushEvent::START_EXTENSION_ERROR, PushEventLevel("START_EXTENSION_ERROR", EventType::FAULT)},
    {PushEvent::CONNECT_PUSHSERVICE_ERROR, PushEventLevel("CONNECT_PUSHSERVICE_ERROR", EventType::FAULT)},
    {PushEvent::UNCONNECT_PUSHSERVICE_ERROR, PushEventLevel("UNCONNECT_PUSHSERVICE_ERROR", EventType::FAULT)},
    {PushEvent::INVOKE_PUSH_SERVICE, PushEventLevel("INVOKE_PUSH_SERVICE", EventType::BEHAVIOR)},
};

std::vector<SysEventParam> EventParams(PushEvent const& event, PushEventInfo const& info)
{
    if (info.GetType() == PushEventInfo::TYPE_EXTENSION) {
        return {{KEY_EXTENSION_TYPE, info.GetExtensionType()},
                {KEY_BUNDLE_NAME, info.GetBundleName()},
                {KEY_ABILITY_NAME, info.GetAbilityName()},
                {KEY_ACCOUNT_ID, int32_t{info.GetAccountId()}},
                {KEY_ERROR_CODE, int32_t{info.GetErrCode()}}};
    }
    if (event != PushEvent::INVOKE_PUSH_SERVICE) {
        return {{KEY_URI, info.GetUri()},
                {KEY_BUNDLE_NAME, info.GetBundleName()},
                {KEY_ACCOUNT_ID, int32_t{info.GetAccountId()}},
                {KEY_ERROR_CODE, int32_t{info.GetErrCode()}}};
    }
    return {{KEY_URI, info.GetUri()},
            {KEY_BUNDLE_NAME, info.GetBundleName()},
            {KEY_ACCOUNT_ID, int32_t{info.GetAccountId()}},
            {KEY_COST_TIME, uint64_t{info.GetCostTime()}},
            {KEY_ERROR_CODE, int32_t{info.GetErrCode()}}};
}

}  // namespace

PushEventLevel::PushEventLevel(std::string const& name, EventType const& type) : name_(name), type_(type) {}

PushEventLevel::~PushEventLevel() = default;

void PushEventReport::SendEvent(PushEvent const& event, PushEventInfo const& info)
{
    const PushEventLevel& level = EVENT_CATALOGUE.at(event);
    // The writer's answer is ignored: an event it refuses is dropped without a trace.
    (void)SysEventWrite(DOMAIN_PUSH_MANAGER, level.GetName(), level.GetEventType(), EventParams(event, info));
}

}  // namespace Kavo::Push
