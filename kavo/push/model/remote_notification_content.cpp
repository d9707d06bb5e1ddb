#include "kavo/push/model/remote_notification_content.h"

#include <new>

#include "kavo/push/model/internal/record_failure.h"
#include "kavo/push/model/internal/record_parts.h"

namespace Kavo::Push {

using internal::Fail;
using internal::FailUnreported;

using internal::SharedTake;

void RemoteNotificationContent::SetContentStateInfo(std::bitset<CONTENT_BIT_COUNT>& flags) const
{
    flags.set(TITLE_BIT, title_ != nullptr);
    flags.set(TEXT_BIT, text_ != nullptr);
    flags.set(OVERLAY_ICON_BIT, overlayIcon_ != nullptr);
    flags.set(BADGE_NUMBER_BIT, badgeNumber_ != nullptr);
    flags.set(SET_BADGE_NUMBER_BIT, setBadgeNumber_ != nullptr);
    flags.set(WANT_AGENT_BIT, wantAgent_ != nullptr);
    flags.set(MSG_TIME_POINTS_BIT, msgTimePoints_ != nullptr);
}

bool RemoteNotificationContent::Marshalling(Parcel& parcel) const
{
    std::bitset<CONTENT_BIT_COUNT> flags;
    SetContentStateInfo(flags);
    if (!parcel.WriteUint64(flags.to_ullong())) {
        return Fail("RemoteNotificationContent::Marshalling: Write Flags Error");
    }
    if (!WriteParts(parcel)) {
        return false;
    }
    // The time points' failure is logged only, not reported; kept as it is.
    if (msgTimePoints_ != nullptr && !parcel.WriteParcelable(msgTimePoints_.get())) {
        return FailUnreported("Write msg time points info error");
    }
    return true;
}

bool RemoteNotificationContent::WriteParts(Parcel& parcel) const
{
    if (title_ != nullptr && !parcel.WriteString(*title_)) {
        return Fail("RemoteNotificationContent::Marshalling: Write Title Error");
    }
    if (text_ != nullptr && !parcel.WriteString(*text_)) {
        return Fail("RemoteNotificationContent::Marshalling: Write Text Error");
    }
    if (overlayIcon_ != nullptr && !parcel.WriteParcelable(overlayIcon_.get())) {
        return Fail("RemoteNotificationContent::Marshalling: Write OverlayIcon Error");
    }
    if (badgeNumber_ != nullptr && !parcel.WriteInt64(*badgeNumber_)) {
        return Fail("RemoteNotificationContent::Marshalling: Write BadgeNumber Error");
    }
    if (setBadgeNumber_ != nullptr && !parcel.WriteInt64(*setBadgeNumber_)) {
        return Fail("RemoteNotificationContent::Marshalling: Write SetBadgeNumber Error");
    }
    if (wantAgent_ != nullptr && !parcel.WriteParcelable(wantAgent_.get())) {
        return Fail("Write wantAgent error");
    }
    return true;
}

bool RemoteNotificationContent::ReadFromParcel(Parcel& parcel)
{
    // Bits 7 to 63 belong to no part and are ignored.
    const std::bitset<CONTENT_BIT_COUNT> flags(parcel.ReadUint64());
    if (flags[TITLE_BIT]) {
        title_ = std::make_shared<std::string>(parcel.ReadString());
    }
    if (flags[TEXT_BIT]) {
        text_ = std::make_shared<std::string>(parcel.ReadString());
    }
    if (flags[OVERLAY_ICON_BIT] && !ReadOverlayIcon(parcel)) {
        return false;
    }
    if (flags[BADGE_NUMBER_BIT]) {
        badgeNumber_ = std::make_shared<long>(parcel.ReadInt64());
    }
    if (flags[SET_BADGE_NUMBER_BIT]) {
        setBadgeNumber_ = std::make_shared<long>(parcel.ReadInt64());
    }
    if (flags[WANT_AGENT_BIT] && !ReadWantAgent(parcel)) {
        return false;
    }
    if (flags[MSG_TIME_POINTS_BIT] && !ReadMsgTimePoints(parcel)) {
        return false;
    }
    return true;
}

bool RemoteNotificationContent::ReadOverlayIcon(Parcel& parcel)
{
    overlayIcon_ = parcel.ReadInt32() != 0 ? Media::PixelMap::UnmarshallingShared(parcel) : nullptr;
    if (overlayIcon_ == nullptr) {
        return Fail("overlayIcon_ is Null");
    }
    return true;
}

bool RemoteNotificationContent::ReadWantAgent(Parcel& parcel)
{
    sptr<RemoteWantAgent> agent = parcel.ReadStrongParcelable<RemoteWantAgent>();
    if (agent == nullptr) {
        return Fail("Read RemoteWantAgent Error");
    }
    wantAgent_ = SharedTake(*agent);
    if (wantAgent_ == nullptr) {
        return Fail("New RemoteWantAgent Error");
    }
    return true;
}

bool RemoteNotificationContent::ReadMsgTimePoints(Parcel& parcel)
{
    sptr<MsgTimePoints> points = parcel.ReadStrongParcelable<MsgTimePoints>();
    if (points == nullptr) {
        return FailUnreported("Read MsgTimePoints error");
    }
    msgTimePoints_ = SharedTake(*points);
    if (msgTimePoints_ == nullptr) {
        return FailUnreported("New MsgTimePoints error");
    }
    return true;
}

sptr<RemoteNotificationContent> RemoteNotificationContent::Unmarshalling(Parcel& parcel)
{
    return internal::ConstructThenFill<RemoteNotificationContent>(parcel, internal::LogAndReport,
                                                                  "RemoteNotificationContent Unmarshalling Error");
}

bool RemoteNotificationContent::operator==(const RemoteNotificationContent& other) const
{
    using internal::OptionalEqual;
    return OptionalEqual(title_, other.title_) && OptionalEqual(text_, other.text_) &&
           OptionalEqual(overlayIcon_, other.overlayIcon_) && OptionalEqual(badgeNumber_, other.badgeNumber_) &&
           OptionalEqual(setBadgeNumber_, other.setBadgeNumber_) && OptionalEqual(wantAgent_, other.wantAgent_) &&
           contentSize_ == other.contentSize_ && OptionalEqual(msgTimePoints_, other.msgTimePoints_);
}

}  // namespace Kavo::Push
