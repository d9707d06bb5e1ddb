// Records of the package (bundle) manager: installed bundles, their application records,
// abilities and extension abilities, and the kinds and flags the queries take. Plain values;
// not safe for concurrent mutation.
#ifndef KAVO_HOST_BUNDLE_BUNDLE_INFO_H
#define KAVO_HOST_BUNDLE_BUNDLE_INFO_H

#include <cstdint>
#include <string>
#include <vector>

namespace Kavo::AppExecFwk {

enum class ExtensionAbilityType : int32_t {
    SERVICE = 3,
    PUSH = 17,
    REMOTE_NOTIFICATION = 260,
    REMOTE_LOCATION = 261,
    VOIP = 262,
    UNSPECIFIED = 255,
};

enum ApplicationFlag : int32_t {
    APPLICATION_INFO_BASIC = 0x00000000,
    APPLICATION_INFO_WITH_PERMISSIONS = 0x00000008,
    APPLICATION_INFO_WITH_METADATA = 0x00000040,
};

// Flags of the bundle-record queries.
enum BundleInfoFlag : int32_t {
    BUNDLE_INFO_DEFAULT = 0x00000000,
    BUNDLE_INFO_WITH_APPLICATION = 0x00000001,
};

// Return codes of the bundle manager.
constexpr int32_t BUNDLE_OK = 0;
constexpr int32_t BUNDLE_INVALID_USER_ID = 8521217;
constexpr int32_t BUNDLE_NOT_INSTALLED = 8521220;
constexpr int32_t BUNDLE_ABILITY_NOT_FOUND = 8521221;
constexpr int32_t BUNDLE_INVALID_UID = 8521225;
constexpr int32_t BUNDLE_CLONE_NOT_FOUND = 8521290;
// The uid answered for a bundle the manager does not know.
constexpr int32_t INVALID_UID = -1;

struct ApplicationInfo {
    std::string name;
    std::string bundleName;
    int32_t uid = INVALID_UID;
    int32_t appIndex = 0;
    bool isSystemApp = false;
    // The four memory and thread checker switches, in the platform's order.
    bool asanEnabled = false;
    bool tsanEnabled = false;
    bool gwpAsanEnabled = false;
    bool hwAsanEnabled = false;
};

struct AbilityInfo {
    std::string name;
    std::string bundleName;
    std::string moduleName;
    // What the ability answers to: actions, entities and URI prefixes ("https://").
    std::vector<std::string> actions;
    std::vector<std::string> entities;
    std::vector<std::string> uris;
    int32_t uid = INVALID_UID;
    int32_t appIndex = 0;
};

struct ExtensionAbilityInfo {
    std::string name;
    std::string bundleName;
    std::string moduleName;
    ExtensionAbilityType type = ExtensionAbilityType::UNSPECIFIED;
    int32_t uid = INVALID_UID;
    int32_t appIndex = 0;
};

struct BundleInfo {
    std::string name;
    int32_t uid = INVALID_UID;
    int32_t appIndex = 0;
    std::vector<int32_t> userIds;
    ApplicationInfo applicationInfo;
    std::vector<AbilityInfo> abilityInfos;
    std::vector<ExtensionAbilityInfo> extensionInfos;
};

}  // namespace Kavo::AppExecFwk

#endif  // KAVO_HOST_BUNDLE_BUNDLE_INFO_H
