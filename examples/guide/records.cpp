// Records on a parcel: a request written the way an application sends it, read back the way
// the push service receives it, and a parcel cut short.
#include <kavo/host/ipc/parcel.h>
#include <kavo/push/model/remote_notification_request.h>

#include "show.h"

using namespace Kavo::Push;

int main()
{
    // guide: write-read
    RemoteNotificationInfo info("mail", "2 new messages", 7);
    RemoteNotificationRequest request(30, 2, 8, info);  // 30 s to live, icon 2 KiB, content 8 KiB
    Kavo::Parcel parcel;
    if (!request.Marshalling(parcel)) {
        return 1;  // the parcel is full: nothing more fits
    }
    Kavo::sptr<RemoteNotificationRequest> received = RemoteNotificationRequest::Unmarshalling(parcel);
    if (received == nullptr) {
        return 1;  // not a request: the reader logged why
    }
    Guide::Show("bytes on the parcel", parcel.GetDataSize(), size_t{56});
    Guide::Show("read back equal", *received == request, true);
    Guide::Show("message data", received->GetRemoteNotification().GetData(), "2 new messages");
    // end guide

    // guide: cut
    Kavo::Parcel cut;
    cut.ParseFrom(parcel.GetData(), parcel.GetDataSize() - 4);  // the message id's last word is gone
    Kavo::sptr<RemoteNotificationRequest> none = RemoteNotificationRequest::Unmarshalling(cut);
    Guide::Show("a cut parcel reads as null", none == nullptr, true);
    // end guide
    return Guide::ExitStatus();
}
