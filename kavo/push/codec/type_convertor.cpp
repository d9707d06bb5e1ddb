#include "kavo/push/codec/type_convertor.h"

#include <sstream>

namespace Kavo::Push {

namespace {

// Extracts one value; a failed or partial extraction is not an error here.
template <typename T>
T Extract(const std::string& text)
{
    std::stringstream stream;
    stream << text;
    T value{};
    stream >> value;
    return value;
}

}  // namespace

int32_t TypeConvertor::StringConvert2Int32(const std::string& text)
{
    return Extract<int32_t>(text);
}

int64_t TypeConvertor::StringConvert2Int64(const std::string& text)
{
    return Extract<int64_t>(text);
}

uint8_t TypeConvertor::StringConvert2Uint8(const std::string& text)
{
    return static_cast<uint8_t>(StringConvert2Int32(text));
}

bool TypeConvertor::StringConvert2Bool(const std::string& text)
{
    return Extract<bool>(text);
}

std::string TypeConvertor::Uint32Convert2Hex(const uint32_t& value)
{
    std::stringstream stream;
    stream.setf(std::ios::hex, std::ios::basefield);
    stream << value;
    std::string out;
    stream >> out;
    return out;
}

}  // namespace Kavo::Push
