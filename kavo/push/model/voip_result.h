// VoIPResult: an extension's answer to a VoIP message, with optional parameters. Not safe for
// concurrent mutation; share it only once filled.
#ifndef KAVO_PUSH_MODEL_VOIP_RESULT_H
#define KAVO_PUSH_MODEL_VOIP_RESULT_H

#include <memory>

#include "kavo/host/ipc/parcel.h"
#include "kavo/host/ipc/parcelable.h"
#include "kavo/host/want/want_params.h"
#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT VoIPResult : public Parcelable {
public:
    VoIPResult() = default;
    VoIPResult(const std::shared_ptr<AAFwk::WantParams>& parameters);
    ~VoIPResult() override = default;

    std::shared_ptr<AAFwk::WantParams> GetParameters() const { return parameters_; }
    void SetParameters(const std::shared_ptr<AAFwk::WantParams>& parameters) { parameters_ = parameters; }

    // A flag saying whether parameters follow, then the parameters behind their presence word.
    bool Marshalling(Parcel& parcel) const override;
    static sptr<VoIPResult> Unmarshalling(Parcel& parcel);
    bool ReadFromParcel(Parcel& parcel);

    bool operator==(const VoIPResult& other) const;
    bool operator!=(const VoIPResult& other) const { return !(*this == other); }

private:
    std::shared_ptr<AAFwk::WantParams> parameters_;
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_MODEL_VOIP_RESULT_H
