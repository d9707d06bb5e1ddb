// Symbol visibility of the push utilities: everything is hidden unless marked.
#ifndef KAVO_PUSH_COMMON_PUSH_EXPORT_H
#define KAVO_PUSH_COMMON_PUSH_EXPORT_H

#define KAVO_PUSH_EXPORT __attribute__((visibility("default")))

#endif  // KAVO_PUSH_COMMON_PUSH_EXPORT_H
