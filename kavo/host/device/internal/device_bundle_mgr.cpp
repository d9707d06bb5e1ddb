#include <algorithm>

#include "kavo/host/device/internal/device_services.h"

namespace Kavo::Host::internal {

namespace {

constexpr int32_t BUNDLE_SERVICE = Device::BUNDLE_SERVICE;

bool Contains(const std::vector<std::string>& list, const std::string& item)
{
    return std::find(list.begin(), list.end(), item) != list.end();
}

// An ability answers a want when every part the want names matches it.
bool Answers(const AbilityInfo& ability, const Want& want)
{
    if (!want.GetBundle().empty() && want.GetBundle() != ability.bundleName) {
        return false;
    }
    if (!want.GetAbilityName().empty() && want.GetAbilityName() != ability.name) {
        return false;
    }
    if (!want.GetAction().empty() && !Contains(ability.actions, want.GetAction())) {
        return false;
    }
    for (const auto& entity : want.GetEntities()) {
        if (!Contains(ability.entities, entity)) {
            return false;
        }
    }
    const std::string& uri = want.GetUriString();
    return uri.empty() || std::any_of(ability.uris.begin(), ability.uris.end(), [&uri](const std::string& prefix) {
               return uri.compare(0, prefix.size(), prefix) == 0;
           });
}

}  // namespace

ErrCode DeviceBundleMgr::QueryExtensions(const Want& want, const ExtensionAbilityType* type, int32_t userId,
                                         std::vector<ExtensionAbilityInfo>& infos)
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    if (state_->FindAccountLocked(userId) == nullptr) {
        return BUNDLE_INVALID_USER_ID;
    }
    const InstalledBundle* bundle = state_->FindBundleLocked(want.GetBundle());
    if (bundle == nullptr || !DeviceState::HasCloneLocked(*bundle, userId, 0)) {
        return BUNDLE_NOT_INSTALLED;
    }
    infos.clear();
    for (auto extension : bundle->extensions) {
        bool named = want.GetAbilityName().empty() || want.GetAbilityName() == extension.name;
        if (named && (type == nullptr || extension.type == *type) &&
            DeviceState::HasCloneLocked(*bundle, userId, extension.appIndex)) {
            extension.bundleName = bundle->name;
            extension.uid = DeviceState::UidLocked(*bundle, userId, extension.appIndex);
            infos.push_back(extension);
        }
    }
    return infos.empty() ? BUNDLE_ABILITY_NOT_FOUND : BUNDLE_OK;
}

ErrCode DeviceBundleMgr::FindExtensionAbilities(const Want& want, int32_t, int32_t userId,
                                                std::vector<ExtensionAbilityInfo>& infos)
{
    if (auto code = state_->TakeFault(BUNDLE_SERVICE, "FindExtensionAbilities")) {
        return *code;
    }
    return QueryExtensions(want, nullptr, userId, infos);
}

ErrCode DeviceBundleMgr::FindExtensionAbilities(const Want& want, ExtensionAbilityType type, int32_t, int32_t userId,
                                                std::vector<ExtensionAbilityInfo>& infos)
{
    if (auto code = state_->TakeFault(BUNDLE_SERVICE, "FindExtensionAbilities")) {
        return *code;
    }
    return QueryExtensions(want, &type, userId, infos);
}

ErrCode DeviceBundleMgr::FindAbilities(const Want& want, int32_t, int32_t userId, std::vector<AbilityInfo>& infos)
{
    if (auto code = state_->TakeFault(BUNDLE_SERVICE, "FindAbilities")) {
        return *code;
    }
    std::lock_guard<std::mutex> lock(state_->mutex);
    if (state_->FindAccountLocked(userId) == nullptr) {
        return BUNDLE_INVALID_USER_ID;
    }
    infos.clear();
    for (const auto& bundle : state_->bundles) {
        if (!DeviceState::HasCloneLocked(bundle, userId, 0)) {
            continue;
        }
        for (auto ability : bundle.abilities) {
            ability.bundleName = bundle.name;
            if (Answers(ability, want)) {
                ability.uid = DeviceState::UidLocked(bundle, userId, 0);
                infos.push_back(ability);
            }
        }
    }
    return infos.empty() ? BUNDLE_ABILITY_NOT_FOUND : BUNDLE_OK;
}

bool DeviceBundleMgr::QueryAbilityInfo(const Want& want, int32_t flags, int32_t userId, AbilityInfo& info)
{
    if (state_->TakeFault(BUNDLE_SERVICE, "QueryAbilityInfo")) {
        return false;
    }
    std::vector<AbilityInfo> infos;
    if (FindAbilities(want, flags, userId, infos) != BUNDLE_OK) {
        return false;
    }
    info = infos.front();
    return true;
}

bool DeviceBundleMgr::GetApplicationInfo(const std::string& bundleName, ApplicationFlag, int32_t userId,
                                         ApplicationInfo& info)
{
    if (state_->TakeFault(BUNDLE_SERVICE, "GetApplicationInfo")) {
        return false;
    }
    BundleInfo bundle;
    if (FillBundleInfo(bundleName, 0, userId, bundle) != BUNDLE_OK) {
        return false;
    }
    info = bundle.applicationInfo;
    return true;
}

