// RemoteLocationRequest: a location request for an application's extension. It is a
// PushExtensionInfo by another name: same fields, same parcel form, its own reader.
// A plain value; not safe for concurrent mutation.
#ifndef KAVO_PUSH_MODEL_REMOTE_LOCATION_REQUEST_H
#define KAVO_PUSH_MODEL_REMOTE_LOCATION_REQUEST_H

#include <utility>

#include "kavo/host/ipc/parcel.h"
#include "kavo/push/common/push_export.h"
#include "kavo/push/model/push_extension_info.h"
#include "kavo/push/model/push_payload.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT RemoteLocationRequest : public PushExtensionInfo {
public:
    RemoteLocationRequest() = default;
    RemoteLocationRequest(const int& survivalTime, const bool& sync, const PushPayload& payload);
    ~RemoteLocationRequest() override = default;

    // Reads a whole PushExtensionInfo, then makes the request from it.
    static sptr<RemoteLocationRequest> Unmarshalling(Parcel& parcel);

private:
    // Takes over what an info just read holds, so its payload is not copied again.
    explicit RemoteLocationRequest(PushExtensionInfo&& info) : PushExtensionInfo(std::move(info)) {}
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_MODEL_REMOTE_LOCATION_REQUEST_H
