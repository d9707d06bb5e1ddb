#include "kavo/push/codec/byte_decoder.h"

#include <cstring>

#include "kavo/push/codec/symbol_convert.h"
#include "kavo/push/common/push_log.h"

namespace Kavo::Push {

namespace {

// Every decoder reports the data size and the offset, whatever width it wanted. Written so
// that no offset or width can wrap around and pass.
bool InRange(const std::string& data, size_t width, size_t offset, PushBaseRsp& rsp)
{
    if (offset <= data.size() && width <= data.size() - offset) {
        return true;
    }
    PUSH_LOGE("Cannot decode data(%zu) for out of range(%zu)", data.size(), offset);
    rsp = PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "Cannot decode data(%zu) for out of range(%zu)", data.size(), offset);
    return false;
}

// Reads sizeof(T) bytes unaligned, exactly as they lie in the data.
template <typename T>
PushBaseRsp ReadRaw(T& out, const std::string& data, size_t offset)
{
    PushBaseRsp rsp;
    if (InRange(data, sizeof(T), offset, rsp)) {
        std::memcpy(&out, data.data() + offset, sizeof(T));
    }
    return rsp;
}

// The wider unsigned reads turn the data's network byte order into the host's.
template <typename T>
PushBaseRsp ReadNetworkOrder(T& out, const std::string& data, size_t offset, T (*net2Host)(const T&))
{
    T raw = 0;
    PushBaseRsp rsp = ReadRaw(raw, data, offset);
    if (rsp.Succeed()) {
        out = net2Host(raw);
    }
    return rsp;
}

// The signed reads go through the unsigned ones and reinterpret the bits.
template <typename Signed, typename Unsigned>
PushBaseRsp ReadSigned(Signed& out, const std::string& data, size_t offset,
                       PushBaseRsp (*decode)(Unsigned&, const std::string&, const size_t&))
{
    Unsigned value = 0;
    PushBaseRsp rsp = decode(value, data, offset);
    if (rsp.Succeed()) {
        out = static_cast<Signed>(value);
    }
    return rsp;
}

}  // namespace

PushBaseRsp ByteDecoder::DecodeAsChar(char& out, const std::string& data, const size_t& offset)
{
    return ReadRaw(out, data, offset);
}

PushBaseRsp ByteDecoder::DecodeAsInt8(int8_t& out, const std::string& data, const size_t& offset)
{
    return ReadRaw(out, data, offset);
}

PushBaseRsp ByteDecoder::DecodeAsUint16(uint16_t& out, const std::string& data, const size_t& offset)
{
    return ReadNetworkOrder(out, data, offset, &SymbolConvert::Net2HostUint16);
}

PushBaseRsp ByteDecoder::DecodeAsInt16(int16_t& out, const std::string& data, const size_t& offset)
{
    return ReadSigned(out, data, offset, &ByteDecoder::DecodeAsUint16);
}

PushBaseRsp ByteDecoder::DecodeAsUint32(uint32_t& out, const std::string& data, const size_t& offset)
{
    return ReadNetworkOrder(out, data, offset, &SymbolConvert::Net2HostUint32);
}

PushBaseRsp ByteDecoder::DecodeAsInt32(int32_t& out, const std::string& data, const size_t& offset)
{
    return ReadSigned(out, data, offset, &ByteDecoder::DecodeAsUint32);
}

PushBaseRsp ByteDecoder::DecodeAsUint64(uint64_t& out, const std::string& data, const size_t& offset)
{
    return ReadNetworkOrder(out, data, offset, &SymbolConvert::Net2HostUint64);
}

PushBaseRsp ByteDecoder::DecodeAsInt64(int64_t& out, const std::string& data, const size_t& offset)
{
    return ReadSigned(out, data, offset, &ByteDecoder::DecodeAsUint64);
}

PushBaseRsp ByteDecoder::DecodeAsByte(std::string& out, const std::string& data, const size_t& length,
                                      const size_t& offset)
{
    PushBaseRsp rsp;
    if (InRange(data, length, offset, rsp)) {
        out = data.substr(offset, length);
    }
    return rsp;
}

}  // namespace Kavo::Push