ErrCode DeviceBundleMgr::GetNameForUid(int32_t uid, std::string& bundleName)
{
    if (auto code = state_->TakeFault(BUNDLE_SERVICE, "GetNameForUid")) {
        return *code;
    }
    std::lock_guard<std::mutex> lock(state_->mutex);
    int32_t appIndex = 0;
    const InstalledBundle* bundle = state_->BundleOfUidLocked(uid, appIndex);
    if (bundle == nullptr) {
        return BUNDLE_INVALID_UID;
    }
    bundleName = bundle->name;
    return BUNDLE_OK;
}

int32_t DeviceBundleMgr::GetUidByBundleName(const std::string& bundleName, int32_t userId, int32_t appIndex)
{
    if (auto code = state_->TakeFault(BUNDLE_SERVICE, "GetUidByBundleName")) {
        return *code;
    }
    std::lock_guard<std::mutex> lock(state_->mutex);
    const InstalledBundle* bundle = state_->FindBundleLocked(bundleName);
    return bundle == nullptr ? INVALID_UID : DeviceState::UidLocked(*bundle, userId, appIndex);
}

ErrCode DeviceBundleMgr::FillBundleInfo(const std::string& bundleName, int32_t appIndex, int32_t userId,
                                        BundleInfo& info)
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    if (state_->FindAccountLocked(userId) == nullptr) {
        return BUNDLE_INVALID_USER_ID;
    }
    const InstalledBundle* bundle = state_->FindBundleLocked(bundleName);
    if (bundle == nullptr || !DeviceState::HasCloneLocked(*bundle, userId, 0)) {
        return BUNDLE_NOT_INSTALLED;
    }
    if (!DeviceState::HasCloneLocked(*bundle, userId, appIndex)) {
        return BUNDLE_CLONE_NOT_FOUND;
    }
    info = BundleInfo();
    info.name = bundle->name;
    info.uid = DeviceState::UidLocked(*bundle, userId, appIndex);
    info.appIndex = appIndex;
    info.userIds = bundle->userIds;
    ApplicationInfo& app = info.applicationInfo;
    app.name = bundle->name;
    app.bundleName = bundle->name;
    app.uid = info.uid;
    app.appIndex = appIndex;
    app.isSystemApp = bundle->isSystemApp;
    app.asanEnabled = bundle->asanEnabled;
    app.tsanEnabled = bundle->tsanEnabled;
    app.gwpAsanEnabled = bundle->gwpAsanEnabled;
    app.hwAsanEnabled = bundle->hwAsanEnabled;
    info.abilityInfos = bundle->abilities;
    for (const auto& extension : bundle->extensions) {
        if (extension.appIndex == appIndex) {
            info.extensionInfos.push_back(extension);
        }
    }
    return BUNDLE_OK;
}

ErrCode DeviceBundleMgr::GetBundleInfoV9(const std::string& bundleName, int32_t, BundleInfo& info, int32_t userId)
{
    if (auto code = state_->TakeFault(BUNDLE_SERVICE, "GetBundleInfoV9")) {
        return *code;
    }
    return FillBundleInfo(bundleName, 0, userId, info);
}

ErrCode DeviceBundleMgr::GetCloneRecord(const std::string& bundleName, int32_t, int32_t appIndex, BundleInfo& info,
                                        int32_t userId)
{
    if (auto code = state_->TakeFault(BUNDLE_SERVICE, "GetCloneRecord")) {
        return *code;
    }
    return FillBundleInfo(bundleName, appIndex, userId, info);
}

ErrCode DeviceBundleMgr::GetBundleNameAndCloneIndex(int32_t uid, std::string& bundleName, int32_t& appIndex)
{
    if (auto code = state_->TakeFault(BUNDLE_SERVICE, "GetBundleNameAndCloneIndex")) {
        return *code;
    }
    std::lock_guard<std::mutex> lock(state_->mutex);
    int32_t index = 0;
    const InstalledBundle* bundle = state_->BundleOfUidLocked(uid, index);
    if (bundle == nullptr) {
        return BUNDLE_INVALID_UID;
    }
    bundleName = bundle->name;
    appIndex = index;
    return BUNDLE_OK;
}

ErrCode DeviceBundleMgr::CheckBundleInstalled(const std::string& bundleName, int32_t userId, int32_t appIndex,
                                              bool& isInstalled)
{
    if (auto code = state_->TakeFault(BUNDLE_SERVICE, "CheckBundleInstalled")) {
        return *code;
    }
    std::lock_guard<std::mutex> lock(state_->mutex);
    if (state_->FindAccountLocked(userId) == nullptr) {
        return BUNDLE_INVALID_USER_ID;
    }
    const InstalledBundle* bundle = state_->FindBundleLocked(bundleName);
    isInstalled = bundle != nullptr && DeviceState::HasCloneLocked(*bundle, userId, appIndex);
    return BUNDLE_OK;
}

}  // namespace Kavo::Host::internal
