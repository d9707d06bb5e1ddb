#include "kavo/host/context/application_context.h"

#include <mutex>

namespace Kavo::AbilityRuntime {

namespace {

std::mutex g_mutex;
std::shared_ptr<ApplicationContext> g_context;

}  // namespace

std::shared_ptr<ApplicationContext> Context::GetApplicationContext()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    return g_context;
}

void Context::SetApplicationContext(const std::string& bundleName)
{
    auto context = std::make_shared<ApplicationContext>(bundleName);
    std::lock_guard<std::mutex> lock(g_mutex);
    g_context = std::move(context);
}

void Context::ClearApplicationContext()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    g_context.reset();
}

}  // namespace Kavo::AbilityRuntime
