// Remote objects of the platform's inter-process channel, as the host platform models them: a
// remote object carries an interface descriptor and the service behind it, and iface_cast gives
// that service as an interface when the descriptors match. Objects are immutable after
// construction and may be shared across threads.
//
//   sptr<IRemoteObject> remote = AsRemoteObject<IBundleMgr>(MakeSptr<MyBundleMgr>());
//   sptr<IBundleMgr> mgr = iface_cast<IBundleMgr>(remote);  // null on a descriptor mismatch
#ifndef KAVO_HOST_IPC_IREMOTE_OBJECT_H
#define KAVO_HOST_IPC_IREMOTE_OBJECT_H

#include <string>
#include <utility>

#include "kavo/host/host_export.h"
#include "kavo/host/ipc/ref_base.h"

namespace Kavo {

// Base of every service interface.
class KAVO_HOST_EXPORT ServiceInterface : public virtual RefBase {
public:
    ~ServiceInterface() override = default;
};

class KAVO_HOST_EXPORT IRemoteObject : public virtual RefBase {
public:
    IRemoteObject(std::u16string descriptor, sptr<ServiceInterface> service)
        : descriptor_(std::move(descriptor)), service_(std::move(service))
    {
    }
    ~IRemoteObject() override = default;

    const std::u16string& GetInterfaceDescriptor() const { return descriptor_; }
    const sptr<ServiceInterface>& GetService() const { return service_; }

private:
    std::u16string descriptor_;
    sptr<ServiceInterface> service_;
};

// The remote object of a service, announced under the descriptor of interface I.
template <typename I>
sptr<IRemoteObject> AsRemoteObject(const sptr<I>& service)
{
    return MakeSptr<IRemoteObject>(I::GetDescriptor(), sptr<ServiceInterface>(service));
}

// The interface I of a remote object: null for a null object, a descriptor other than
// I::GetDescriptor(), or a service that does not implement I.
template <typename I>
sptr<I> iface_cast(const sptr<IRemoteObject>& remote)
{
    if (remote == nullptr || remote->GetInterfaceDescriptor() != I::GetDescriptor() ||
        remote->GetService() == nullptr) {
        return nullptr;
    }
    return sptr<I>(dynamic_cast<I*>(remote->GetService().GetRefPtr()));
}

}  // namespace Kavo

#endif  // KAVO_HOST_IPC_IREMOTE_OBJECT_H
