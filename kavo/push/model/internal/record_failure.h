// The failure shape shared by every record: a fixed text logged at error level and, unless the
// text is log only, reported to analytics with INNER_ERR_DATA_CONVERT_FAILED. Used only by the
// record sources of kavo/push/model. Stateless; callable from any thread.
//
//   if (!parcel.ReadString(abilityName_)) {
//       return FailRead("RemoteWantAgent::ReadFromParcel: Read AbilityName Error");
//   }
#ifndef KAVO_PUSH_MODEL_INTERNAL_RECORD_FAILURE_H
#define KAVO_PUSH_MODEL_INTERNAL_RECORD_FAILURE_H

#include <cstddef>

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

// Logs and reports `text`, then gives false: the last statement of a failed read or write.
inline bool FailRead(const char* text)
{
    LogAndReport(text);
    return false;
}

inline bool FailWrite(const char* text)
{
    LogAndReport(text);
    return false;
}

// Logs and reports `text`, then gives the null record that a failed Unmarshalling returns.
inline std::nullptr_t FailNull(const char* text)
{
    LogAndReport(text);
    return nullptr;
}

}  // namespace Kavo::Push::internal

#endif  // KAVO_PUSH_MODEL_INTERNAL_RECORD_FAILURE_H
