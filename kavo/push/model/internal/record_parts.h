// Helpers for the optional and nested parts of records, used only by the record sources of
// kavo/push/model. Stateless; callable from any thread.
#ifndef KAVO_PUSH_MODEL_INTERNAL_RECORD_PARTS_H
#define KAVO_PUSH_MODEL_INTERNAL_RECORD_PARTS_H

#include <memory>
#include <new>
#include <utility>

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

// A part read from a parcel, moved into a new shared pointer (one allocation for the part and
// its count); null when that cannot be allocated, the part then left as it was. The reader holds
// the part's only reference, so nothing else sees it emptied.
template <typename T>
std::shared_ptr<T> SharedTake(T& part)
{
    return MakeSharedNothrow<T>(std::move(part));
}

// The construct-then-fill pattern: a default record filled by its ReadFromParcel, or by `fill`
// where the record reads a new object in place. A failed fill passes the record's own text to
// `fail` (LogAndReport, or LogOnly), destroys the record and gives null; a failed allocation
// gives null and logs nothing.
template <typename T, bool (T::*fill)(Parcel&) = &T::ReadFromParcel>
sptr<T> ConstructThenFill(Parcel& parcel, void (*fail)(const char*), const char* text)
{
    auto* record = new (std::nothrow) T;
    if (record == nullptr) {
        return nullptr;
    }
    if (!(record->*fill)(parcel)) {
        fail(text);
        delete record;
        return nullptr;
    }
    return sptr<T>(record);
}

// The allocate-then-read pattern: a default record, owned here until `read` fills it. A failed
// allocation logs and reports `newText` and reads nothing; a failed read destroys the record
// (`read` logs its own texts) and gives null.
template <typename T, typename Read>
sptr<T> AllocateThenRead(const char* newText, Read read)
{
    std::unique_ptr<T> record(new (std::nothrow) T);
    if (record == nullptr) {
        return Fail(newText);
    }
    if (!read(*record)) {
        return nullptr;
    }
    return sptr<T>(record.release());
}

// Parameters read through their presence word into a fresh shared pointer. A missing map fails
// with `readText`, a pointer that cannot be allocated with `newText`; `out` is only set on
// success or by the failed allocation (null).
inline bool ReadWantParams(Parcel& parcel, std::shared_ptr<AAFwk::WantParams>& out, const char* readText,
                           const char* newText)
{
    // Read in place rather than through a parcelable of its own: the map is moved into the
    // shared pointer, so no allocation is spent on a copy that is thrown away.
    int32_t present = 0;
    AAFwk::WantParams params;
    if (!parcel.ReadInt32(present) || present == 0 || !params.ReadFromParcel(parcel)) {
        return Fail(readText);
    }
    out = SharedTake(params);
    return out != nullptr || Fail(newText);
}

}  // namespace Kavo::Push::internal

#endif  // KAVO_PUSH_MODEL_INTERNAL_RECORD_PARTS_H
