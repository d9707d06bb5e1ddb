// RemoteNotificationContent: the body of a notification that an application's extension hands
// back for a remote notification. Every part is optional (a null pointer is absent) and the
// parcel form opens with a flags word saying which parts follow. The measured content size
// never travels: a content read from a parcel has size 0. Copies share the parts.
// Not safe for concurrent mutation; share it only once filled.
#ifndef KAVO_PUSH_MODEL_REMOTE_NOTIFICATION_CONTENT_H
#define KAVO_PUSH_MODEL_REMOTE_NOTIFICATION_CONTENT_H

#include <bitset>
#include <memory>
#include <string>

#include "kavo/host/ipc/parcel.h"
#include "kavo/host/ipc/parcelable.h"
#include "kavo/host/media/pixel_map.h"
#include "kavo/push/common/push_export.h"
#include "kavo/push/model/msg_time_points.h"
#include "kavo/push/model/remote_want_agent.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT RemoteNotificationContent : public Parcelable {
public:
    // Bits of the flags word, one per optional part, in the order the parts follow it.
    enum ContentBit : size_t {
        TITLE_BIT = 0,
        TEXT_BIT = 1,
        OVERLAY_ICON_BIT = 2,
        BADGE_NUMBER_BIT = 3,
        SET_BADGE_NUMBER_BIT = 4,
        WANT_AGENT_BIT = 5,
        MSG_TIME_POINTS_BIT = 6,
        CONTENT_BIT_COUNT = 7,
    };

    RemoteNotificationContent() = default;
    RemoteNotificationContent(const RemoteNotificationContent&) = default;
    RemoteNotificationContent(RemoteNotificationContent&&) noexcept = default;
    RemoteNotificationContent& operator=(const RemoteNotificationContent&) = default;
    RemoteNotificationContent& operator=(RemoteNotificationContent&&) noexcept = default;
    ~RemoteNotificationContent() override = default;

    std::shared_ptr<std::string> GetTitle() const { return title_; }
    void SetTitle(const std::shared_ptr<std::string>& title) { title_ = title; }
    std::shared_ptr<std::string> GetText() const { return text_; }
    void SetText(const std::shared_ptr<std::string>& text) { text_ = text; }
    std::shared_ptr<Media::PixelMap> GetOverlayIcon() const { return overlayIcon_; }
    void SetOverlayIcon(const std::shared_ptr<Media::PixelMap>& overlayIcon) { overlayIcon_ = overlayIcon; }
    std::shared_ptr<long> GetBadgeNumber() const { return badgeNumber_; }
    void SetBadgeNumber(const std::shared_ptr<long>& badgeNumber) { badgeNumber_ = badgeNumber; }
    std::shared_ptr<long> GetSetBadgeNumber() const { return setBadgeNumber_; }
    void SetSetBadgeNumber(const std::shared_ptr<long>& setBadgeNumber) { setBadgeNumber_ = setBadgeNumber; }
    std::shared_ptr<RemoteWantAgent> GetWantAgent() const { return wantAgent_; }
    void SetWantAgent(const std::shared_ptr<RemoteWantAgent>& wantAgent) { wantAgent_ = wantAgent; }
    std::shared_ptr<MsgTimePoints> GetMsgTimePoints() const { return msgTimePoints_; }
    void SetMsgTimePoints(const std::shared_ptr<MsgTimePoints>& msgTimePoints) { msgTimePoints_ = msgTimePoints; }
    long GetContentSize() const { return contentSize_; }
    void SetContentSize(long contentSize) { contentSize_ = contentSize; }

    // Sets each of the seven bits from its part (set when present); earlier bits are overwritten.
    void SetContentStateInfo(std::bitset<CONTENT_BIT_COUNT>& flags) const;

    bool Marshalling(Parcel& parcel) const override;
    static sptr<RemoteNotificationContent> Unmarshalling(Parcel& parcel);
    // The flags word, the texts and the badge numbers are read leniently (a short parcel gives
    // 0 or ""); only an announced icon, want agent or time points must be there.
    bool ReadFromParcel(Parcel& parcel);

    // Parts compare by value; the content size takes part too.
    bool operator==(const RemoteNotificationContent& other) const;
    bool operator!=(const RemoteNotificationContent& other) const { return !(*this == other); }

private:
    bool WriteParts(Parcel& parcel) const;
    bool ReadOverlayIcon(Parcel& parcel);
    bool ReadWantAgent(Parcel& parcel);
    bool ReadMsgTimePoints(Parcel& parcel);

    std::shared_ptr<std::string> title_;
    std::shared_ptr<std::string> text_;
    std::shared_ptr<Media::PixelMap> overlayIcon_;
    std::shared_ptr<long> badgeNumber_;
    std::shared_ptr<long> setBadgeNumber_;
    std::shared_ptr<RemoteWantAgent> wantAgent_;
    long contentSize_ = 0;
    std::shared_ptr<MsgTimePoints> msgTimePoints_;
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_MODEL_REMOTE_NOTIFICATION_CONTENT_H
