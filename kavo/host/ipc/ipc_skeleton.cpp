#include "kavo/host/ipc/ipc_skeleton.h"

#include <unistd.h>

#include <atomic>

namespace Kavo {

namespace {

constexpr int32_t NO_UID = -1;

std::atomic<int32_t> g_processUid{NO_UID};
thread_local int32_t t_callingUid = NO_UID;

}  // namespace

int32_t IPCSkeleton::GetSelfUid()
{
    int32_t uid = g_processUid.load();
    return uid >= 0 ? uid : static_cast<int32_t>(getuid());
}

void IPCSkeleton::SetProcessUid(int32_t uid)
{
    g_processUid.store(uid >= 0 ? uid : NO_UID);
}

int32_t IPCSkeleton::GetCallingUid()
{
    return t_callingUid >= 0 ? t_callingUid : GetSelfUid();
}

void IPCSkeleton::SetCallingUid(int32_t uid)
{
    t_callingUid = uid;
}

void IPCSkeleton::ResetCallingUid()
{
    t_callingUid = NO_UID;
}

}  // namespace Kavo
