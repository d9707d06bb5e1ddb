// GoogleMock services of the platform, each registered under its system ability id for the scope,
// a recorder of analytics events (all sent on the calling thread) and a readiness registry reset
// around each test.
#ifndef KAVO_TESTS_PUSH_PLATFORM_PLATFORM_MOCKS_H
#define KAVO_TESTS_PUSH_PLATFORM_PLATFORM_MOCKS_H

#include <gmock/gmock.h>

#include <algorithm>
#include <mutex>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "kavo/host/account/iaccount_service.h"
#include "kavo/host/appmgr/iapp_mgr.h"
#include "kavo/host/bundle/ibundle_mgr.h"
#include "kavo/host/log/log.h"
#include "kavo/host/samgr/system_ability_manager.h"
#include "kavo/host/time/time_service_client.h"
#include "kavo/push/common/system_ability_status_service.h"
#include "kavo/push/event/teldric_helper.h"
#include "tests/support/test_support.h"

namespace KavoTest {

using namespace Kavo::AppExecFwk;
using Kavo::AAFwk::Want;
using ::testing::_;
using ::testing::DoAll;
using ::testing::Return;
using ::testing::SetArgReferee;

// Whether `cap` holds the line `text` at `level`: nearly every line of the queries is an error line.
inline bool HasLine(const Kavo::LogCapture& cap, const std::string& text, Kavo::LogLevel level = Kavo::LEVEL_ERROR)
{
    const auto lines = cap.Lines();
    return std::any_of(lines.begin(), lines.end(),
                       [&](const Kavo::LogLine& line) { return line.level == level && line.text == text; });
}

class MockBundleMgr : public IBundleMgr {
public:
    MOCK_METHOD(ErrCode, FindExtensionAbilities, (const Want&, int32_t, int32_t, std::vector<ExtensionAbilityInfo>&),
                (override));
    MOCK_METHOD(ErrCode, FindExtensionAbilities,
                (const Want&, ExtensionAbilityType, int32_t, int32_t, std::vector<ExtensionAbilityInfo>&), (override));
    MOCK_METHOD(ErrCode, FindAbilities, (const Want&, int32_t, int32_t, std::vector<AbilityInfo>&), (override));
    MOCK_METHOD(bool, QueryAbilityInfo, (const Want&, int32_t, int32_t, AbilityInfo&), (override));
    MOCK_METHOD(bool, GetApplicationInfo, (const std::string&, ApplicationFlag, int32_t, ApplicationInfo&), (override));
    MOCK_METHOD(ErrCode, GetNameForUid, (int32_t, std::string&), (override));
    MOCK_METHOD(int32_t, GetUidByBundleName, (const std::string&, int32_t, int32_t), (override));
    MOCK_METHOD(ErrCode, GetBundleInfoV9, (const std::string&, int32_t, BundleInfo&, int32_t), (override));
    MOCK_METHOD(ErrCode, GetCloneRecord, (const std::string&, int32_t, int32_t, BundleInfo&, int32_t), (override));
    MOCK_METHOD(ErrCode, GetBundleNameAndCloneIndex, (int32_t, std::string&, int32_t&), (override));
    MOCK_METHOD(ErrCode, CheckBundleInstalled, (const std::string&, int32_t, int32_t, bool&), (override));
};

class MockAppMgr : public IAppMgr {
public:
    MOCK_METHOD(int32_t, ListRunningProcesses, (const std::string&, int32_t, std::vector<RunningProcessInfo>&),
                (override));
};

class MockAccountService : public Kavo::AccountSA::IAccountService {
public:
    using ErrCode = Kavo::AccountSA::ErrCode;
    MOCK_METHOD(ErrCode, QueryActiveOsAccountIds, (std::vector<int32_t>&), (override));
    MOCK_METHOD(ErrCode, GetOsAccountLocalIdFromUid, (int32_t, int32_t&), (override));
    MOCK_METHOD(ErrCode, GetOsAccountLocalIdFromProcess, (int32_t&), (override));
    MOCK_METHOD(ErrCode, GetForegroundOsAccounts, (std::vector<Kavo::AccountSA::ForegroundOsAccount>&), (override));
    MOCK_METHOD(ErrCode, GetForegroundOsAccountLocalId, (int32_t&), (override));
    MOCK_METHOD(ErrCode, IsOsAccountVerified, (int32_t, bool&), (override));
    MOCK_METHOD(ErrCode, GetKavoAccountInfo, (Kavo::AccountSA::KavoAccountInfo&), (override));
};

class MockTimeService : public Kavo::MiscServices::ITimeService {
public:
    MOCK_METHOD(uint64_t, CreateTimer, (std::shared_ptr<Kavo::MiscServices::ITimerInfo>), (override));
    MOCK_METHOD(bool, StartTimer, (uint64_t, uint64_t), (override));
    MOCK_METHOD(bool, StopTimer, (uint64_t), (override));
    MOCK_METHOD(bool, DestroyTimer, (uint64_t), (override));
};

// A strict mock of interface I registered under `id` for the scope.
template <typename Mock, typename I>
class ScopedMockService {
public:
    explicit ScopedMockService(int32_t id) : id_(id), mock_(Kavo::MakeSptr<::testing::StrictMock<Mock>>())
    {
        Kavo::SystemAbilityManagerClient::GetInstance().AddSystemAbility(
            id_, Kavo::AsRemoteObject<I>(Kavo::sptr<I>(mock_.GetRefPtr())));
    }
    ~ScopedMockService() { Kavo::SystemAbilityManagerClient::GetInstance().RemoveSystemAbility(id_); }
    ::testing::StrictMock<Mock>& operator*() { return *mock_; }

private:
    int32_t id_;
    Kavo::sptr<::testing::StrictMock<Mock>> mock_;
};

using ScopedBundleMgr = ScopedMockService<MockBundleMgr, IBundleMgr>;
using ScopedAppMgr = ScopedMockService<MockAppMgr, IAppMgr>;
using ScopedAccountService = ScopedMockService<MockAccountService, Kavo::AccountSA::IAccountService>;
using ScopedTimeService = ScopedMockService<MockTimeService, Kavo::MiscServices::ITimeService>;

using Events = std::vector<std::tuple<int, std::string, int, std::string>>;  // component, api, status, detail

// Installs an analytics event hook for its lifetime; Take() hands over what came since the last Take().
class EventRecorder {
public:
    EventRecorder()
    {
        Kavo::Push::TeldricHelper::RegisterAddEventMethod(
            [this](auto c, const auto& api, auto s, const auto& d) { events_.emplace_back(c, api, s, d); });
    }
    ~EventRecorder() { Kavo::Push::TeldricHelper::RegisterAddEventMethod(nullptr); }
    Events Take() { return std::exchange(events_, {}); }

private:
    Events events_;
};

// The readiness registry, empty (every service UNKNOWN: no waiting) for the scope unless a test
// tracks services; a wait lasts whole seconds.
class ScopedReadiness {
public:
    using Service = Kavo::Push::SystemAbilityStatusService;
    ScopedReadiness() { Clear(); }
    ~ScopedReadiness() { Clear(); }
    void Track(int id, Service::Status status)
    {
        Service::SetStatus(Service::ANCHOR_ABILITY_ID, Service::STARTED);
        Service::SetStatus(id, status);
    }

private:
    static void Clear()
    {
        std::lock_guard<std::recursive_mutex> lock(Service::mutex);
        Service::saStatuss.clear();
    }
};

}  // namespace KavoTest

#endif  // KAVO_TESTS_PUSH_PLATFORM_PLATFORM_MOCKS_H
