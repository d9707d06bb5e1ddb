// GetRealPath: the path to open for a JSON file, either the caller's path as given or, for a
// configuration file, the file the platform's configuration-policy lookup chooses.
// Stateless; may be called from any thread.
#ifndef KAVO_PUSH_JSON_REAL_PATH_H
#define KAVO_PUSH_JSON_REAL_PATH_H

#include <string>

#include "kavo/push/common/push_base_rsp.h"
#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

// Paths of 1 to 4095 bytes are accepted. A plain path is returned unchanged without looking
// at the file system; a configuration file name is looked up, and succeeds only when the
// file found exists. `realPath` is untouched on failure.
KAVO_PUSH_EXPORT PushBaseRsp GetRealPath(const std::string& path, const bool& isConfigFile, std::string& realPath);

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_JSON_REAL_PATH_H
