// PushEventInfo: what one system event of the push service reports: an extension record (the
// extension started, its bundle, ability and account) or a service record (the interface
// invoked by the calling process, with its cost). A value; not safe for concurrent mutation.
//
//   PushEventInfo started("push", "com.example.mail", "PushExt", 100, 0);
//   PushEventInfo invoked("kavo.push.IPushService/RegisterToken", 0, 12);  // bundle and account of this process
#ifndef KAVO_PUSH_EVENT_PUSH_EVENT_INFO_H
#define KAVO_PUSH_EVENT_PUSH_EVENT_INFO_H

#include <cstdint>
#include <string>

#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT PushEventInfo {
public:
    static constexpr int TYPE_SERVICE = 0;
    static constexpr int TYPE_EXTENSION = 1;

    PushEventInfo(std::string const& extensionType, std::string const& bundleName, std::string const& abilityName,
                  int const& accountId, int const& errCode);
    // The bundle and account are the calling process's own; when they cannot be had they stay
    // empty and 0.
    PushEventInfo(std::string const& uri, int const& errCode, unsigned long const& costTime);
    PushEventInfo(std::string const& uri, int const& errCode);
    virtual ~PushEventInfo();

    std::string GetExtensionType() const { return extensionType_; }
    std::string GetUri() const { return uri_; }
    std::string GetBundleName() const { return bundleName_; }
    std::string GetAbilityName() const { return abilityName_; }
    int GetAccountId() const { return accountId_; }
    int GetErrCode() const { return errCode_; }
    int GetType() const { return type_; }
    unsigned long GetCostTime() const { return costTime_; }

private:
    std::string extensionType_;
    std::string uri_;
    std::string bundleName_;
    std::string abilityName_;
    int accountId_ = 0;
    int errCode_ = 0;
    int type_ = TYPE_SERVICE;
    uint64_t costTime_ = 0;
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_EVENT_PUSH_EVENT_INFO_H
