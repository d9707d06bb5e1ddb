// Results, codes and messages: what a failure looks like to the service and to an application.
#include <kavo/push/common/push_base_rsp.h>
#include <kavo/push/common/push_error_message.h>

#include "show.h"

using namespace Kavo::Push;

int main()
{
    // guide: codes
    PushBaseRsp ok;  // success: code 0, no description
    PushBaseRsp missing = PushErrorMessage::RebuildPushRsp(PUSH_ERR_EXTENSION_NOT_EXIST);
    PushBaseRsp own(PUSH_ERR_INVALID_PARAM, "survival time is invalid: %d", 0);
    PushBaseRsp unknown = PushErrorMessage::RebuildPushRsp(12345);  // not a public code
    Guide::Show("ok.Succeed()", ok.Succeed(), true);
    Guide::Show("missing.GetInfo()", missing.GetInfo(), "Push extension does not exist.: error(1000900002)");
    Guide::Show("own.GetInfo()", own.GetInfo(), "survival time is invalid: 0: error(401)");
    Guide::Show("unknown.GetInfo()", unknown.GetInfo(), "System internal error.: error(1000900001)");
    // end guide

    // guide: fold
    std::string desc = "start extension failed";
    PushErrorMessage::RebuildErrDesc(missing, desc);  // appends the cause
    PushBaseRsp inner(PUSH_ERR_SYSTEM_INTERNAL, INNER_ERR_SA_INVOKE_FAILED, "get bms fail");
    Guide::Show("desc", desc, "start extension failed, Push extension does not exist.: error(1000900002)");
    Guide::Show("inner.GetInfo()", inner.GetInfo(), "get bms fail: error(1000900001), innerCode(100000143)");
    // end guide
    return Guide::ExitStatus();
}
