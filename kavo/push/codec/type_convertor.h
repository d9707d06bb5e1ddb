// TypeConvertor: text to numbers by standard stream extraction, and a number to lower-case
// hex text. Nothing fails: the value starts at 0 (false) and is returned as the extraction
// left it ("12abc" gives 12, "abc" gives 0). Stateless; callable from any thread.
#ifndef KAVO_PUSH_CODEC_TYPE_CONVERTOR_H
#define KAVO_PUSH_CODEC_TYPE_CONVERTOR_H

#include <cstdint>
#include <string>

#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT TypeConvertor {
public:
    static int32_t StringConvert2Int32(const std::string& text);
    static int64_t StringConvert2Int64(const std::string& text);
    // The Int32 value cut to its low eight bits: "300" gives 44.
    static uint8_t StringConvert2Uint8(const std::string& text);
    // Reads an integer, not a word: "1" is true, "0" and "true" are false, "2" is true.
    static bool StringConvert2Bool(const std::string& text);
    // Lower case, no prefix, no leading zeros: 255 gives "ff".
    static std::string Uint32Convert2Hex(const uint32_t& value);
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_CODEC_TYPE_CONVERTOR_H
