// The fixed table from public error codes to their standard messages, and the helpers that
// rebuild a result from a code or fold one result's description into another's.
// The table is built at load time and only read afterwards, from any thread.
#ifndef KAVO_PUSH_COMMON_PUSH_ERROR_MESSAGE_H
#define KAVO_PUSH_COMMON_PUSH_ERROR_MESSAGE_H

#include <map>
#include <string>

#include "kavo/push/common/push_base_rsp.h"
#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT PushErrorMessage {
public:
    static const std::map<PushError, std::string> errorMessageMap;
    static const std::string DESC_SEPARATOR;

    // A result with the standard message of `code`; an unknown code becomes 1000900001.
    static PushBaseRsp RebuildPushRsp(int const& code);
    static bool IsErrorExist(int const& code);
    // Appends rsp's GetInfo() to desc (after ", " when desc is not empty), unless rsp is a
    // success with an empty description.
    static void RebuildErrDesc(PushBaseRsp const& rsp, std::string& desc);
    // Folds source's GetInfo() into target's description in place; returns a copy of target.
    static PushBaseRsp RebuildPushRsp(PushBaseRsp& target, PushBaseRsp const& source);
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_COMMON_PUSH_ERROR_MESSAGE_H
