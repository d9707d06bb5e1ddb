// IBundleMgr: the package manager's interface, reached under system ability 401. Pure virtual,
// so that the device and tests provide it; an implementation must be callable from any thread.
#ifndef KAVO_HOST_BUNDLE_IBUNDLE_MGR_H
#define KAVO_HOST_BUNDLE_IBUNDLE_MGR_H

#include <cstdint>
#include <string>
#include <vector>

#include "kavo/host/bundle/bundle_info.h"
#include "kavo/host/host_export.h"
#include "kavo/host/ipc/iremote_object.h"
#include "kavo/host/want/want.h"

namespace Kavo::AppExecFwk {

using ErrCode = int32_t;

class KAVO_HOST_EXPORT IBundleMgr : public ServiceInterface {
public:
    static const std::u16string& GetDescriptor();

    ~IBundleMgr() override = default;

    virtual ErrCode FindExtensionAbilities(const AAFwk::Want& want, int32_t flags, int32_t userId,
                                           std::vector<ExtensionAbilityInfo>& infos) = 0;
    virtual ErrCode FindExtensionAbilities(const AAFwk::Want& want, ExtensionAbilityType type, int32_t flags,
                                           int32_t userId, std::vector<ExtensionAbilityInfo>& infos) = 0;
    virtual ErrCode FindAbilities(const AAFwk::Want& want, int32_t flags, int32_t userId,
                                  std::vector<AbilityInfo>& infos) = 0;
    virtual bool QueryAbilityInfo(const AAFwk::Want& want, int32_t flags, int32_t userId, AbilityInfo& info) = 0;
    virtual bool GetApplicationInfo(const std::string& bundleName, ApplicationFlag flag, int32_t userId,
                                    ApplicationInfo& info) = 0;
    virtual ErrCode GetNameForUid(int32_t uid, std::string& bundleName) = 0;
    // INVALID_UID for a bundle, user or app index the manager does not know.
    virtual int32_t GetUidByBundleName(const std::string& bundleName, int32_t userId, int32_t appIndex) = 0;
    virtual ErrCode GetBundleInfoV9(const std::string& bundleName, int32_t flags, BundleInfo& info, int32_t userId) = 0;
    virtual ErrCode GetCloneRecord(const std::string& bundleName, int32_t flags, int32_t appIndex, BundleInfo& info,
                                   int32_t userId) = 0;
    virtual ErrCode GetBundleNameAndCloneIndex(int32_t uid, std::string& bundleName, int32_t& appIndex) = 0;
    virtual ErrCode CheckBundleInstalled(const std::string& bundleName, int32_t userId, int32_t appIndex,
                                         bool& isInstalled) = 0;
};

}  // namespace Kavo::AppExecFwk

#endif  // KAVO_HOST_BUNDLE_IBUNDLE_MGR_H
