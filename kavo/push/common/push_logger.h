// Masks identifiers (addresses, device and network tags) before they are logged.
// Stateless; may be called from any thread. The masks keep the text's length.
#ifndef KAVO_PUSH_COMMON_PUSH_LOGGER_H
#define KAVO_PUSH_COMMON_PUSH_LOGGER_H

#include <string>

#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT PushLogger {
public:
    // Masks every second letter or digit: "192.168.1.10" becomes "1*2.*6*.1.*0". '.' and ':'
    // keep the alternation going; any other separator restarts it.
    static std::string LogGuard(std::string const& value);
    // Masks a network or device tag by its kind ("wifi" tags, "data" tags, anything else).
    static std::string LogGuardTag(std::string const& tag);
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_COMMON_PUSH_LOGGER_H
