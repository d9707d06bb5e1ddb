// The identity of the inter-process call being served. The calling uid is held per thread:
// a serving thread sees the uid set on it, every other thread the process's own uid.
#ifndef KAVO_HOST_IPC_IPC_SKELETON_H
#define KAVO_HOST_IPC_IPC_SKELETON_H

#include <cstdint>

#include "kavo/host/host_export.h"

namespace Kavo {

class KAVO_HOST_EXPORT IPCSkeleton {
public:
    // The uid of the caller of the current thread's inter-process call.
    static int32_t GetCallingUid();
    // Control: the current thread now serves a call of `uid`.
    static void SetCallingUid(int32_t uid);
    // Control: the current thread serves no call; GetCallingUid answers the process's uid.
    static void ResetCallingUid();
    // The uid this process runs as (the real uid unless set through SetProcessUid).
    static int32_t GetSelfUid();
    // Control: the uid the process is taken to run as; a negative value restores the real one.
    static void SetProcessUid(int32_t uid);
};

}  // namespace Kavo

#endif  // KAVO_HOST_IPC_IPC_SKELETON_H
