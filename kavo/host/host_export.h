// Symbol visibility of the host platform library: everything is hidden unless marked.
#ifndef KAVO_HOST_HOST_EXPORT_H
#define KAVO_HOST_HOST_EXPORT_H

#define KAVO_HOST_EXPORT __attribute__((visibility("default")))

#endif  // KAVO_HOST_HOST_EXPORT_H
