// Helpers for the optional and nested parts of records, used only by the record sources of
// kavo/push/model. Stateless; callable from any thread.
#ifndef KAVO_PUSH_MODEL_INTERNAL_RECORD_PARTS_H
#define KAVO_PUSH_MODEL_INTERNAL_RECORD_PARTS_H

#include <memory>
#include <new>

#include "kavo/host/ipc/parcel.h"
#include "kavo/host/want/want_params.h"
#include "kavo/push/model/internal/record_failure.h"

namespace Kavo::Push::internal {

// Two optional parts are equal when both are absent, or both are present with equal values.
template <typename T>
bool OptionalEqual(const std::shared_ptr<T>& left, const std::shared_ptr<T>& right)
{
    if (left == nullptr || right == nullptr) {
        return left == right;
    }
    return *left == *right;
}

// A new shared copy of a part read from a parcel; null when the copy cannot be allocated.
template <typename T>
std::shared_ptr<T> SharedCopy(const T& value)
{
    return std::shared_ptr<T>(new (std::nothrow) T(value));
}

// The construct-then-fill pattern: a default record filled by its ReadFromParcel. A failed fill
// passes the record's own text to `fail` (LogAndReport, or LogOnly), destroys the record and
// gives null; a failed allocation gives null and logs nothing.
template <typename T>
sptr<T> ConstructThenFill(Parcel& parcel, void (*fail)(const char*), const char* text)
{
    auto* record = new (std::nothrow) T();
    if (record == nullptr) {
        return nullptr;
    }
    if (!record->ReadFromParcel(parcel)) {
        fail(text);
        delete record;
        return nullptr;
    }
    return sptr<T>(record);
}

// Parameters read through their presence word into a fresh shared copy. A missing map fails with
// `readText`, a copy that cannot be made with `newText`; `out` is only set on success or by the
// failed copy (null).
inline bool ReadWantParamsCopy(Parcel& parcel, std::shared_ptr<AAFwk::WantParams>& out, const char* readText,
                               const char* newText)
{
    sptr<AAFwk::WantParams> params = parcel.ReadStrongParcelable<AAFwk::WantParams>();
    if (params == nullptr) {
        return FailRead(readText);
    }
    out = SharedCopy(*params);
    return out != nullptr || FailRead(newText);
}

}  // namespace Kavo::Push::internal

#endif  // KAVO_PUSH_MODEL_INTERNAL_RECORD_PARTS_H
