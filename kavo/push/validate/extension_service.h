// Holds the one callback that unloads the extension process. No lock: setting the callback
// and unloading are expected on one thread.
#ifndef KAVO_PUSH_VALIDATE_EXTENSION_SERVICE_H
#define KAVO_PUSH_VALIDATE_EXTENSION_SERVICE_H

#include <functional>

#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT ExtensionService {
public:
    // Replaces any earlier callback; the old one is destroyed.
    void SetUnLoadCallback(const std::function<void()>& callback);
    // Calls the callback if one is set; otherwise does nothing.
    void UnLoadService();

private:
    std::function<void()> unloadCallback_;
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_VALIDATE_EXTENSION_SERVICE_H
