#include "kavo/push/event/push_event_info.h"

#include "kavo/push/platform/push_bundle_helper.h"

namespace Kavo::Push {

PushEventInfo::PushEventInfo(std::string const& extensionType, std::string const& bundleName,
                             std::string const& abilityName, int const& accountId, int const& errCode)
    : extensionType_(extensionType), bundleName_(bundleName), abilityName_(abilityName), accountId_(accountId),
      errCode_(errCode), type_(TYPE_EXTENSION)
{
}

PushEventInfo::PushEventInfo(std::string const& uri, int const& errCode, unsigned long const& costTime)
    : uri_(uri), errCode_(errCode), type_(TYPE_SERVICE), costTime_(costTime)
{
    // Best effort: a failed query leaves its field at the default.
    (void)PushBundleHelper::GetCurrBundle(bundleName_);
    (void)PushBundleHelper::GetCurrAccountId(accountId_);
}

PushEventInfo::PushEventInfo(std::string const& uri, int const& errCode) : PushEventInfo(uri, errCode, 0UL) {}

PushEventInfo::~PushEventInfo() = default;

}  // namespace Kavo::Push
