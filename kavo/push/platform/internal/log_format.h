// The printf formats the platform queries hand to their shared skeletons, each typed after the
// arguments the skeleton gives it, so a text cannot land where other arguments are passed and
// the arguments are named where the text is written. Plain texts stay `const char*`.
#ifndef KAVO_PUSH_PLATFORM_INTERNAL_LOG_FORMAT_H
#define KAVO_PUSH_PLATFORM_INTERNAL_LOG_FORMAT_H

namespace Kavo::Push::internal {

// Given a result's GetInfo().
struct InfoFormat {
    explicit constexpr InfoFormat(const char* format) : text(format) {}
    const char* text;
};

// Given a platform code.
struct CodeFormat {
    explicit constexpr CodeFormat(const char* format) : text(format) {}
    const char* text;
};

// Given a platform code, then a local account id.
struct CodeAndIdFormat {
    explicit constexpr CodeAndIdFormat(const char* format) : text(format) {}
    const char* text;
};

}  // namespace Kavo::Push::internal

#endif  // KAVO_PUSH_PLATFORM_INTERNAL_LOG_FORMAT_H
