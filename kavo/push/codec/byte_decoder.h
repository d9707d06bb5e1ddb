// ByteDecoder: bounds-checked reads of big-endian integers and byte runs at an offset of a
// byte string. Each read checks first and, when fewer bytes remain than it needs, logs the
// failure and returns it, leaving `out` untouched. The offset is never advanced: the caller
// adds the width. All functions are stateless and may be called from any thread.
//
//   uint32_t length = 0;
//   PushBaseRsp rsp = ByteDecoder::DecodeAsUint32(length, data, offset);
//   if (rsp.Succeed()) { offset += sizeof(length); }
#ifndef KAVO_PUSH_CODEC_BYTE_DECODER_H
#define KAVO_PUSH_CODEC_BYTE_DECODER_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "kavo/push/common/push_base_rsp.h"
#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT ByteDecoder {
public:
    static PushBaseRsp DecodeAsChar(char& out, const std::string& data, const size_t& offset);
    static PushBaseRsp DecodeAsInt8(int8_t& out, const std::string& data, const size_t& offset);
    static PushBaseRsp DecodeAsUint16(uint16_t& out, const std::string& data, const size_t& offset);
    static PushBaseRsp DecodeAsInt16(int16_t& out, const std::string& data, const size_t& offset);
    static PushBaseRsp DecodeAsUint32(uint32_t& out, const std::string& data, const size_t& offset);
    static PushBaseRsp DecodeAsInt32(int32_t& out, const std::string& data, const size_t& offset);
    static PushBaseRsp DecodeAsUint64(uint64_t& out, const std::string& data, const size_t& offset);
    static PushBaseRsp DecodeAsInt64(int64_t& out, const std::string& data, const size_t& offset);
    // Note the order: the length comes before the offset. `out` is replaced by the run.
    static PushBaseRsp DecodeAsByte(std::string& out, const std::string& data, const size_t& length,
                                    const size_t& offset);
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_CODEC_BYTE_DECODER_H
