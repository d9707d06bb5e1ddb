#include "kavo/push/model/subscribe_notification_setting.h"

#include <new>

#include "kavo/push/model/internal/record_failure.h"
#include "kavo/push/model/internal/record_parts.h"

namespace Kavo::Push {

using internal::Fail;

bool SubscribeNotificationSetting::Marshalling(Parcel& parcel) const
{
    const bool hasEnabled = enabled_ != nullptr;
    if (!parcel.WriteUint64(hasEnabled ? ENABLED_FLAG : 0)) {
        return Fail("SubscribeNotificationSetting::Marshalling: Write Flags Error");
    }
    if (!parcel.WriteString(bundleName_)) {
        return Fail("SubscribeNotificationSetting::Marshalling: Write BundleName Error");
    }
    if (hasEnabled && !parcel.WriteBool(*enabled_)) {
        return Fail("SubscribeNotificationSetting::Marshalling: Write Enabled Error");
    }
    return true;
}

bool SubscribeNotificationSetting::ReadFromParcel(Parcel& parcel)
{
    // Bits 1 to 63 belong to no part and are ignored.
    const uint64_t flags = parcel.ReadUint64();
    if (!parcel.ReadString(bundleName_)) {
        return Fail("SubscribeNotificationSetting: Read BundleName Error");
    }
    if ((flags & ENABLED_FLAG) != 0) {
        enabled_ = std::make_shared<bool>(parcel.ReadBool());
    }
    return true;
}

sptr<SubscribeNotificationSetting> SubscribeNotificationSetting::Unmarshalling(Parcel& parcel)
{
    return internal::ConstructThenFill<SubscribeNotificationSetting>(parcel, internal::LogAndReport,
                                                                     "New SubscribeNotificationSetting error");
}

bool SubscribeNotificationSetting::operator==(const SubscribeNotificationSetting& other) const
{
    return bundleName_ == other.bundleName_ && internal::OptionalEqual(enabled_, other.enabled_);
}

bool SubscribeNotificationBasicSetting::Marshalling(Parcel& parcel) const
{
    if (!parcel.WriteBool(enabled_)) {
        return Fail("SubscribeNotificationBasicSetting: Marshal Failed");
    }
    return true;
}

sptr<SubscribeNotificationBasicSetting> SubscribeNotificationBasicSetting::Unmarshalling(Parcel& parcel)
{
    auto* setting = new (std::nothrow) SubscribeNotificationBasicSetting;
    if (setting == nullptr) {
        return Fail("New SubscribeNotificationBasicSetting error");
    }
    if (!parcel.ReadBool(setting->enabled_)) {
        delete setting;
        return Fail("SubscribeNotificationBasicSetting unmarshalling error");
    }
    return sptr<SubscribeNotificationBasicSetting>(setting);
}

}  // namespace Kavo::Push
