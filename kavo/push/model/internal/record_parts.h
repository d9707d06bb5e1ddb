// Helpers for the optional and nested parts of records, used only by the record sources of
// kavo/push/model. Stateless; callable from any thread.
#ifndef KAVO_PUSH_MODEL_INTERNAL_RECORD_PARTS_H
#define KAVO_PUSH_MODEL_INTERNAL_RECORD_PARTS_H

#include <memory>
#include <new>

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

}  // namespace Kavo::Push::internal

#endif  // KAVO_PUSH_MODEL_INTERNAL_RECORD_PARTS_H
