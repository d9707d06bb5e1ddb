// Holds StringSplit's plain-text search to the regular-expression split on arbitrary texts and
// separators free of special characters. Input: one byte of separator length (1 to 4), the
// separator (special characters flipped into ordinary ones), then the text.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <regex>
#include <string>
#include <vector>

#include "kavo/push/common/base_util.h"

namespace {

using Kavo::Push::BaseUtil;

void Check(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

// The split as a regular expression: the tokens between matches, none for an empty text.
std::vector<std::string> RegexSplit(const std::string& str, const std::string& pattern)
{
    std::regex separator(pattern);
    if (str.empty()) {
        return {};
    }
    std::sregex_token_iterator it(str.begin(), str.end(), separator, -1);
    return std::vector<std::string>(it, std::sregex_token_iterator());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1) {
        return 0;
    }
    const size_t length = 1 + data[0] % 4;
    if (size < 1 + length) {
        return 0;
    }
    std::string pattern(reinterpret_cast<const char*>(data) + 1, length);
    for (char& ch : pattern) {
        // 0x40 turns each of them into a character that is not special.
        if (ch != '\0' && std::strchr("\\^$.|?*+()[]{}", ch) != nullptr) {
            ch = static_cast<char>(ch ^ 0x40);
        }
    }
    const std::string text(reinterpret_cast<const char*>(data) + 1 + length, size - 1 - length);
    Check(BaseUtil::StringSplit(text, pattern) == RegexSplit(text, pattern));
    return 0;
}
