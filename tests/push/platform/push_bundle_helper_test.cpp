// The package queries against a GoogleMock package manager: the exact requests and the mapping
// of each failure code.
#include "kavo/push/platform/push_bundle_helper.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "kavo/host/log/log.h"
#include "tests/push/platform/platform_mocks.h"

namespace KavoTest {
namespace {

using Kavo::Push::PushBaseRsp;
using Kavo::Push::PushBundleHelper;
using ::testing::_;
using ::testing::DoAll;
using ::testing::Return;
using ::testing::SetArgReferee;

constexpr int USER = 100;
constexpr int32_t BUNDLE_ID = 401;
const std::string MAIL = "com.example.mail";

class BundleQueryTest : public ::testing::Test {
protected:
    ScopedReadiness readiness_;
    ScopedBundleMgr bms_{BUNDLE_ID};
    Kavo::LogCapture cap_;
};

// Each query meets a failing package manager: its result and its log line.
TEST_F(BundleQueryTest, FailureCodesMapToEachQuerysResult)
{
    struct Case {
        const char* name;
        std::function<void(MockBundleMgr&)> arrange;
        std::function<PushBaseRsp()> act;
        int err;
        std::string desc;
        std::string log;
    };
    Want want;
    std::vector<ExtensionAbilityInfo> extensions;
    std::vector<AbilityInfo> abilities;
    AbilityInfo ability;
    ApplicationInfo app;
    BundleInfo bundle;
    std::string name;
    int appIndex = 0;
    const Case cases[] = {
        {"extension query by want is 'extension does not exist' with the code as text",
         [](MockBundleMgr& m) { EXPECT_CALL(m, QueryExtensionAbilityInfosV9(_, 0, USER, _)).WillOnce(Return(7)); },
         [&] { return PushBundleHelper::QueryExtensionAbilityInfos(want, USER, extensions); }, 1000900002,
         "query extension fail:7", "query extension fail:7"},
        {"extension query by type passes type and flags and fails as internal error",
         [](MockBundleMgr& m) {
             EXPECT_CALL(m, QueryExtensionAbilityInfosV9(_, ExtensionAbilityType::PUSH, 3, USER, _))
                 .WillOnce(Return(-5));
         },
         [&] {
             return PushBundleHelper::QueryExtensionAbilityInfos(want, ExtensionAbilityType::PUSH, 3, USER, extensions);
         },
         1000900001, "Query extension ability info failed:-5", "Query extension ability info failed:-5"},
        {"ability query names the V9 request in its log",
         [](MockBundleMgr& m) { EXPECT_CALL(m, QueryAbilityInfosV9(_, 0, USER, _)).WillOnce(Return(9)); },
         [&] { return PushBundleHelper::QueryAbilityInfos(want, USER, abilities); }, 1000900001,
         "Query ability infos failed:9", "Query Ability InfosV9 Fail"},
        {"single ability query refused",
         [](MockBundleMgr& m) { EXPECT_CALL(m, QueryAbilityInfo(_, 4, USER, _)).WillOnce(Return(false)); },
         [&] { return PushBundleHelper::QueryAbilityInfo(want, 4, USER, ability); }, 1000900001,
         "query ability info failed", "query ability info failed"},
        {"application record refused",
         [](MockBundleMgr& m) {
             EXPECT_CALL(m, GetApplicationInfo(MAIL, GET_BASIC_APPLICATION_INFO, USER, _)).WillOnce(Return(false));
         },
         [&] { return PushBundleHelper::GetApplicationInfo(MAIL, GET_BASIC_APPLICATION_INFO, USER, app); }, 1000900001,
         "Get application info fail", "Get application info fail"},
        {"name of an unknown uid",
         [](MockBundleMgr& m) { EXPECT_CALL(m, GetNameForUid(20010001, _)).WillOnce(Return(8521225)); },
         [&] { return PushBundleHelper::GetNameForUid(20010001, name); }, 1000900001, "Get name for uid fail: 8521225",
         "Get name for uid fail: 8521225"},
        {"bundle record failure is error -1 with the odd record name",
         [](MockBundleMgr& m) { EXPECT_CALL(m, GetBundleInfoV9(MAIL, 1, _, USER)).WillOnce(Return(8521220)); },
         [&] { return PushBundleHelper::GetBundleInfoV9(MAIL, USER, bundle); }, -1, "Get RimoBundleInfo, 8521220",
         "GetBundleInfoV9 failed ret:8521220"},
        {"app index failure carries the refused-client inner code",
         [](MockBundleMgr& m) { EXPECT_CALL(m, GetNameAndIndexForUid(20010001, _, _)).WillOnce(Return(12)); },
         [&] { return PushBundleHelper::GetAppIndex(20010001, appIndex); }, -1, "get appIndex failed:12",
         "Get appIndex faild: 12"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        cap_.Clear();
        c.arrange(*bms_);
        PushBaseRsp rsp = c.act();
        EXPECT_EQ(rsp.GetErr(), c.err);
        EXPECT_EQ(rsp.GetErrDescription(), c.desc);
        EXPECT_TRUE(HasLine(cap_, c.log));
        ::testing::Mock::VerifyAndClearExpectations(&*bms_);
    }
    EXPECT_CALL(*bms_, GetNameAndIndexForUid(1, _, _)).WillOnce(Return(12));
    EXPECT_EQ(PushBundleHelper::GetAppIndex(1, appIndex).GetInnerErr(), Kavo::Push::INNER_ERR_CLIENT_INFO_REFUSED);
}

TEST_F(BundleQueryTest, InstalledStatusDistinguishesMissingBundleFromPlatformFailure)
{
    struct Case {
        const char* name;
        int32_t code;
        bool installedFlag;
        bool v9;
        int status;
        int err;
        std::string desc;
    };
    const Case cases[] = {
        {"V9: a missing bundle is not installed", 8521220, false, true, 0, -1, "bundle is not installed"},
        {"V9: another code is unknown", 5, false, true, -1, -1, "Get install status failed, 5"},
        {"V9: an installed bundle gives its uid", 0, false, true, 1, 0, ""},
        {"flag query: a failure code is unknown", 5, true, false, -1, -1, "Get install status failed, 5"},
        {"flag query: answered false is not installed with no text", 0, false, false, 0, -1, ""},
        {"flag query: answered true is installed", 0, true, false, 1, 0, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        int uid = 7;
        std::pair<PushBaseRsp, int> result;
        if (c.v9) {
            BundleInfo answer;
            answer.uid = 20010042;
            EXPECT_CALL(*bms_, GetBundleInfoV9(MAIL, 1, _, USER))
                .WillOnce(DoAll(SetArgReferee<2>(answer), Return(c.code)));
            result = PushBundleHelper::GetInstalledStatusV9(MAIL, USER, uid);
            EXPECT_EQ(uid, c.status == 1 ? 20010042 : 7);
        } else {
            EXPECT_CALL(*bms_, IsBundleInstalled(MAIL, USER, 2, _))
                .WillOnce(DoAll(SetArgReferee<3>(c.installedFlag), Return(c.code)));
            result = PushBundleHelper::GetInstalledStatus(MAIL, USER, 2);
        }
        EXPECT_EQ(result.second, c.status);
        EXPECT_EQ(result.first.GetErr(), c.err);
        EXPECT_EQ(result.first.GetErrDescription(), c.desc);
        ::testing::Mock::VerifyAndClearExpectations(&*bms_);
    }
}

TEST_F(BundleQueryTest, UidOfUnknownBundleIsStoredUnchecked)
{
    EXPECT_CALL(*bms_, GetUidByBundleName("com.example.none", USER, 0)).WillOnce(Return(-1));
    int uid = 5;
    EXPECT_TRUE(PushBundleHelper::GetUidByBundleName("com.example.none", USER, uid, 0).Succeed());
    EXPECT_EQ(uid, -1);
}

TEST_F(BundleQueryTest, CloneRecordHandsBackTheCodeAndLogsTheName)
{
    BundleInfo clone;
    clone.name = MAIL;
    clone.appIndex = 2;
    EXPECT_CALL(*bms_, GetCloneBundleInfo(MAIL, 1, 2, _, USER)).WillOnce(DoAll(SetArgReferee<3>(clone), Return(0)));
    EXPECT_CALL(*bms_, GetCloneBundleInfo(MAIL, 1, 3, _, USER)).WillOnce(Return(8521290));
    int ret = -9;
    EXPECT_EQ(PushBundleHelper::GetBundleInfo(MAIL, USER, 2, ret).appIndex, 2);
    EXPECT_EQ(ret, 0);
    EXPECT_TRUE(PushBundleHelper::GetBundleInfo(MAIL, USER, 3, ret).name.empty());
    EXPECT_EQ(ret, 8521290);
    EXPECT_TRUE(HasLine(cap_, "Get clone bundle info com.example.mail failed: 8521290"));
}

// The application record read three ways.
TEST_F(BundleQueryTest, ApplicationRecordFeedsUidSystemFlagAndCheckerBits)
{
    struct Case {
        const char* name;
        bool asan, tsan, gwp, hwasan;
        unsigned char flags;
    };
    const Case cases[] = {
        {"no checker is no bit", false, false, false, false, 0},
        {"asan alone is bit 1", true, false, false, false, 1},
        {"tsan alone is bit 2", false, true, false, false, 2},
        {"gwp-asan alone is bit 4", false, false, true, false, 4},
        {"hwasan alone is bit 8", false, false, false, true, 8},
        {"all four are 15", true, true, true, true, 15},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ApplicationInfo answer;
        answer.asanEnabled = c.asan;
        answer.tsanEnabled = c.tsan;
        answer.gwpAsanEnabled = c.gwp;
        answer.hwAsanEnabled = c.hwasan;
        EXPECT_CALL(*bms_, GetApplicationInfo(MAIL, GET_BASIC_APPLICATION_INFO, USER, _))
            .WillOnce(DoAll(SetArgReferee<3>(answer), Return(true)));
        unsigned char flags = 0xff;
        EXPECT_TRUE(PushBundleHelper::GetAppAnitizerFlag(MAIL, USER, flags).Succeed());
        EXPECT_EQ(flags, c.flags);
    }
    ApplicationInfo system;
    system.uid = 1000;
    system.isSystemApp = true;
    EXPECT_CALL(*bms_, GetApplicationInfo(MAIL, GET_BASIC_APPLICATION_INFO, USER, _))
        .WillOnce(DoAll(SetArgReferee<3>(system), Return(true)))
        .WillOnce(DoAll(SetArgReferee<3>(system), Return(true)))
        .WillRepeatedly(Return(false));
    int uid = 0;
    EXPECT_TRUE(PushBundleHelper::GetAppUidForName(MAIL, USER, uid).Succeed());
    EXPECT_EQ(uid, 1000);
    EXPECT_TRUE(PushBundleHelper::IsSystemApp(MAIL, USER));
    EXPECT_FALSE(PushBundleHelper::IsSystemApp(MAIL, USER));
    EXPECT_TRUE(HasLine(cap_, "GetApplicationInfo fail, bundleName: com.example.mail, errInfo: "
                              "Get application info fail: error(1000900001)"));
    unsigned char flags = 0xff;
    EXPECT_EQ(PushBundleHelper::GetAppAnitizerFlag(MAIL, USER, flags).GetErr(), 1000900001);
    EXPECT_EQ(flags, 0);
    EXPECT_EQ(PushBundleHelper::GetAppUidForName(MAIL, USER, uid).GetErr(), 1000900001);
    EXPECT_TRUE(HasLine(cap_, "Get Application Info Fail"));
}

// The four ability lookups build their wants and keep the first ability.
TEST_F(BundleQueryTest, AbilityLookupsBuildTheirWantAndTakeTheFirstAbility)
{
    struct Case {
        const char* name;
        std::function<PushBaseRsp(AbilityInfo&)> act;
        std::function<bool(const Want&)> wantIs;
    };
    const Case cases[] = {
        {"by action",
         [](AbilityInfo& i) { return PushBundleHelper::GetAbilityByAction(MAIL, "kavo.action.compose", USER, i); },
         [](const Want& w) { return w.GetBundle() == MAIL && w.GetAction() == "kavo.action.compose"; }},
        {"by uri", [](AbilityInfo& i) { return PushBundleHelper::GetAbilityByUri(MAIL, "mailto:", USER, i); },
         [](const Want& w) { return w.GetBundle() == MAIL && w.GetUriString() == "mailto:"; }},
        {"by name", [](AbilityInfo& i) { return PushBundleHelper::GetAbilityByName(MAIL, "Compose", USER, i); },
         [](const Want& w) { return w.GetBundle() == MAIL && w.GetAbilityName() == "Compose"; }},
        {"main ability uses the home action and entity",
         [](AbilityInfo& i) { return PushBundleHelper::GetMainAbility(MAIL, USER, i); },
         [](const Want& w) {
             return w.GetBundle() == MAIL && w.GetAction() == Want::ACTION_HOME && w.HasEntity(Want::ENTITY_HOME);
         }},
    };
    std::vector<AbilityInfo> two(2);
    two[0].name = "First";
    two[1].name = "Second";
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_CALL(*bms_, QueryAbilityInfosV9(::testing::Truly(c.wantIs), 0, USER, _))
            .WillOnce(DoAll(SetArgReferee<3>(two), Return(0)))
            .WillOnce(Return(0))
            .WillOnce(Return(3));
        AbilityInfo info;
        EXPECT_TRUE(c.act(info).Succeed());
        EXPECT_EQ(info.name, "First");
        info.name = "kept";
        EXPECT_TRUE(c.act(info).Succeed()) << "an empty answer is still a success";
        EXPECT_EQ(info.name, "kept");
        EXPECT_EQ(c.act(info).GetErrDescription(), "Query ability infos failed:3");
        EXPECT_EQ(info.name, "kept");
        ::testing::Mock::VerifyAndClearExpectations(&*bms_);
    }
}

TEST_F(BundleQueryTest, ExtensionExistComparesOnlyTheFirstEntryOfTheAppIndex)
{
    auto ext = [](ExtensionAbilityType type, int index) {
        ExtensionAbilityInfo e;
        e.type = type;
        e.appIndex = index;
        return e;
    };
    using T = ExtensionAbilityType;
    struct Case {
        const char* name;
        std::vector<ExtensionAbilityInfo> answer;
        int32_t code;
        int appIndex;
        int err;
        std::string desc;
    };
    const Case cases[] = {
        {"first entry of the type", {ext(T::PUSH, 0)}, 0, 0, 0, ""},
        {"a matching entry after another type does not count",
         {ext(T::SERVICE, 0), ext(T::PUSH, 0)},
         0,
         0,
         1000900002,
         ""},
        {"entries of other clones are dropped first", {ext(T::SERVICE, 1), ext(T::PUSH, 0)}, 0, 0, 0, ""},
        {"the clone's own entry", {ext(T::PUSH, 0), ext(T::PUSH, 2)}, 0, 2, 0, ""},
        {"nothing left for the clone", {ext(T::PUSH, 0)}, 0, 1, 1000900002, ""},
        {"no extension at all", {}, 0, 0, 1000900002, ""},
        {"a failed query carries its text", {}, 4, 0, 1000900002, "query extension fail:4"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_CALL(*bms_, QueryExtensionAbilityInfosV9(_, 0, USER, _))
            .WillOnce(DoAll(SetArgReferee<3>(c.answer), Return(c.code)));
        cap_.Clear();
        PushBaseRsp rsp = PushBundleHelper::ExtensionExist(Want(), USER, T::PUSH, c.appIndex);
        EXPECT_EQ(rsp.GetErr(), c.err);
        EXPECT_EQ(rsp.GetErrDescription(), c.desc);
        if (c.err != 0) {
            EXPECT_TRUE(HasLine(cap_, "extensionInfos is invalid: " + c.desc));
        }
    }
}

TEST_F(BundleQueryTest, BrowserIsLookedUpForTheFirstForegroundAccount)
{
    struct Case {
        const char* name;
        std::vector<int32_t> foreground;
        int32_t foregroundCode;
        int32_t queryCode;  // -1: no query expected
        int err;
        std::string desc;
        std::string log;
    };
    const Case cases[] = {
        {"no foreground account",
         {},
         0,
         -1,
         401,
         "Ids is empty, unable to get userId",
         "Ids is empty, unable to get userId"},
        {"accounts refused",
         {},
         3,
         -1,
         1000900001,
         "get foreground accountId failed 3",
         "GetForegroundOsAccounts check fail"},
        {"no browser installed",
         {101, 100},
         0,
         8521221,
         1000900001,
         "Query ability infos failed:8521221",
         "No available browsers ,errInfo : Query ability infos failed:8521221: error(1000900001)"},
        {"a browser answers", {101, 100}, 0, 0, 0, "", ""},
    };
    ScopedAccountService accounts{200};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<Kavo::AccountSA::ForegroundOsAccount> list;
        for (int32_t id : c.foreground) {
            list.push_back({id, 0});
        }
        EXPECT_CALL(*accounts, GetForegroundOsAccounts(_))
            .WillOnce(DoAll(SetArgReferee<0>(list), Return(c.foregroundCode)));
        if (c.queryCode >= 0) {
            auto isBrowserWant = [](const Want& w) {
                return w.GetAction() == "kavo.want.action.viewData" && w.HasEntity("entity.system.browsable") &&
                       w.GetUriString() == "https://" && w.GetBundle().empty();
            };
            EXPECT_CALL(*bms_, QueryAbilityInfosV9(::testing::Truly(isBrowserWant), 0, 101, _))
                .WillOnce(Return(c.queryCode));
        }
        cap_.Clear();
        PushBaseRsp rsp = PushBundleHelper::IsBrowserAvailable();
        EXPECT_EQ(rsp.GetErr(), c.err);
        EXPECT_EQ(rsp.GetErrDescription(), c.desc);
        if (!c.log.empty()) {
            EXPECT_TRUE(HasLine(cap_, c.log));
        }
        ::testing::Mock::VerifyAndClearExpectations(&*bms_);
    }
}

TEST(BundleTableTest, ExtensionTypeNamesAreExact)
{
    struct Case {
        const char* name;
        ExtensionAbilityType type;
    };
    const Case cases[] = {
        {"push", ExtensionAbilityType::PUSH},
        {"remoteNotification", ExtensionAbilityType::REMOTE_NOTIFICATION},
        {"remoteLocation", ExtensionAbilityType::REMOTE_LOCATION},
        {"voip", ExtensionAbilityType::VOIP},
        {"service", ExtensionAbilityType::SERVICE},
        {"Push", ExtensionAbilityType::UNSPECIFIED},
        {"push ", ExtensionAbilityType::UNSPECIFIED},
        {"", ExtensionAbilityType::UNSPECIFIED},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(PushBundleHelper::GetExtensionAbilityType(c.name), c.type) << "'" << c.name << "'";
    }
    EXPECT_TRUE(PushBundleHelper::CheckIsNotClonedApp(0));
    EXPECT_FALSE(PushBundleHelper::CheckIsNotClonedApp(1));
    EXPECT_FALSE(PushBundleHelper::CheckIsNotClonedApp(-1));
}

}  // namespace
}  // namespace KavoTest
