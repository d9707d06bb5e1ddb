#include "kavo/push/model/remote_location_request.h"

#include <new>
#include <utility>

#include "kavo/push/model/internal/record_failure.h"

namespace Kavo::Push {

using internal::Fail;

RemoteLocationRequest::RemoteLocationRequest(const int& survivalTime, const bool& sync, const PushPayload& payload)
    : PushExtensionInfo(survivalTime, sync, payload)
{
}

sptr<RemoteLocationRequest> RemoteLocationRequest::Unmarshalling(Parcel& parcel)
{
    sptr<PushExtensionInfo> info = PushExtensionInfo::Unmarshalling(parcel);
    if (info == nullptr) {
        return Fail("ExtensionMessageInfo unmarshalling error");
    }
    // The info read holds its only reference, so its payload is moved rather than copied.
    auto* request = new (std::nothrow) RemoteLocationRequest(std::move(*info));
    if (request == nullptr) {
        return Fail("New RemoteLocationRequest error");
    }
    return sptr<RemoteLocationRequest>(request);
}

}  // namespace Kavo::Push
