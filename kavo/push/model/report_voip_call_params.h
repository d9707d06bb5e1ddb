// ReportVoIPCallParams: the state of a call that an application reports: call id and status.
// A plain value; not safe for concurrent mutation.
#ifndef KAVO_PUSH_MODEL_REPORT_VOIP_CALL_PARAMS_H
#define KAVO_PUSH_MODEL_REPORT_VOIP_CALL_PARAMS_H

#include <cstdint>
#include <string>

#include "kavo/host/ipc/parcel.h"
#include "kavo/host/ipc/parcelable.h"
#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT ReportVoIPCallParams : public Parcelable {
public:
    ReportVoIPCallParams() = default;
    ReportVoIPCallParams(const std::string& callId, const unsigned int& status);
    ~ReportVoIPCallParams() override = default;

    std::string GetCallId() const { return callId_; }
    uint32_t GetStatus() const { return status_; }

    // The call id, then the status as an unsigned 32-bit word; false at the first failed
    // write, logging nothing.
    bool Marshalling(Parcel& parcel) const override;
    static sptr<ReportVoIPCallParams> Unmarshalling(Parcel& parcel);

    bool operator==(const ReportVoIPCallParams& other) const;
    bool operator!=(const ReportVoIPCallParams& other) const { return !(*this == other); }

private:
    std::string callId_;
    uint32_t status_ = 0;
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_MODEL_REPORT_VOIP_CALL_PARAMS_H
