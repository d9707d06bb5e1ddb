// GoogleMock services of the platform and the fixtures the platform suites share: a mock
// registered under its system ability id for the scope, a recorder of analytics events, and a
// readiness registry reset around each test.
#ifndef KAVO_TESTS_PUSH_PLATFORM_PLATFORM_MOCKS_H
#define KAVO_TESTS_PUSH_PLATFORM_PLATFORM_MOCKS_H

#include <gmock/gmock.h>

#include <algorithm>
#include <mutex>
#include <string>
#include <tuple>
#include <vector>

#include "kavo/host/account/iaccount_service.h"
#include "kavo/host/appmgr/iapp_mgr.h"
#include "kavo/host/bundle/ibundle_mgr.h"
#include "kavo/host/log/log.h"
#include "kavo/host/samgr/system_ability_manager.h"
#include "kavo/host/time/time_service_client.h"
#include "kavo/push/common/system_ability_status_service.h"
#include "kavo/push/event/teldric_helper.h"

namespace KavoTest {

// Whether the capture holds a line with exactly this text.
inline bool HasLine(const Kavo::LogCapture& cap, const std::string& text)
{
    const auto texts = cap.Texts();
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

using namespace Kavo::AppExecFwk;
using Kavo::AAFwk::Want;

class MockBundleMgr : public IBundleMgr {
public:
    MOCK_METHOD(ErrCode, QueryExtensionAbilityInfosV9,
                (const Want&, int32_t, int32_t, std::vector<ExtensionAbilityInfo>&), (override));
    MOCK_METHOD(ErrCode, QueryExtensionAbilityInfosV9,
                (const Want&, ExtensionAbilityType, int32_t, int32_t, std::vector<ExtensionAbilityInfo>&), (override));
    MOCK_METHOD(ErrCode, QueryAbilityInfosV9, (const Want&, int32_t, int32_t, std::vector<AbilityInfo>&), (override));
    MOCK_METHOD(bool, QueryAbilityInfo, (const Want&, int32_t, int32_t, AbilityInfo&), (override));
    MOCK_METHOD(bool, GetApplicationInfo, (const std::string&, ApplicationFlag, int32_t, ApplicationInfo&), (override));
    MOCK_METHOD(ErrCode, GetNameForUid, (int32_t, std::string&), (override));
    MOCK_METHOD(int32_t, GetUidByBundleName, (const std::string&, int32_t, int32_t), (override));
    MOCK_METHOD(ErrCode, GetBundleInfoV9, (const std::string&, int32_t, BundleInfo&, int32_t), (override));
    MOCK_METHOD(ErrCode, GetCloneBundleInfo, (const std::string&, int32_t, int32_t, BundleInfo&, int32_t), (override));
    MOCK_METHOD(ErrCode, GetNameAndIndexForUid, (int32_t, std::string&, int32_t&), (override));
    MOCK_METHOD(ErrCode, IsBundleInstalled, (const std::string&, int32_t, int32_t, bool&), (override));
};

class MockAppMgr : public IAppMgr {
public:
    MOCK_METHOD(int32_t, GetRunningProcessInformation, (const std::string&, int32_t, std::vector<RunningProcessInfo>&),
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
    ScopedMockService(const ScopedMockService&) = delete;
    ScopedMockService& operator=(const ScopedMockService&) = delete;

    ::testing::StrictMock<Mock>& operator*() { return *mock_; }
    ::testing::StrictMock<Mock>* operator->() { return mock_.GetRefPtr(); }

private:
    int32_t id_;
    Kavo::sptr<::testing::StrictMock<Mock>> mock_;
};

using ScopedBundleMgr = ScopedMockService<MockBundleMgr, IBundleMgr>;
using ScopedAppMgr = ScopedMockService<MockAppMgr, IAppMgr>;
using ScopedAccountService = ScopedMockService<MockAccountService, Kavo::AccountSA::IAccountService>;
using ScopedTimeService = ScopedMockService<MockTimeService, Kavo::MiscServices::ITimeService>;

// One analytics event as the push service's hook receives it.
struct AnalyticsEvent {
    int component;
    std::string apiName;
    int status;
    std::string detail;
    bool operator==(const AnalyticsEvent& o) const
    {
        return std::tie(component, apiName, status, detail) == std::tie(o.component, o.apiName, o.status, o.detail);
    }
};

inline std::ostream& operator<<(std::ostream& os, const AnalyticsEvent& e)
{
    return os << "{" << e.component << ", " << e.apiName << ", " << e.status << ", " << e.detail << "}";
}

// Installs an analytics event hook for its lifetime and records every event.
class EventRecorder {
public:
    EventRecorder()
    {
        Kavo::Push::TeldricHelper::RegisterAddEventMethod([this](Kavo::Push::ComponentCode c, const std::string& api,
                                                                 Kavo::Push::ApiStatusCode s, const std::string& d) {
            std::lock_guard<std::mutex> lock(mutex_);
            events_.push_back({c, api, s, d});
        });
    }
    ~EventRecorder() { Kavo::Push::TeldricHelper::RegisterAddEventMethod(nullptr); }
    EventRecorder(const EventRecorder&) = delete;
    EventRecorder& operator=(const EventRecorder&) = delete;

    std::vector<AnalyticsEvent> Events() const
    {
        std::lock_guard<std::mutex> lock(mutex_);
        return events_;
    }

private:
    mutable std::mutex mutex_;
    std::vector<AnalyticsEvent> events_;
};

// The readiness registry of platform services, empty (every service UNKNOWN: no waiting) for
// the scope unless a test marks services, and a short poll so that waits stay fast.
class ScopedReadiness {
public:
    using Service = Kavo::Push::SystemAbilityStatusService;
    static constexpr int POLL_MS = 5;

    ScopedReadiness()
    {
        Clear();
        Service::SetPollIntervalForTesting(POLL_MS);
    }
    ~ScopedReadiness() { Clear(); }
    ScopedReadiness(const ScopedReadiness&) = delete;
    ScopedReadiness& operator=(const ScopedReadiness&) = delete;

    // Services now answer STARTED or STOPPED (instead of UNKNOWN).
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
