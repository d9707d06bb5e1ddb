#include "kavo/push/common/push_logger.h"

#include <cstdint>

namespace Kavo::Push {

namespace {

constexpr size_t WIFI_TAG_MIN_LENGTH = 22;
constexpr size_t WIFI_MASK_POSITION = 17;
constexpr size_t DATA_TAG_MIN_LENGTH = 12;
constexpr size_t DATA_MASK_POSITION = 6;

bool IsAsciiAlnum(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
}

// Keeps the first half of the text; '.' and ':' are always kept.
std::string AnonymizeHalfString(std::string const& value)
{
    uint32_t half = static_cast<uint32_t>(value.size()) / 2;
    std::string result = value;
    for (size_t i = 0; i < result.size(); ++i) {
        if (result[i] != '.' && result[i] != ':' && i >= half) {
            result[i] = '*';
        }
    }
    return result;
}

}  // namespace

std::string PushLogger::LogGuard(std::string const& value)
{
    std::string result;
    result.reserve(value.size());
    bool keptPrevious = false;
    for (char c : value) {
        if (c == ':' || c == '.') {
            result += c;
        } else if (IsAsciiAlnum(c)) {
            result += keptPrevious ? '*' : c;
            keptPrevious = !keptPrevious;
        } else {
            result += c;
            keptPrevious = false;
        }
    }
    return result;
}

std::string PushLogger::LogGuardTag(std::string const& tag)
{
    if (tag.empty()) {
        return std::string();
    }
    // "wifi" is tested first, so a tag naming both follows the wifi rule.
    if (tag.find("wifi") != std::string::npos) {
        if (tag.size() < WIFI_TAG_MIN_LENGTH) {
            return AnonymizeHalfString(tag);
        }
        std::string sep = tag.find(':') != std::string::npos ? ":" : "-";
        std::string mask = "**" + sep + "**";
        return std::string(tag).replace(WIFI_MASK_POSITION, mask.size(), mask);
    }
    if (tag.find("data") != std::string::npos) {
        if (tag.size() < DATA_TAG_MIN_LENGTH) {
            return AnonymizeHalfString(tag);
        }
        return std::string(tag).replace(DATA_MASK_POSITION, 3, "***");
    }
    return AnonymizeHalfString(tag);
}

}  // namespace Kavo::Push
