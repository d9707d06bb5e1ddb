#include "kavo/push/common/base_util.h"

#include <chrono>
#include <climits>
#include <cstdint>
#include <regex>
#include <stdexcept>
#include <thread>

#include "kavo/push/common/push_log.h"

namespace Kavo::Push {

namespace {

constexpr int DECIMAL_BASE = 10;
constexpr uint32_t HASH_MULTIPLIER = 31;

bool AllDigits(std::string const& text)
{
    for (char c : text) {
        if (c < '0' || c > '9') {
            return false;
        }
    }
    return true;
}

// A pattern without any character that is special in ECMAScript matches itself and nothing
// else, so searching for it gives the regular expression's matches without compiling one.
bool IsLiteral(std::string const& pattern)
{
    return !pattern.empty() && pattern.find_first_of("\\^$.|?*+()[]{}") == std::string::npos;
}

// The token iterator's rules: the text before each match, then the rest unless it is empty.
std::vector<std::string> SplitOnLiteral(std::string const& str, std::string const& separator)
{
    std::vector<std::string> tokens;
    size_t start = 0;
    for (size_t at = str.find(separator); at != std::string::npos; at = str.find(separator, start)) {
        tokens.emplace_back(str, start, at - start);
        start = at + separator.size();
    }
    if (start < str.size()) {
        tokens.emplace_back(str, start);
    }
    return tokens;
}

}  // namespace

PushBaseRsp BaseUtil::DoSystemAbilityApiCallWithRetry(std::function<PushBaseRsp()> const& call, int retryTimes,
                                                      int intervalMs)
{
    PushBaseRsp rsp;
    int remaining = retryTimes;
    while (true) {
        rsp = call();
        if (rsp.Succeed() || remaining <= 0) {
            return rsp;
        }
        if (intervalMs > 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(intervalMs));
        }
        --remaining;
    }
}

std::vector<std::string> BaseUtil::StringSplit(std::string const& str, std::string const& pattern)
{
    if (IsLiteral(pattern)) {
        return SplitOnLiteral(str, pattern);
    }
    std::regex separator(pattern);
    // The token iterator yields one empty token for an empty range; an empty text has none.
    if (str.empty()) {
        return {};
    }
    std::sregex_token_iterator it(str.begin(), str.end(), separator, -1);
    return std::vector<std::string>(it, std::sregex_token_iterator());
}

int BaseUtil::HashCode(std::string const& str)
{
    uint32_t hash = 0;
    for (char c : str) {
        hash = hash * HASH_MULTIPLIER + static_cast<uint32_t>(static_cast<int32_t>(static_cast<signed char>(c)));
    }
    return static_cast<int>(hash);
}

std::string BaseUtil::vectorToString(std::vector<std::string> const& items)
{
    std::string result;
    for (size_t i = 0; i < items.size(); ++i) {
        if (i != 0) {
            result += "#";
        }
        result += items[i];
    }
    return result;
}

bool BaseUtil::SafeStoi(std::string const& str, int& value)
{
    if (str.empty()) {
        PUSH_LOGE("input string is empty");
        return false;
    }
    std::string digits = str[0] == '-' ? str.substr(1) : str;
    if (digits.empty()) {
        PUSH_LOGE("copy string is empty");
        return false;
    }
    if (!AllDigits(digits)) {
        PUSH_LOGE("input char is not a digit");
        return false;
    }
    // Past the 64-bit range std::stoll throws out_of_range, which is left to the caller.
    long long wide = std::stoll(str, nullptr, DECIMAL_BASE);
    if (wide < INT_MIN || wide > INT_MAX) {
        PUSH_LOGE("convert is invalid");
        return false;
    }
    try {
        value = std::stoi(str, nullptr, DECIMAL_BASE);
    } catch (std::invalid_argument const&) {
        PUSH_LOGE("invalid argument");
        return false;
    } catch (std::out_of_range const&) {
        PUSH_LOGE("out of range");
        return false;
    }
    return true;
}

}  // namespace Kavo::Push
