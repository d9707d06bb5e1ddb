#include "kavo/push/platform/internal/bundle_managers.h"

#include "kavo/push/common/push_log.h"
#include "kavo/push/platform/internal/service_proxy.h"

namespace Kavo::Push::internal {

using AppExecFwk::IAppMgr;
using AppExecFwk::IBundleMgr;

PushBaseRsp GetBundleMgr(sptr<IBundleMgr>& out)
{
    ServiceProxyTexts texts;
    texts.noSamgrLog = "get samgr fail";
    texts.noSamgrDesc = "get samgr fail";
    texts.notStartedLog = "Get bms fail: bms sa not started";
    texts.notStartedDesc = "get bms fail: bms sa not started";
    texts.retryFailLog = InfoFormat("Get bundle mgr fail: %{public}s");
    texts.nullProxyText = "IBundleMgr is null";
    return GetServiceProxy<IBundleMgr>(BUNDLE_SERVICE_ABILITY_ID, texts, out);
}

PushBaseRsp GetAppMgr(sptr<IAppMgr>& out)
{
    ServiceProxyTexts texts;
    texts.noSamgrLog = "get app mgr fail: get samgr fail";
    texts.noSamgrDesc = "get app mgr fail: get samgr fail";
    texts.notStartedLog = "get ams fail: ams sa not started";
    texts.notStartedDesc = "get ams fail: ams sa not started";
    texts.retryFailLog = InfoFormat("Get app mgr fail: %{public}s");
    texts.nullProxyText = "IAppMgr is null";
    return GetServiceProxy<IAppMgr>(APP_SERVICE_ABILITY_ID, texts, out);
}

void LookupFailLog::Write(const PushBaseRsp& lookup) const
{
    switch (kind_) {
        case Kind::INFO:
            PUSH_LOGE(text_, lookup.GetInfo().c_str());
            break;
        case Kind::ERROR_CODE:
            PUSH_LOGE(text_, lookup.GetErr());
            break;
        case Kind::TEXT:
        default:
            PUSH_LOGE("%{public}s", text_);
            break;
    }
}

PushBaseRsp QueryRunningProcesses(const std::string& bundleName, int userId, const LookupFailLog& noMgrLog,
                                  CodeFormat failLog, CodeFormat failDesc,
                                  std::vector<AppExecFwk::RunningProcessInfo>& processes)
{
    return WithManager(GetAppMgr, noMgrLog, [&](IAppMgr& mgr) {
        int32_t code = mgr.ListRunningProcesses(bundleName, userId, processes);
        if (code != 0) {
            PUSH_LOGE(failLog.text, code);
            return PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, failDesc.text, code);
        }
        return PushBaseRsp();
    });
}

}  // namespace Kavo::Push::internal
