#include "kavo/host/bundle/ibundle_mgr.h"

namespace Kavo::AppExecFwk {

const std::u16string& IBundleMgr::GetDescriptor()
{
    static const std::u16string descriptor = u"kavo.appexecfwk.BundleMgr";
    return descriptor;
}

}  // namespace Kavo::AppExecFwk
