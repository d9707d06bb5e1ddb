// The subscription settings an application exchanges with the push service:
// SubscribeNotificationSetting (a package name and an optional switch) and
// SubscribeNotificationBasicSetting (the switch alone). Plain values; not safe for concurrent
// mutation.
#ifndef KAVO_PUSH_MODEL_SUBSCRIBE_NOTIFICATION_SETTING_H
#define KAVO_PUSH_MODEL_SUBSCRIBE_NOTIFICATION_SETTING_H

#include <cstdint>
#include <memory>
#include <string>

#include "kavo/host/ipc/parcel.h"
#include "kavo/host/ipc/parcelable.h"
#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT SubscribeNotificationSetting : public Parcelable {
public:
    // Bit of the flags word set when the switch is present.
    static constexpr uint64_t ENABLED_FLAG = 1;

    SubscribeNotificationSetting() = default;
    ~SubscribeNotificationSetting() override = default;

    std::string GetBundleName() const { return bundleName_; }
    void SetBundleName(const std::string& bundleName) { bundleName_ = bundleName; }
    // Null when the switch was never set, which differs from a switch set to false.
    std::shared_ptr<bool> GetEnabled() const { return enabled_; }
    void SetEnabled(const std::shared_ptr<bool>& enabled) { enabled_ = enabled; }

    // The flags word, the package name, then the switch when it is set.
    bool Marshalling(Parcel& parcel) const override;
    static sptr<SubscribeNotificationSetting> Unmarshalling(Parcel& parcel);
    // The flags word and the switch are read leniently (a short parcel gives 0 and false).
    bool ReadFromParcel(Parcel& parcel);

    bool operator==(const SubscribeNotificationSetting& other) const;
    bool operator!=(const SubscribeNotificationSetting& other) const { return !(*this == other); }

private:
    std::string bundleName_;
    std::shared_ptr<bool> enabled_;
};

class KAVO_PUSH_EXPORT SubscribeNotificationBasicSetting : public Parcelable {
public:
    SubscribeNotificationBasicSetting() = default;
    ~SubscribeNotificationBasicSetting() override = default;

    bool IsEnabled() const { return enabled_; }
    void SetEnabled(const bool& enabled) { enabled_ = enabled; }

    // The switch alone, as one boolean.
    bool Marshalling(Parcel& parcel) const override;
    static sptr<SubscribeNotificationBasicSetting> Unmarshalling(Parcel& parcel);

    bool operator==(const SubscribeNotificationBasicSetting& other) const { return enabled_ == other.enabled_; }
    bool operator!=(const SubscribeNotificationBasicSetting& other) const { return !(*this == other); }

private:
    bool enabled_ = false;
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_MODEL_SUBSCRIBE_NOTIFICATION_SETTING_H
