// The package and application managers as PushBundleHelper's queries reach them: looked up again
// for every query, and the opening every query shares: "look the manager up; on failure log the
// query's own line and hand the lookup's result back; else ask the manager". Stateless;
// callable from any thread.
//
//   return WithBundleMgr("Get Bundle Mgr Fail", [&](IBundleMgr& mgr) { return Ask(mgr); });
#ifndef KAVO_PUSH_PLATFORM_INTERNAL_BUNDLE_MANAGERS_H
#define KAVO_PUSH_PLATFORM_INTERNAL_BUNDLE_MANAGERS_H

#include <string>
#include <utility>
#include <vector>

#include "kavo/host/appmgr/iapp_mgr.h"
#include "kavo/host/bundle/ibundle_mgr.h"
#include "kavo/push/common/push_base_rsp.h"
#include "kavo/push/platform/internal/log_format.h"

namespace Kavo::Push::internal {

PushBaseRsp GetBundleMgr(sptr<AppExecFwk::IBundleMgr>& out);
PushBaseRsp GetAppMgr(sptr<AppExecFwk::IAppMgr>& out);

// The error line a query writes when its manager cannot be had.
class LookupFailLog {
public:
    LookupFailLog(const char* text) : text_(text) {}                                   // as it is
    LookupFailLog(InfoFormat format) : text_(format.text), kind_(Kind::INFO) {}        // given the lookup's GetInfo()
    LookupFailLog(CodeFormat format) : text_(format.text), kind_(Kind::ERROR_CODE) {}  // given its error code
    void Write(const PushBaseRsp& lookup) const;

private:
    enum class Kind { TEXT, INFO, ERROR_CODE };
    const char* text_;
    Kind kind_ = Kind::TEXT;
};

template <typename Manager, typename Ask>
PushBaseRsp WithManager(PushBaseRsp (*lookUp)(sptr<Manager>&), const LookupFailLog& failLog, Ask&& ask)
{
    sptr<Manager> mgr;
    PushBaseRsp rsp = lookUp(mgr);
    if (!rsp.Succeed()) {
        failLog.Write(rsp);
        return rsp;
    }
    return ask(*mgr);
}

template <typename Ask>
PushBaseRsp WithBundleMgr(const LookupFailLog& failLog, Ask&& ask)
{
    return WithManager(GetBundleMgr, failLog, std::forward<Ask>(ask));
}

// The running processes of `bundleName` for `userId`. A failure code is logged with `failLog`
// and described with `failDesc`.
PushBaseRsp QueryRunningProcesses(const std::string& bundleName, int userId, const LookupFailLog& noMgrLog,
                                  CodeFormat failLog, CodeFormat failDesc,
                                  std::vector<AppExecFwk::RunningProcessInfo>& processes);

}  // namespace Kavo::Push::internal

#endif  // KAVO_PUSH_PLATFORM_INTERNAL_BUNDLE_MANAGERS_H
