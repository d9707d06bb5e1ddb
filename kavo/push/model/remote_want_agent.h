// RemoteWantAgent: the ability a notification opens when it is tapped, and its parameters as
// one string (empty means none). A plain value; not safe for concurrent mutation.
#ifndef KAVO_PUSH_MODEL_REMOTE_WANT_AGENT_H
#define KAVO_PUSH_MODEL_REMOTE_WANT_AGENT_H

#include <string>

#include "kavo/host/ipc/parcel.h"
#include "kavo/host/ipc/parcelable.h"
#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT RemoteWantAgent : public Parcelable {
public:
    RemoteWantAgent() = default;
    RemoteWantAgent(const RemoteWantAgent&) = default;
    RemoteWantAgent(RemoteWantAgent&&) noexcept = default;
    RemoteWantAgent& operator=(const RemoteWantAgent&) = default;
    RemoteWantAgent& operator=(RemoteWantAgent&&) noexcept = default;
    ~RemoteWantAgent() override = default;

    std::string GetAbilityName() const { return abilityName_; }
    void SetAbilityName(const std::string& abilityName) { abilityName_ = abilityName; }
    std::string GetParameters() const { return parameters_; }
    void SetParameters(const std::string& parameters) { parameters_ = parameters; }

    // The ability name, a flag saying whether parameters follow, then the parameters. Empty
    // parameters are not written, so they read back as empty.
    bool Marshalling(Parcel& parcel) const override;
    static sptr<RemoteWantAgent> Unmarshalling(Parcel& parcel);
    bool ReadFromParcel(Parcel& parcel);

    bool operator==(const RemoteWantAgent& other) const;
    bool operator!=(const RemoteWantAgent& other) const { return !(*this == other); }

private:
    std::string abilityName_;
    std::string parameters_;
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_MODEL_REMOTE_WANT_AGENT_H
