// The platform's configuration-policy lookup: which file to use for a configuration file name.
// The directories searched are those of KAVO_CONFIG_DIRS (colon-separated, the first directory
// holding the file wins; default "/etc/kavo"). Stateless; safe from any thread while nobody
// changes the environment.
//
//   char buf[256] = {0};
//   if (GetOneCfgFile("push/settings.json", buf, sizeof(buf)) != nullptr) { /* buf is the path */ }
#ifndef KAVO_HOST_CONFIG_CONFIG_POLICY_H
#define KAVO_HOST_CONFIG_CONFIG_POLICY_H

#include "kavo/host/host_export.h"

#ifdef __cplusplus
extern "C" {
#endif

// Writes into `buf` the path of the first regular file named `pathSuffix` in the configuration
// directories and returns `buf`. When there is none, or its path does not fit in `bufLength`
// bytes with the terminating zero, `buf` holds the empty string and the result is null.
// Never writes past `bufLength` bytes; a null `buf` or a zero `bufLength` writes nothing.
KAVO_HOST_EXPORT char* GetOneCfgFile(const char* pathSuffix, char* buf, unsigned int bufLength);

#ifdef __cplusplus
}
#endif

#endif  // KAVO_HOST_CONFIG_CONFIG_POLICY_H
