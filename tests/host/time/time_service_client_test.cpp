#include "kavo/host/time/time_service_client.h"

#include <gtest/gtest.h>

#include <memory>

#include "tests/host/time/counting_timer.h"

namespace {

using Kavo::MiscServices::TimeServiceClient;
using KavoTest::CountingTimer;

TEST(TimeServiceClientTest, AnswersWithoutAService)
{
    auto client = TimeServiceClient::GetInstance();
    ASSERT_NE(client, nullptr);
    EXPECT_EQ(client->CreateTimer(std::make_shared<CountingTimer>()), 0u);
    EXPECT_FALSE(client->StartTimer(1, 0) || client->StopTimer(1) || client->DestroyTimer(1));
    EXPECT_GT(client->GetBootTimeMs(), 0) << "the boot clock needs no service";
}

}  // namespace
