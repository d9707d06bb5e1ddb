// The survival-time rule shared by push extension infos and remote notification requests.
// Stateless; may be called from any thread.
#ifndef KAVO_PUSH_VALIDATE_PUSH_EXTENSION_VALIDATE_H
#define KAVO_PUSH_VALIDATE_PUSH_EXTENSION_VALIDATE_H

#include "kavo/push/common/push_base_rsp.h"
#include "kavo/push/common/push_export.h"
#include "kavo/push/model/push_extension_info.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT PushExtensionValidate {
public:
    static constexpr int MIN_SURVIVAL_TIME = 1;
    static constexpr int MAX_SURVIVAL_TIME = 21600;

    // Success for 1 to 21600; otherwise 401 with "survival time is invalid: <t>".
    static PushBaseRsp ValidateSurvivalTime(int survivalTime);
    // Only the survival time of an extension info is checked.
    static PushBaseRsp ValidatePushExtensionInfo(const PushExtensionInfo& info);
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_VALIDATE_PUSH_EXTENSION_VALIDATE_H
