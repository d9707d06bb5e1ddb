#include "kavo/push/validate/extension_service.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using Kavo::Push::ExtensionService;

TEST(ExtensionServiceTest, CallsOnlyTheLatestCallback)
{
    ExtensionService service;
    service.UnLoadService();  // nothing set: nothing happens
    std::string calls;
    service.SetUnLoadCallback([&calls] { calls += "first "; });
    service.SetUnLoadCallback([&calls] { calls += "second "; });
    service.UnLoadService();
    EXPECT_EQ(calls, "second ");
}

}  // namespace
