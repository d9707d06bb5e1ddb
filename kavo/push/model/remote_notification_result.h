// RemoteNotificationResult: an extension's answer to a remote notification request: the
// notification content and optional extra parameters. Not safe for concurrent mutation; share
// it only once filled.
#ifndef KAVO_PUSH_MODEL_REMOTE_NOTIFICATION_RESULT_H
#define KAVO_PUSH_MODEL_REMOTE_NOTIFICATION_RESULT_H

#include <memory>

#include "kavo/host/ipc/parcel.h"
#include "kavo/host/ipc/parcelable.h"
#include "kavo/host/want/want_params.h"
#include "kavo/push/common/push_export.h"
#include "kavo/push/model/remote_notification_content.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT RemoteNotificationResult : public Parcelable {
public:
    RemoteNotificationResult() = default;
    RemoteNotificationResult(const RemoteNotificationContent& content,
                             const std::shared_ptr<AAFwk::WantParams>& parameters);
    ~RemoteNotificationResult() override = default;

    // A copy whose parts are shared with this result's content.
    RemoteNotificationContent GetContent() const { return content_; }
    void SetContent(const RemoteNotificationContent& content) { content_ = content; }
    std::shared_ptr<AAFwk::WantParams> GetParameters() const { return parameters_; }
    void SetParameters(const std::shared_ptr<AAFwk::WantParams>& parameters) { parameters_ = parameters; }

    // The content behind its presence word, a flag saying whether parameters follow, then the
    // parameters behind theirs.
    bool Marshalling(Parcel& parcel) const override;
    static sptr<RemoteNotificationResult> Unmarshalling(Parcel& parcel);
    bool ReadFromParcel(Parcel& parcel);

    bool operator==(const RemoteNotificationResult& other) const;
    bool operator!=(const RemoteNotificationResult& other) const { return !(*this == other); }

private:
    // The presence word and the content, read into `content`, which must be empty: an absent
    // part is left as it is.
    static bool ReadContent(Parcel& parcel, RemoteNotificationContent& content);
    bool ReadParameters(Parcel& parcel);
    // What ReadFromParcel does, for a new result, whose content is empty: read in place.
    bool ReadNew(Parcel& parcel);

    RemoteNotificationContent content_;
    std::shared_ptr<AAFwk::WantParams> parameters_;
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_MODEL_REMOTE_NOTIFICATION_RESULT_H
