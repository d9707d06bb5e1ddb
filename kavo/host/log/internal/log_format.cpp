#include "kavo/host/log/internal/log_format.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <sys/types.h>

namespace Kavo::internal {

namespace {

constexpr const char* PRIVATE_TEXT = "<private>";

// One parsed conversion: its printf directive, without the privacy marker, and what it consumes.
struct Conversion {
    std::string directive = "%";
    bool isPublic = false;
    bool render = false;  // masked arguments are consumed but never formatted
    bool starWidth = false;
    bool starPrecision = false;
    std::string length;
    char conv = '\0';
};

// Reads "{public}" / "{private}" (or any other braced marker) right after the '%'.
const char* ParseMarker(const char* p, Conversion& c)
{
    if (*p != '{') {
        return p;
    }
    const char* close = std::strchr(p, '}');
    if (close == nullptr) {
        return p;
    }
    std::string marker(p + 1, close);
    c.isPublic = marker.find("public") != std::string::npos;
    return close + 1;
}

const char* ParseDirective(const char* p, Conversion& c)
{
    while (*p != '\0' && std::strchr("-+ #0'", *p) != nullptr) {
        c.directive += *p++;
    }
    if (*p == '*') {
        c.starWidth = true;
        c.directive += *p++;
    }
    while (*p >= '0' && *p <= '9') {
        c.directive += *p++;
    }
    if (*p == '.') {
        c.directive += *p++;
        if (*p == '*') {
            c.starPrecision = true;
            c.directive += *p++;
        }
        while (*p >= '0' && *p <= '9') {
            c.directive += *p++;
        }
    }
    while (*p != '\0' && std::strchr("hlLqjzt", *p) != nullptr) {
        c.length += *p++;
    }
    c.directive += c.length;
    c.conv = *p;
    if (*p != '\0') {
        c.directive += *p++;
    }
    return p;
}

template <typename... Extra>
std::string Snprintf(const std::string& directive, Extra... values)
{
    char small[128];
    int n = std::snprintf(small, sizeof(small), directive.c_str(), values...);
    if (n < 0) {
        return std::string();
    }
    if (static_cast<size_t>(n) < sizeof(small)) {
        return std::string(small, static_cast<size_t>(n));
    }
    std::string big(static_cast<size_t>(n) + 1, '\0');
    std::snprintf(big.data(), big.size(), directive.c_str(), values...);
    big.resize(static_cast<size_t>(n));
    return big;
}

// Formats one value with up to two leading '*' arguments.
template <typename T>
std::string FormatValue(const Conversion& c, int width, int precision, T value)
{
    if (!c.render) {
        return std::string();
    }
    if (c.starWidth && c.starPrecision) {
        return Snprintf(c.directive, width, precision, value);
    }
    if (c.starWidth) {
        return Snprintf(c.directive, width, value);
    }
    if (c.starPrecision) {
        return Snprintf(c.directive, precision, value);
    }
    return Snprintf(c.directive, value);
}

template <typename S, typename U>
std::string FormatInteger(const Conversion& c, int width, int precision, va_list* ap, bool isSigned)
{
    if (isSigned) {
        return FormatValue(c, width, precision, va_arg(*ap, S));
    }
    return FormatValue(c, width, precision, va_arg(*ap, U));
}

std::string ConsumeInteger(const Conversion& c, int width, int precision, va_list* ap)
{
    bool isSigned = c.conv == 'd' || c.conv == 'i';
    const std::string& len = c.length;
    if (len == "l") {
        return FormatInteger<long, unsigned long>(c, width, precision, ap, isSigned);
    }
    if (len == "ll" || len == "q") {
        return FormatInteger<long long, unsigned long long>(c, width, precision, ap, isSigned);
    }
    if (len == "j") {
        return FormatInteger<intmax_t, uintmax_t>(c, width, precision, ap, isSigned);
    }
    if (len == "z") {
        return FormatInteger<ssize_t, size_t>(c, width, precision, ap, isSigned);
    }
    if (len == "t") {
        return FormatInteger<ptrdiff_t, size_t>(c, width, precision, ap, isSigned);
    }
    // "", "h" and "hh" arguments arrive promoted to int.
    return FormatInteger<int, unsigned int>(c, width, precision, ap, isSigned);
}

// Consumes the conversion's arguments and returns its text, or "" with ok=false when the
// conversion is unknown (then it is copied as written).
std::string ConsumeConversion(const Conversion& c, va_list* ap, bool& ok)
{
    int width = c.starWidth ? va_arg(*ap, int) : 0;
    int precision = c.starPrecision ? va_arg(*ap, int) : 0;
    ok = true;
    switch (c.conv) {
        case 'd':
        case 'i':
        case 'u':
        case 'o':
        case 'x':
        case 'X':
            return ConsumeInteger(c, width, precision, ap);
        case 'c':
            return FormatValue(c, width, precision, va_arg(*ap, int));
        case 's': {
            const char* s = va_arg(*ap, const char*);
            return FormatValue(c, width, precision, s == nullptr ? "(null)" : s);
        }
        case 'p':
            return FormatValue(c, width, precision, va_arg(*ap, void*));
        case 'f':
        case 'F':
        case 'e':
        case 'E':
        case 'g':
        case 'G':
        case 'a':
        case 'A':
            if (c.length == "L") {
                return FormatValue(c, width, precision, va_arg(*ap, long double));
            }
            return FormatValue(c, width, precision, va_arg(*ap, double));
        case 'n':
            (void)va_arg(*ap, void*);  // %n: consumed, never written through
            return std::string();
        default:
            ok = false;
            return std::string();
    }
}

}  // namespace

std::string FormatPrivacy(const char* fmt, va_list args, bool showPrivate)
{
    std::string out;
    va_list ap;
    va_copy(ap, args);
    const char* p = fmt;
    while (*p != '\0') {
        if (*p != '%') {
            out += *p++;
            continue;
        }
        if (p[1] == '%') {
            out += '%';
            p += 2;
            continue;
        }
        const char* start = p;
        Conversion c;
        p = ParseMarker(p + 1, c);
        p = ParseDirective(p, c);
        c.render = c.isPublic || showPrivate;
        bool ok = false;
        std::string text = ConsumeConversion(c, &ap, ok);
        if (!ok) {
            out.append(start, p);
        } else if (c.isPublic || showPrivate) {
            out += text;
        } else {
            out += PRIVATE_TEXT;
        }
    }
    va_end(ap);
    return out;
}

}  // namespace Kavo::internal
