#include "kavo/host/appmgr/iapp_mgr.h"

namespace Kavo::AppExecFwk {

const std::u16string& IAppMgr::GetDescriptor()
{
    static const std::u16string descriptor = u"kavo.appexecfwk.AppMgr";
    return descriptor;
}

}  // namespace Kavo::AppExecFwk
