// The package queries against a GoogleMock package manager: the exact requests, the mapping of
// each failure code, and each query's texts when the package manager cannot be had.
#include "kavo/push/platform/push_bundle_helper.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>

#include "tests/push/platform/platform_mocks.h"

namespace KavoTest {
namespace {

using Kavo::Push::PushBaseRsp;
using Kavo::Push::PushBundleHelper;
using T = ExtensionAbilityType;

constexpr int USER = 100;
constexpr int32_t BUNDLE_ID = 401;
const std::string MAIL = "com.example.mail";
const std::string LOOKUP = "get bms fail: bms sa not started: error(1000900001)";

class BundleQueryTest : public ::testing::Test {
protected:
    ScopedReadiness readiness_;
    std::optional<ScopedBundleMgr> bms_{std::in_place, BUNDLE_ID};
    Kavo::LogCapture cap_;
    Want want_;
    std::vector<ExtensionAbilityInfo> extensions_;
    std::vector<AbilityInfo> abilities_;
    AbilityInfo ability_;
    ApplicationInfo app_;
    BundleInfo bundle_;
    std::string name_;
    int value_ = 0;
};

// Each query meets a failing package manager, then no package manager at all: its result and log lines.
TEST_F(BundleQueryTest, FailureCodesAndTheMissingManagerMapToEachQuerysResult)
{
    struct Case {
        const char* name;
        std::function<void(MockBundleMgr&)> arrange;
        std::function<PushBaseRsp()> act;
        int err;
        std::string desc, log, noMgrLog;
    };
    const Case cases[] = {
        {"extension by want: does not exist", [](auto& m) {
             EXPECT_CALL(m, QueryExtensionAbilityInfosV9(_, 0, USER, _)).WillOnce(Return(7)); },
         [&] { return PushBundleHelper::QueryExtensionAbilityInfos(want_, USER, extensions_); }, 1000900002,
         "query extension fail:7", "query extension fail:7", "Get Bundle Mgr Fail"},
        {"extension by type: passes type and flags", [](auto& m) {
             EXPECT_CALL(m, QueryExtensionAbilityInfosV9(_, T::PUSH, 3, USER, _)).WillOnce(Return(-5)); },
         [&] { return PushBundleHelper::QueryExtensionAbilityInfos(want_, T::PUSH, 3, USER, extensions_); },
         1000900001, "Query extension ability info failed:-5", "Query extension ability info failed:-5",
         "Get Bundle Mgr Fail"},
        {"abilities", [](auto& m) { EXPECT_CALL(m, QueryAbilityInfosV9(_, 0, USER, _)).WillOnce(Return(9)); },
         [&] { return PushBundleHelper::QueryAbilityInfos(want_, USER, abilities_); }, 1000900001,
         "Query ability infos failed:9", "Query Ability InfosV9 Fail", "get bundle mgr fail"},
        {"one ability", [](auto& m) { EXPECT_CALL(m, QueryAbilityInfo(_, 4, USER, _)).WillOnce(Return(false)); },
         [&] { return PushBundleHelper::QueryAbilityInfo(want_, 4, USER, ability_); }, 1000900001,
         "query ability info failed", "query ability info failed", "Get Bundle Mgr Fail:" + LOOKUP},
        {"application", [](auto& m) {
             EXPECT_CALL(m, GetApplicationInfo(MAIL, GET_BASIC_APPLICATION_INFO, USER, _)).WillOnce(Return(false)); },
         [&] { return PushBundleHelper::GetApplicationInfo(MAIL, GET_BASIC_APPLICATION_INFO, USER, app_); },
         1000900001, "Get application info fail", "Get application info fail", "Get Bundle Mgr Fail"},
        {"name for uid", [](auto& m) { EXPECT_CALL(m, GetNameForUid(20010001, _)).WillOnce(Return(8521225)); },
         [&] { return PushBundleHelper::GetNameForUid(20010001, name_); }, 1000900001,
         "Get name for uid fail: 8521225", "Get name for uid fail: 8521225", "Get Bundle Mgr Fail"},
        {"uid for name: an unknown bundle's -1 is a success",
         [](auto& m) { EXPECT_CALL(m, GetUidByBundleName(MAIL, USER, 0)).WillOnce(Return(-1)); },
         [&] { return PushBundleHelper::GetUidByBundleName(MAIL, USER, value_, 0); }, 0, "", "",
         "Get Bundle Mgr Fail"},
        {"bundle record", [](auto& m) { EXPECT_CALL(m, GetBundleInfoV9(MAIL, 1, _, USER)).WillOnce(Return(8521220)); },
         [&] { return PushBundleHelper::GetBundleInfoV9(MAIL, USER, bundle_); }, -1, "Get RimoBundleInfo, 8521220",
         "GetBundleInfoV9 failed ret:8521220", "GetBundleInfoV9 get bundle mgr fail"},
        {"app index", [](auto& m) { EXPECT_CALL(m, GetNameAndIndexForUid(20010001, _, _)).WillOnce(Return(12)); },
         [&] { return PushBundleHelper::GetAppIndex(20010001, value_); }, -1, "get appIndex failed:12",
         "Get appIndex faild: 12", "get bundle mgr fail"},
        {"installed", [](auto& m) { EXPECT_CALL(m, IsBundleInstalled(MAIL, USER, 2, _)).WillOnce(Return(5)); },
         [&] { return PushBundleHelper::GetInstalledStatus(MAIL, USER, 2).first; }, -1,
         "Get install status failed, 5", "", "get bundle mgr fail"},
        {"installed V9", [](auto& m) { EXPECT_CALL(m, GetBundleInfoV9(MAIL, 1, _, USER)).WillOnce(Return(5)); },
         [&] { return PushBundleHelper::GetInstalledStatusV9(MAIL, USER, value_).first; }, -1,
         "Get install status failed, 5", "", "get bundle mgr fail"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        bms_.emplace(BUNDLE_ID);
        cap_.Clear();
        c.arrange(**bms_);
        PushBaseRsp rsp = c.act();
        EXPECT_EQ(rsp.GetErr(), c.err);
        EXPECT_EQ(rsp.GetErrDescription(), c.desc);
        EXPECT_TRUE(c.log.empty() || HasLine(cap_, c.log));
        bms_.reset();
        cap_.Clear();
        EXPECT_EQ(c.act().GetInfo(), LOOKUP);
        EXPECT_TRUE(HasLine(cap_, "Get bms fail: bms sa not started"));
        EXPECT_TRUE(HasLine(cap_, "Get bundle mgr fail: " + LOOKUP));
        EXPECT_TRUE(HasLine(cap_, c.noMgrLog));
    }
    EXPECT_EQ(PushBundleHelper::GetInstalledStatusV9(MAIL, USER, value_).second, -1);
    int ret = 3;
    EXPECT_TRUE(PushBundleHelper::GetBundleInfo(MAIL, USER, 0, ret).name.empty());
    EXPECT_EQ(ret, 3) << "no manager: the code is left as it was";
    bms_.emplace(BUNDLE_ID);
    EXPECT_CALL(**bms_, GetNameAndIndexForUid(1, _, _)).WillOnce(Return(12));
    EXPECT_EQ(PushBundleHelper::GetAppIndex(1, value_).GetInnerErr(), Kavo::Push::INNER_ERR_CLIENT_INFO_REFUSED);
}

TEST_F(BundleQueryTest, InstalledStatusDistinguishesMissingBundleFromPlatformFailure)
{
    struct Case {
        const char* name;
        bool v9;
        int32_t code;
        bool installedFlag;
        int status, err;
        std::string desc;
    };
    const Case cases[] = {
        {"V9: a missing bundle is not installed", true, 8521220, false, 0, -1, "bundle is not installed"},
        {"V9: an installed bundle gives its uid", true, 0, false, 1, 0, ""},
        {"flag: false is not installed, no text", false, 0, false, 0, -1, ""},
        {"flag: true is installed", false, 0, true, 1, 0, ""},
    };
    BundleInfo answer;
    answer.uid = 20010042;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        int uid = 7;
        std::pair<PushBaseRsp, int> result;
        if (c.v9) {
            EXPECT_CALL(**bms_, GetBundleInfoV9(MAIL, 1, _, USER)).WillOnce(DoAll(SetArgReferee<2>(answer), Return(c.code)));
            result = PushBundleHelper::GetInstalledStatusV9(MAIL, USER, uid);
            EXPECT_EQ(uid, c.status == 1 ? 20010042 : 7);
        } else {
            EXPECT_CALL(**bms_, IsBundleInstalled(MAIL, USER, 2, _))
                .WillOnce(DoAll(SetArgReferee<3>(c.installedFlag), Return(c.code)));
            result = PushBundleHelper::GetInstalledStatus(MAIL, USER, 2);
        }
        EXPECT_EQ(result.second, c.status);
        EXPECT_EQ(result.first.GetErr(), c.err);
        EXPECT_EQ(result.first.GetErrDescription(), c.desc);
    }
    BundleInfo clone;
    clone.appIndex = 2;
    EXPECT_CALL(**bms_, GetCloneBundleInfo(MAIL, 1, 2, _, USER)).WillOnce(DoAll(SetArgReferee<3>(clone), Return(0)));
    EXPECT_CALL(**bms_, GetCloneBundleInfo(MAIL, 1, 3, _, USER)).WillOnce(Return(8521290));
    int ret = -9;
    EXPECT_EQ(PushBundleHelper::GetBundleInfo(MAIL, USER, 2, ret).appIndex, 2);
    EXPECT_EQ(ret, 0);
    EXPECT_EQ(PushBundleHelper::GetBundleInfo(MAIL, USER, 3, ret).appIndex, 0);
    EXPECT_EQ(ret, 8521290);
    EXPECT_TRUE(HasLine(cap_, "Get clone bundle info com.example.mail failed: 8521290"));
}

TEST_F(BundleQueryTest, ApplicationRecordFeedsUidSystemFlagAndCheckerBits)
{
    struct Case {
        bool asan, tsan, gwp, hwasan;
        unsigned char flags;
    };
    const Case cases[] = {{false, false, false, false, 0}, {true, false, false, false, 1},
                          {false, false, false, true, 8}, {true, true, true, true, 15}};
    for (const auto& c : cases) {
        app_.asanEnabled = c.asan, app_.tsanEnabled = c.tsan, app_.gwpAsanEnabled = c.gwp, app_.hwAsanEnabled = c.hwasan;
        EXPECT_CALL(**bms_, GetApplicationInfo(MAIL, GET_BASIC_APPLICATION_INFO, USER, _))
            .WillOnce(DoAll(SetArgReferee<3>(app_), Return(true)));
        unsigned char flags = 0xff;
        EXPECT_TRUE(PushBundleHelper::GetAppAnitizerFlag(MAIL, USER, flags).Succeed());
        EXPECT_EQ(flags, c.flags);
    }
    ApplicationInfo system;
    system.uid = 1000;
    system.isSystemApp = true;
    EXPECT_CALL(**bms_, GetApplicationInfo(MAIL, GET_BASIC_APPLICATION_INFO, USER, _))
        .WillOnce(DoAll(SetArgReferee<3>(system), Return(true)))
        .WillOnce(DoAll(SetArgReferee<3>(system), Return(true)))
        .WillRepeatedly(Return(false));
    EXPECT_TRUE(PushBundleHelper::GetAppUidForName(MAIL, USER, value_).Succeed());
    EXPECT_EQ(value_, 1000);
    EXPECT_TRUE(PushBundleHelper::IsSystemApp(MAIL, USER));
    EXPECT_FALSE(PushBundleHelper::IsSystemApp(MAIL, USER));
    EXPECT_TRUE(HasLine(cap_, "GetApplicationInfo fail, bundleName: com.example.mail, errInfo: "
                              "Get application info fail: error(1000900001)"));
    unsigned char flags = 0xff;
    EXPECT_EQ(PushBundleHelper::GetAppAnitizerFlag(MAIL, USER, flags).GetErr(), 1000900001);
    EXPECT_EQ(flags, 0);
    EXPECT_EQ(PushBundleHelper::GetAppUidForName(MAIL, USER, value_).GetErr(), 1000900001);
    EXPECT_TRUE(HasLine(cap_, "Get Application Info Fail"));
}

TEST_F(BundleQueryTest, AbilityLookupsBuildTheirWantAndTakeTheFirstAbility)
{
    struct Case {
        const char* name;
        std::function<PushBaseRsp(AbilityInfo&)> act;
        std::function<bool(const Want&)> wantIs;
    };
    const Case cases[] = {
        {"by action", [](auto& i) { return PushBundleHelper::GetAbilityByAction(MAIL, "kavo.action.compose", USER, i); },
         [](const Want& w) { return w.GetAction() == "kavo.action.compose"; }},
        {"by uri", [](auto& i) { return PushBundleHelper::GetAbilityByUri(MAIL, "mailto:", USER, i); },
         [](const Want& w) { return w.GetUriString() == "mailto:"; }},
        {"by name", [](auto& i) { return PushBundleHelper::GetAbilityByName(MAIL, "Compose", USER, i); },
         [](const Want& w) { return w.GetAbilityName() == "Compose"; }},
        {"main: home action and entity", [](auto& i) { return PushBundleHelper::GetMainAbility(MAIL, USER, i); },
         [](const Want& w) { return w.GetAction() == Want::ACTION_HOME && w.HasEntity(Want::ENTITY_HOME); }},
    };
    std::vector<AbilityInfo> two(2);
    two[0].name = "First";
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        auto wantIs = [&c](const Want& w) { return w.GetBundle() == MAIL && c.wantIs(w); };
        EXPECT_CALL(**bms_, QueryAbilityInfosV9(::testing::Truly(wantIs), 0, USER, _))
            .WillOnce(DoAll(SetArgReferee<3>(two), Return(0)))
            .WillOnce(Return(0))
            .WillOnce(Return(3));
        AbilityInfo info;
        EXPECT_TRUE(c.act(info).Succeed());
        EXPECT_EQ(info.name, "First");
        info.name = "kept";
        EXPECT_TRUE(c.act(info).Succeed()) << "an empty answer is still a success";
        EXPECT_EQ(c.act(info).GetErrDescription(), "Query ability infos failed:3");
        EXPECT_EQ(info.name, "kept");
        bms_->Verify();
    }
}

TEST_F(BundleQueryTest, ExtensionExistComparesOnlyTheFirstEntryOfTheAppIndex)
{
    auto ext = [](T type, int index) {
        ExtensionAbilityInfo e;
        e.type = type;
        e.appIndex = index;
        return e;
    };
    struct Case {
        const char* name;
        std::vector<ExtensionAbilityInfo> answer;
        int32_t code;
        int appIndex, err;
        std::string desc;
    };
    const Case cases[] = {
        {"first entry of the type", {ext(T::PUSH, 0)}, 0, 0, 0, ""},
        {"a match after another type does not count", {ext(T::SERVICE, 0), ext(T::PUSH, 0)}, 0, 0, 1000900002, ""},
        {"other clones' entries are dropped first", {ext(T::SERVICE, 1), ext(T::PUSH, 0)}, 0, 0, 0, ""},
        {"the clone's own entry", {ext(T::PUSH, 0), ext(T::PUSH, 2)}, 0, 2, 0, ""},
        {"nothing left for the clone", {ext(T::PUSH, 0)}, 0, 1, 1000900002, ""},
        {"a failed query carries its text", {}, 4, 0, 1000900002, "query extension fail:4"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_CALL(**bms_, QueryExtensionAbilityInfosV9(_, 0, USER, _))
            .WillOnce(DoAll(SetArgReferee<3>(c.answer), Return(c.code)));
        cap_.Clear();
        PushBaseRsp rsp = PushBundleHelper::ExtensionExist(Want(), USER, T::PUSH, c.appIndex);
        EXPECT_EQ(rsp.GetErr(), c.err);
        EXPECT_EQ(rsp.GetErrDescription(), c.desc);
        EXPECT_EQ(HasLine(cap_, "extensionInfos is invalid: " + c.desc), c.err != 0);
    }
}

TEST_F(BundleQueryTest, BrowserIsLookedUpForTheFirstForegroundAccount)
{
    struct Case {
        std::vector<Kavo::AccountSA::ForegroundOsAccount> foreground;
        int32_t foregroundCode, queryCode;  // queryCode -1: no query expected
        int err;
        std::string desc, log;
    };
    const Case cases[] = {
        {{}, 0, -1, 401, "Ids is empty, unable to get userId", "Ids is empty, unable to get userId"},
        {{}, 3, -1, 1000900001, "get foreground accountId failed 3", "GetForegroundOsAccounts check fail"},
        {{{101, 0}, {100, 0}}, 0, 8521221, 1000900001, "Query ability infos failed:8521221",
         "No available browsers ,errInfo : Query ability infos failed:8521221: error(1000900001)"},
        {{{101, 0}, {100, 0}}, 0, 0, 0, "", ""},
    };
    ScopedAccountService accounts{200};
    auto isBrowserWant = [](const Want& w) {
        return w.GetAction() == "kavo.want.action.viewData" && w.HasEntity("entity.system.browsable") &&
               w.GetUriString() == "https://" && w.GetBundle().empty();
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.desc);
        EXPECT_CALL(*accounts, GetForegroundOsAccounts(_))
            .WillOnce(DoAll(SetArgReferee<0>(c.foreground), Return(c.foregroundCode)));
        if (c.queryCode >= 0) {
            EXPECT_CALL(**bms_, QueryAbilityInfosV9(::testing::Truly(isBrowserWant), 0, 101, _))
                .WillOnce(Return(c.queryCode));
        }
        cap_.Clear();
        PushBaseRsp rsp = PushBundleHelper::IsBrowserAvailable();
        EXPECT_EQ(rsp.GetErr(), c.err);
        EXPECT_EQ(rsp.GetErrDescription(), c.desc);
        EXPECT_TRUE(c.log.empty() || HasLine(cap_, c.log));
    }
}

TEST(BundleTableTest, ExtensionTypeNamesAreExact)
{
    const std::pair<const char*, T> cases[] = {
        {"push", T::PUSH}, {"remoteNotification", T::REMOTE_NOTIFICATION}, {"remoteLocation", T::REMOTE_LOCATION},
        {"voip", T::VOIP}, {"service", T::SERVICE}, {"Push", T::UNSPECIFIED}, {"push ", T::UNSPECIFIED},
    };
    for (const auto& [name, type] : cases) {
        EXPECT_EQ(PushBundleHelper::GetExtensionAbilityType(name), type) << "'" << name << "'";
    }
    EXPECT_TRUE(PushBundleHelper::CheckIsNotClonedApp(0));
    EXPECT_FALSE(PushBundleHelper::CheckIsNotClonedApp(1));
    EXPECT_FALSE(PushBundleHelper::CheckIsNotClonedApp(-1));
}

TEST(NoBundleMgrTest, LookupFailsOnEachMissingPiece)
{
    ScopedReadiness readiness;
    Kavo::LogCapture cap;
    auto& samgr = Kavo::SystemAbilityManagerClient::GetInstance();
    auto foreign = Kavo::AsRemoteObject<IAppMgr>(Kavo::MakeSptr<MockAppMgr>());
    struct Case {
        std::function<void()> arrange, restore;
        std::string desc, log;
        int inner;
    };
    const Case cases[] = {
        {[&] { samgr.SetManagerAvailable(false); }, [&] { samgr.SetManagerAvailable(true); }, "get samgr fail",
         "get samgr fail", PushBaseRsp::NOT_SET},
        {[] {}, [] {}, "get bms fail: bms sa not started", "Get bms fail: bms sa not started", PushBaseRsp::NOT_SET},
        {[&] { readiness.Track(BUNDLE_ID, ScopedReadiness::Service::STOPPED); },
         [&] { readiness.Track(BUNDLE_ID, ScopedReadiness::Service::UNKNOWN); }, "get bms fail: bms sa not started",
         "Get bms fail: bms sa not started", Kavo::Push::INNER_ERR_SA_STOPPED},
        {[&] { samgr.AddSystemAbility(BUNDLE_ID, foreign); }, [&] { samgr.RemoveSystemAbility(BUNDLE_ID); },
         "IBundleMgr is null", "IBundleMgr is null", PushBaseRsp::NOT_SET},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.desc);
        cap.Clear();
        c.arrange();
        std::string name;
        PushBaseRsp rsp = PushBundleHelper::GetNameForUid(1, name);
        c.restore();
        EXPECT_EQ(rsp.GetErr(), 1000900001);
        EXPECT_EQ(rsp.GetErrDescription(), c.desc);
        EXPECT_EQ(rsp.GetInnerErr(), c.inner);
        EXPECT_TRUE(HasLine(cap, c.log));
    }
}

}  // namespace
}  // namespace KavoTest
