// PushBaseRsp: the result of every fallible operation of the library. A plain value: copy it,
// pass it up, test Succeed(). Owned by one thread at a time.
//
//   PushBaseRsp rsp(PUSH_ERR_INVALID_PARAM, "bad survival time %d", t);
//   if (!rsp.Succeed()) { PUSH_LOGE("%{public}s", rsp.GetInfo().c_str()); }
#ifndef KAVO_PUSH_COMMON_PUSH_BASE_RSP_H
#define KAVO_PUSH_COMMON_PUSH_BASE_RSP_H

#include <climits>
#include <string>

#include "kavo/push/common/push_error.h"
#include "kavo/push/common/push_export.h"

namespace Kavo::Push {

class KAVO_PUSH_EXPORT PushBaseRsp {
public:
    static constexpr int NOT_SET = INT_MIN;

    PushBaseRsp();
    PushBaseRsp(PushError const& err);
    // The description is formatted from an ordinary printf format, at most 4096 characters;
    // a format that fails or is longer leaves the description empty.
    PushBaseRsp(PushError const& err, char const* fmt, ...) __attribute__((format(printf, 3, 4)));
    PushBaseRsp(int subStatusCode, PushError const& err, char const* fmt, ...) __attribute__((format(printf, 4, 5)));
    PushBaseRsp(PushError const& err, std::string const& desc);
    PushBaseRsp(PushError const& err, int innerErr, std::string const& desc);
    PushBaseRsp(PushInnerError const& inner);
    PushBaseRsp(std::string const& desc, PushInnerError const& inner);

    bool Succeed() const { return errCode_ == PUSH_SUCCESS; }
    PushError GetErr() const { return errCode_; }
    int GetErrAsInt32() const { return errCode_; }
    std::string GetErrAsString() const;
    int GetInnerErr() const { return innerErr_; }
    std::string GetInnerErrAsString() const;
    bool IsInnerCodeValid() const { return innerErr_ != NOT_SET; }
    int GetSubStatusCode() const { return subStatusCode_; }
    bool IsSubStatusCodeValid() const { return subStatusCode_ != NOT_SET; }
    std::string GetErrDescription() const { return desc_; }
    // The description decorated with the codes: "desc: error(401)", "desc: error(-1), innerCode(7)".
    std::string GetInfo() const;

    void SetErr(PushError const& err) { errCode_ = err; }
    void SetInnerErr(int innerErr) { innerErr_ = innerErr; }
    void SetDesc(std::string const& desc) { desc_ = desc; }
    // Takes error code, description and inner code of `other`; the sub-status stays.
    void Reset(PushBaseRsp const& other);

private:
    PushError errCode_ = PUSH_SUCCESS;
    std::string desc_;
    int innerErr_ = NOT_SET;
    int subStatusCode_ = NOT_SET;
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_COMMON_PUSH_BASE_RSP_H
