// The account queries against a GoogleMock account service: the wait for a service that is
// still starting, the codes that are not retried, and each operation's texts and events.
#include "kavo/push/platform/push_account_helper.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <thread>

#include "kavo/host/log/log.h"
#include "kavo/push/platform/push_bundle_helper.h"
#include "kavo/push/platform/push_distribute_account_helper.h"
#include "tests/push/platform/platform_mocks.h"

namespace KavoTest {
namespace {

using Kavo::AccountSA::ForegroundOsAccount;
using Kavo::AccountSA::KavoAccountInfo;
using Kavo::Push::PushAccountHelper;
using Kavo::Push::PushBaseRsp;
using Kavo::Push::PushBundleHelper;
using Kavo::Push::PushDistributeAccountHelper;
using ::testing::_;
using ::testing::DoAll;
using ::testing::Invoke;
using ::testing::Return;
using ::testing::SetArgReferee;
using Status = Kavo::Push::SystemAbilityStatusService;

constexpr int32_t NOT_REACHED = 4194321;
constexpr int ACCOUNT = 200;
constexpr int POLL_MS = 20;  // ten polls: a window of 200 ms for the announcement

// The platform call of each retried operation, made to answer `code`; the foreground id that
// IsOsAccountVerified asks first is 100.
struct RetriedOp {
    const char* name;
    std::function<void(MockAccountService&, std::function<int32_t()>)> expectCall;
    std::function<PushBaseRsp()> act;
    const char* eventApi;  // null: no analytics event
    std::string notStarted;
    std::string failLog;   // for code 2
    std::string failDesc;  // for code 2
};

std::vector<RetriedOp> RetriedOps()
{
    static std::vector<int> ids;
    static int localId = 0;
    static bool verified = false;
    auto foreground100 = [](MockAccountService& m) {
        EXPECT_CALL(m, GetForegroundOsAccountLocalId(_)).WillRepeatedly(DoAll(SetArgReferee<0>(100), Return(0)));
    };
    return {
        {"QueryActiveOsAccountIds",
         [](MockAccountService& m, std::function<int32_t()> code) {
             EXPECT_CALL(m, QueryActiveOsAccountIds(_)).WillRepeatedly(Invoke([code](std::vector<int>&) {
                 return code();
             }));
         },
         [] { return PushAccountHelper::QueryActiveOsAccountIds(ids); }, "QueryActiveOsAccountIds",
         "query active os accountIds fail: account sa not started", "query active accountId fail: 2",
         "query active accountId fail: 2"},
        {"GetForegroundOsAccounts",
         [](MockAccountService& m, std::function<int32_t()> code) {
             EXPECT_CALL(m, GetForegroundOsAccounts(_)).WillRepeatedly(Invoke([code](auto&) { return code(); }));
         },
         [] { return PushAccountHelper::GetForegroundOsAccounts(ids); }, nullptr,
         "getForegroundOsAccounts fail: account sa not started", "get foreground accountId failed 2",
         "get foreground accountId failed 2"},
        {"GetForegroundOsAccountLocalId",
         [](MockAccountService& m, std::function<int32_t()> code) {
             EXPECT_CALL(m, GetForegroundOsAccountLocalId(_)).WillRepeatedly(Invoke([code](int& id) {
                 id = 101;
                 return code();
             }));
         },
         [] { return PushAccountHelper::GetForegroundOsAccountLocalId(localId); }, "GetForegroundOsAccountLocalId",
         "GetForegroundOsAccountLocalId fail: current userId not obtain",
         "GetForegroundOsAccountLocalId retry failed: 2, localId: 101", "the os account verifie fail: 2, localId: 101"},
        {"IsOsAccountVerified",
         [foreground100](MockAccountService& m, std::function<int32_t()> code) {
             foreground100(m);
             EXPECT_CALL(m, IsOsAccountVerified(100, _)).WillRepeatedly(Invoke([code](int, bool&) { return code(); }));
         },
         [] { return PushAccountHelper::IsOsAccountVerified(verified); }, "IsOsAccountVerified",
         "isOsAccountVerified fail: account sa not started", "isOsAccountVerified retry failed: 2, userId: 100",
         "the os account verifie fail: 2, userId: 100"},
        {"GetCurrAccountId",
         [](MockAccountService& m, std::function<int32_t()> code) {
             EXPECT_CALL(m, GetOsAccountLocalIdFromProcess(_)).WillRepeatedly(Invoke([code](int&) { return code(); }));
         },
         [] { return PushBundleHelper::GetCurrAccountId(localId); }, nullptr,
         "get os account localId fail: account sa not started", "Get os accountId failed", "Get os accountId failed"},
    };
}

class AccountQueryTest : public ::testing::Test {
protected:
    ScopedReadiness readiness_;
    EventRecorder events_;
    Kavo::LogCapture cap_;
};

TEST_F(AccountQueryTest, ServiceComingUpDuringTheWaitIsAskedAgainAndSucceeds)
{
    Status::SetPollIntervalForTesting(POLL_MS);
    for (const auto& op : RetriedOps()) {
        SCOPED_TRACE(op.name);
        ScopedAccountService service{ACCOUNT};
        readiness_.Track(ACCOUNT, Status::STOPPED);
        int runs = 0;
        std::thread announcer;
        op.expectCall(*service, [&runs, &announcer]() {
            if (++runs == 1) {
                // The service is announced a few polls after its first answer.
                announcer = std::thread([] {
                    std::this_thread::sleep_for(std::chrono::milliseconds(3 * POLL_MS));
                    Status::SetStatus(ACCOUNT, Status::STARTED);
                });
                return NOT_REACHED;
            }
            return 0;
        });
        size_t eventsBefore = events_.Events().size();
        EXPECT_TRUE(op.act().Succeed());
        announcer.join();
        EXPECT_EQ(runs, 2);
        std::vector<AnalyticsEvent> all = events_.Events();
        std::vector<AnalyticsEvent> sent(all.begin() + eventsBefore, all.end());
        if (op.eventApi != nullptr) {
            EXPECT_EQ(sent, (std::vector<AnalyticsEvent>{{35, op.eventApi, 1, "4194321"}}));
        } else {
            EXPECT_TRUE(sent.empty());
        }
    }
}

TEST_F(AccountQueryTest, OtherFailureCodesAreNotRetriedAndKeepTheirNumber)
{
    for (const auto& op : RetriedOps()) {
        SCOPED_TRACE(op.name);
        ScopedAccountService service{ACCOUNT};
        readiness_.Track(ACCOUNT, Status::STOPPED);  // would wait, were the code retryable
        int runs = 0;
        op.expectCall(*service, [&runs]() {
            ++runs;
            return 2;
        });
        cap_.Clear();
        PushBaseRsp rsp = op.act();
        EXPECT_EQ(runs, 1);
        EXPECT_EQ(rsp.GetErr(), 1000900001);
        EXPECT_EQ(rsp.GetErrDescription(), op.failDesc);
        EXPECT_TRUE(HasLine(cap_, op.failLog));
    }
}

TEST_F(AccountQueryTest, AbsentServiceFailsWithTheNotStartedTextAtOnceOrAfterTheWait)
{
    struct Case {
        const char* name;
        bool tracked;
        int inner;
    };
    const Case cases[] = {
        {"readiness unknown: no wait", false, PushBaseRsp::NOT_SET},
        {"service stopped: waits, then gives up", true, Kavo::Push::INNER_ERR_SA_STOPPED},
    };
    for (const auto& c : cases) {
        for (const auto& op : RetriedOps()) {
            SCOPED_TRACE(std::string(c.name) + ": " + op.name);
            if (c.tracked) {
                readiness_.Track(ACCOUNT, Status::STOPPED);
            }
            cap_.Clear();
            PushBaseRsp rsp = op.act();
            if (std::string(op.name) == "IsOsAccountVerified") {
                // The foreground id cannot be had, so the device counts as verified.
                EXPECT_EQ(rsp.GetErr(), -1);
                EXPECT_THAT(rsp.GetErrDescription(),
                            ::testing::HasSubstr("GetForegroundOsAccountLocalId fail: current userId not obtain"));
                continue;
            }
            EXPECT_EQ(rsp.GetErr(), 1000900001);
            EXPECT_EQ(rsp.GetErrDescription(), op.notStarted);
            EXPECT_EQ(rsp.GetInnerErr(), c.inner);
            EXPECT_TRUE(HasLine(cap_, op.notStarted));
        }
    }
}

TEST_F(AccountQueryTest, OperationsHandTheirDataBackAsThePlatformGaveIt)
{
    ScopedAccountService service{ACCOUNT};
    std::vector<ForegroundOsAccount> foreground{{100, 0}, {101, 1}};
    EXPECT_CALL(*service, GetForegroundOsAccounts(_))
        .WillOnce(DoAll(SetArgReferee<0>(foreground), Return(0)))
        .WillOnce(Return(0));
    std::vector<int> ids{7};
    EXPECT_TRUE(PushAccountHelper::GetForegroundOsAccounts(ids).Succeed());
    EXPECT_EQ(ids, (std::vector<int>{7, 100, 101})) << "appended after what the caller held";
    EXPECT_TRUE(PushAccountHelper::GetForegroundOsAccounts(ids).Succeed());
    EXPECT_EQ(ids.size(), 3u);

    EXPECT_CALL(*service, QueryActiveOsAccountIds(_)).WillOnce(Return(0));
    std::vector<int> active{1};
    EXPECT_TRUE(PushAccountHelper::QueryActiveOsAccountIds(active).Succeed()) << "an empty answer is a success";

    EXPECT_CALL(*service, GetOsAccountLocalIdFromUid(20010042, _)).WillOnce(DoAll(SetArgReferee<1>(100), Return(0)));
    int localId = -1;
    EXPECT_TRUE(PushAccountHelper::GetOsAccountLocalIdFromUid(20010042, localId).Succeed());
    EXPECT_EQ(localId, 100);
}

TEST_F(AccountQueryTest, UnverifiableForegroundAccountCountsAsVerified)
{
    struct Case {
        const char* name;
        int32_t code;
        int answeredId;
        std::string desc;
    };
    const Case cases[] = {
        {"foreground id refused", 5, 100,
         "IsOsAccountVerified failed: userId is 100, desc is the os account verifie fail: 5, localId: 100: "
         "error(1000900001)"},
        {"foreground id left at -1", 0, -1, "IsOsAccountVerified failed: userId is -1, desc is "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ScopedAccountService service{ACCOUNT};
        EXPECT_CALL(*service, GetForegroundOsAccountLocalId(_))
            .WillOnce(DoAll(SetArgReferee<0>(c.answeredId), Return(c.code)));
        bool verified = false;
        PushBaseRsp rsp = PushAccountHelper::IsOsAccountVerified(verified);
        EXPECT_TRUE(verified);
        EXPECT_EQ(rsp.GetErr(), -1);
        EXPECT_EQ(rsp.GetErrDescription(), c.desc);
    }
}

TEST_F(AccountQueryTest, SingleShotQueriesReportTheirCode)
{
    ScopedAccountService service{ACCOUNT};
    readiness_.Track(ACCOUNT, Status::STOPPED);  // single shots never wait
    EXPECT_CALL(*service, GetOsAccountLocalIdFromUid(5, _)).WillOnce(Return(NOT_REACHED));
    EXPECT_CALL(*service, GetKavoAccountInfo(_)).WillOnce(Return(NOT_REACHED));
    int localId = 0;
    PushBaseRsp fromUid = PushAccountHelper::GetOsAccountLocalIdFromUid(5, localId);
    EXPECT_EQ(fromUid.GetErrDescription(), "Get accountId local id from uid failed 4194321");
    std::string id = "kept";
    PushBaseRsp distributed = PushDistributeAccountHelper::GetOsDistributedId(id);
    EXPECT_EQ(distributed.GetErr(), 1000900001);
    EXPECT_EQ(distributed.GetErrDescription(), "Get os account distributed id failed:4194321");
    EXPECT_TRUE(HasLine(cap_, "Get os account distributed info failed:4194321"));
    EXPECT_EQ(events_.Events(), (std::vector<AnalyticsEvent>{{35, "GetOsAccountLocalIdFromUid", 1, "4194321"},
                                                             {35, "GetKavoAccountInfo", 1, "4194321"}}));
}

TEST_F(AccountQueryTest, DistributedIdIsRefusedOnlyForTheExactAnonymousUid)
{
    struct Case {
        const char* name;
        std::string uid;
        int err;
        std::string id;
    };
    const Case cases[] = {
        {"nobody logged in", "kavoAnonymousUid", 1000900001, "kept"},
        {"a trailing blank is an id", "kavoAnonymousUid ", 0, "kavoAnonymousUid "},
        {"case matters", "KavoAnonymousUid", 0, "KavoAnonymousUid"},
        {"a real account", "5500123", 0, "5500123"},
    };
    ScopedAccountService service{ACCOUNT};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        KavoAccountInfo info;
        info.uid = c.uid;
        EXPECT_CALL(*service, GetKavoAccountInfo(_)).WillOnce(DoAll(SetArgReferee<0>(info), Return(0)));
        std::string id = "kept";
        PushBaseRsp rsp = PushDistributeAccountHelper::GetOsDistributedId(id);
        EXPECT_EQ(rsp.GetErr(), c.err);
        EXPECT_EQ(id, c.id);
        if (c.err != 0) {
            EXPECT_EQ(rsp.GetErrDescription(), "Os account id not login");
        }
    }
}

}  // namespace
}  // namespace KavoTest
