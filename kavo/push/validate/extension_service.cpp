#include "kavo/push/validate/extension_service.h"

namespace Kavo::Push {

void ExtensionService::SetUnLoadCallback(const std::function<void()>& callback)
{
    std::function<void()> copy(callback);
    unloadCallback_.swap(copy);
}

void ExtensionService::UnLoadService()
{
    if (unloadCallback_) {
        unloadCallback_();
    }
}

}  // namespace Kavo::Push
