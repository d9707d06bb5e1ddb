// The account queries against a GoogleMock account service.
#include "kavo/push/platform/push_account_helper.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <thread>

#include "kavo/push/platform/push_bundle_helper.h"
#include "tests/push/platform/platform_mocks.h"

namespace KavoTest {
namespace {

using Kavo::Push::PushAccountHelper;
using Kavo::Push::PushBaseRsp;
using Status = Kavo::Push::SystemAbilityStatusService;
using Code = std::function<int32_t()>;
using Texts = std::vector<std::string>;

constexpr int32_t NOT_REACHED = 4194321;
constexpr int ACCOUNT = 200;

// One retried operation: its platform call made to answer `code`, and its texts.
struct RetriedOp {
    std::function<void(MockAccountService&, Code)> expectCall;
    std::function<PushBaseRsp()> act;
    const char* eventApi;  // null: no analytics event on a failure code
    std::string notStarted, failDesc, retryFail;  // retryFail: the line's text before the result's
    Texts failLines;  // for code 2
};

std::vector<RetriedOp> RetriedOps()
{
    static std::vector<int> ids;
    static int localId = 0;
    static bool verified = false;
    return {
        {[](auto& m, Code code) { EXPECT_CALL(m, QueryActiveOsAccountIds(_)).WillRepeatedly(code); },
         [] { return PushAccountHelper::QueryActiveOsAccountIds(ids); }, "QueryActiveOsAccountIds",
         "query active os accountIds fail: account sa not started", "query active accountId fail: 2",
         "QueryActiveOsAccountIds fail: ",
         Texts{"E query active accountId fail: 2"}},
        {[](auto& m, Code code) { EXPECT_CALL(m, GetForegroundOsAccounts(_)).WillRepeatedly(code); },
         [] { return PushAccountHelper::GetForegroundOsAccounts(ids); }, nullptr,
         "getForegroundOsAccounts fail: account sa not started", "get foreground accountId failed 2",
         "GetForegroundOsAccounts fail: ",
         Texts{"E Call GetForegroundOsAccounts failed 2", "E get foreground accountId failed 2"}},
        {[](auto& m, Code code) {
             auto answer = [code](int& id) { return id = 101, code(); };
             EXPECT_CALL(m, GetForegroundOsAccountLocalId(_)).WillRepeatedly(answer);
         },
         [] { return PushAccountHelper::GetForegroundOsAccountLocalId(localId); }, "GetForegroundOsAccountLocalId",
         "GetForegroundOsAccountLocalId fail: current userId not obtain",
         "the os account verifie fail: 2, localId: 101", "GetForegroundOsAccountLocalId fail: ",
         Texts{"E GetForegroundOsAccountLocalId failed: 2, localId: 101",
               "E GetForegroundOsAccountLocalId retry failed: 2, localId: 101"}},
        {[](auto& m, Code code) {
             EXPECT_CALL(m, GetForegroundOsAccountLocalId(_)).WillRepeatedly(DoAll(SetArgReferee<0>(100), Return(0)));
             EXPECT_CALL(m, IsOsAccountVerified(100, _)).WillRepeatedly(code);
         },
         [] { return PushAccountHelper::IsOsAccountVerified(verified); }, "IsOsAccountVerified",
         "isOsAccountVerified fail: account sa not started", "the os account verifie fail: 2, userId: 100",
         "isOsAccountVerified fail: ",
         Texts{"E isOsAccountVerified failed: 2, userId: 100", "E isOsAccountVerified retry failed: 2, userId: 100"}},
        {[](auto& m, Code code) { EXPECT_CALL(m, GetOsAccountLocalIdFromProcess(_)).WillRepeatedly(code); },
         [] { return Kavo::Push::PushBundleHelper::GetCurrAccountId(localId); }, nullptr,
         "get os account localId fail: account sa not started", "Get os accountId failed", "Get curr account id fail: ",
         Texts{"E Get os accountId failed"}},
    };
}

class AccountQueryTest : public ::testing::Test {
protected:
    ScopedReadiness readiness_;
    EventRecorder events_;
    Kavo::LogCapture cap_;
};

// A failure code is neither retried nor waited for; "not reached" from a service tracked as
// started is the call's own failure.
TEST_F(AccountQueryTest, RetriedSkeletonOfEveryOperation)
{
    for (const auto& op : RetriedOps()) {
        SCOPED_TRACE(op.notStarted);
        {
            ScopedAccountService service{ACCOUNT};
            readiness_.Track(ACCOUNT, Status::STOPPED);
            int runs = 0;
            op.expectCall(*service, [&runs]() { return ++runs, 2; });
            cap_.Clear();
            events_.Take();
            PushBaseRsp rsp = op.act();
            EXPECT_EQ(std::make_tuple(runs, int(rsp.GetErr()), rsp.GetErrDescription()),
                      std::make_tuple(1, 1000900001, op.failDesc));
            EXPECT_EQ(LogLines(cap_, Kavo::LEVEL_INFO), op.failLines);
            EXPECT_EQ(events_.Take(), (op.eventApi ? Events{{35, op.eventApi, 1, "2"}} : Events{}));
        }
        ScopedAccountService service{ACCOUNT};
        readiness_.Track(ACCOUNT, Status::STARTED);
        op.expectCall(*service, [] { return NOT_REACHED; });
        cap_.Clear();
        PushBaseRsp rsp = op.act();
        EXPECT_EQ(std::make_tuple(int(rsp.GetErr()), rsp.GetErrDescription(), rsp.GetInnerErr()),
                  std::make_tuple(1000900001, op.notStarted, int(Kavo::Push::INNER_ERR_SA_INVOKE_FAILED)));
        EXPECT_TRUE(HasLine(cap_, op.notStarted) && HasLine(cap_, "Task for ability:200 is started") &&
                    HasLine(cap_, op.retryFail + rsp.GetInfo()));
    }
}

// The one real wait: the stopped service is announced half a poll after the first attempt.
TEST_F(AccountQueryTest, ServiceAnnouncedDuringTheWaitIsAskedAgain)
{
    ScopedAccountService service{ACCOUNT};
    readiness_.Track(ACCOUNT, Status::STOPPED);
    std::thread announcer;
    int runs = 0;
    EXPECT_CALL(*service, GetForegroundOsAccountLocalId(_)).Times(2).WillRepeatedly([&](int& id) {
        id = 100 + runs;
        if (++runs > 1) {
            return 0;
        }
        announcer = std::thread([] {
            std::this_thread::sleep_for(std::chrono::milliseconds(500));
            Status::SetStatus(ACCOUNT, Status::STARTED);
        });
        return NOT_REACHED;
    });
    int localId = 0;
    EXPECT_TRUE(PushAccountHelper::GetForegroundOsAccountLocalId(localId).Succeed());
    announcer.join();
    EXPECT_EQ(localId, 101);
    EXPECT_EQ(events_.Take(), (Events{{35, "GetForegroundOsAccountLocalId", 1, "4194321"}}));
}

TEST_F(AccountQueryTest, UnverifiableForegroundAccountCountsAsVerified)
{
    ScopedAccountService service{ACCOUNT};
    EXPECT_CALL(*service, GetForegroundOsAccountLocalId(_))
        .WillOnce(DoAll(SetArgReferee<0>(100), Return(5)))  // refused
        .WillOnce(DoAll(SetArgReferee<0>(-1), Return(0)));  // left at -1
    for (std::string desc : {"IsOsAccountVerified failed: userId is 100, desc is the os account verifie fail: 5, "
                             "localId: 100: error(1000900001)",
                             "IsOsAccountVerified failed: userId is -1, desc is "}) {
        bool verified = false;
        PushBaseRsp rsp = PushAccountHelper::IsOsAccountVerified(verified);
        EXPECT_TRUE(verified);
        EXPECT_EQ(std::make_pair(int(rsp.GetErr()), rsp.GetErrDescription()), std::make_pair(-1, desc));
    }
}

TEST_F(AccountQueryTest, SingleShotQueriesReportTheirCodeWithoutWaiting)
{
    ScopedAccountService service{ACCOUNT};
    readiness_.Track(ACCOUNT, Status::STOPPED);
    EXPECT_CALL(*service, GetOsAccountLocalIdFromUid(5, _)).WillOnce(Return(NOT_REACHED));
    int localId = 0;
    EXPECT_EQ(PushAccountHelper::GetOsAccountLocalIdFromUid(5, localId).GetErrDescription(),
              "Get accountId local id from uid failed 4194321");
    EXPECT_EQ(events_.Take(), (Events{{35, "GetOsAccountLocalIdFromUid", 1, "4194321"}}));
}

}  // namespace
}  // namespace KavoTest
