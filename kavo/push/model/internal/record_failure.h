// The failure shape shared by every record: a fixed text logged at error level and, unless the
// text is log only, reported to analytics with INNER_ERR_DATA_CONVERT_FAILED. Used only by the
// record sources of kavo/push/model. Stateless; callable from any thread.
//
//   if (!parcel.ReadString(abilityName_)) {
//       return Fail("RemoteWantAgent::ReadFromParcel: Read AbilityName Error");
//   }
#ifndef KAVO_PUSH_MODEL_INTERNAL_RECORD_FAILURE_H
#define KAVO_PUSH_MODEL_INTERNAL_RECORD_FAILURE_H

#include "kavo/host/ipc/ref_base.h"
#include "kavo/push/common/push_error.h"
#include "kavo/push/common/push_log.h"
#include "kavo/push/event/report_log.h"

namespace Kavo::Push::internal {

// Logs and reports `text`. Every text is a fixed message without conversions, so it is its own
// format, exactly as the log and the report expect it.
inline void LogAndReport(const char* text)
{
    PUSH_LOGE_AND_REPORT(INNER_ERR_DATA_CONVERT_FAILED, text);
}

// Logs `text` at error level without reporting it.
inline void LogOnly(const char* text)
{
    PUSH_LOGE(text);
}

// What a failed read or write returns: false from a bool operation, a null record from an
// Unmarshalling, so that every failure ends in the same `return Fail(text);`.
struct Failure {
    operator bool() const { return false; }  // NOLINT(google-explicit-constructor)
    template <typename T>
    operator sptr<T>() const  // NOLINT(google-explicit-constructor)
    {
        return nullptr;
    }
};

// Logs and reports `text`: the last statement of a failed read or write.
inline Failure Fail(const char* text)
{
    LogAndReport(text);
    return {};
}

// Logs `text` without reporting it, for the few texts that are log only.
inline Failure FailUnreported(const char* text)
{
    LogOnly(text);
    return {};
}

}  // namespace Kavo::Push::internal

#endif  // KAVO_PUSH_MODEL_INTERNAL_RECORD_FAILURE_H
