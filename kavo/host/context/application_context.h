// The application context of the calling process: who the process is (its bundle name).
// GetApplicationContext answers null until a context is set. Thread-safe; a context, once
// handed out, is immutable.
#ifndef KAVO_HOST_CONTEXT_APPLICATION_CONTEXT_H
#define KAVO_HOST_CONTEXT_APPLICATION_CONTEXT_H

#include <memory>
#include <string>

#include "kavo/host/host_export.h"

namespace Kavo::AbilityRuntime {

class KAVO_HOST_EXPORT ApplicationContext {
public:
    explicit ApplicationContext(std::string bundleName) : bundleName_(std::move(bundleName)) {}

    const std::string& GetBundleName() const { return bundleName_; }

private:
    std::string bundleName_;
};

class KAVO_HOST_EXPORT Context {
public:
    static std::shared_ptr<ApplicationContext> GetApplicationContext();
    // Control: the process now runs as `bundleName`.
    static void SetApplicationContext(const std::string& bundleName);
    // Control: the process has no application context.
    static void ClearApplicationContext();
};

}  // namespace Kavo::AbilityRuntime

#endif  // KAVO_HOST_CONTEXT_APPLICATION_CONTEXT_H
