#include "kavo/push/common/push_base_rsp.h"

#include <cstdarg>

#include "kavo/push/common/push_log_helper.h"

namespace Kavo::Push {

namespace {

std::string FormatDesc(char const* fmt, va_list args)
{
    return fmt == nullptr ? std::string() : PushLogHelper::SerializeLogDetail(fmt, args);
}

}  // namespace

// Formatting an empty format gives an empty description, so nothing is formatted here.
PushBaseRsp::PushBaseRsp() = default;

PushBaseRsp::PushBaseRsp(PushError const& err) : errCode_(err) {}

PushBaseRsp::PushBaseRsp(PushError const& err, char const* fmt, ...) : errCode_(err)
{
    va_list args;
    va_start(args, fmt);
    desc_ = FormatDesc(fmt, args);
    va_end(args);
}

PushBaseRsp::PushBaseRsp(int subStatusCode, PushError const& err, char const* fmt, ...)
    : errCode_(err), subStatusCode_(subStatusCode)
{
    va_list args;
    va_start(args, fmt);
    desc_ = FormatDesc(fmt, args);
    va_end(args);
}

PushBaseRsp::PushBaseRsp(PushError const& err, std::string const& desc) : errCode_(err), desc_(desc) {}

PushBaseRsp::PushBaseRsp(PushError const& err, int innerErr, std::string const& desc)
    : errCode_(err), desc_(desc), innerErr_(innerErr)
{
}

PushBaseRsp::PushBaseRsp(PushInnerError const& inner) : errCode_(PUSH_ERR_NONE), innerErr_(inner) {}

PushBaseRsp::PushBaseRsp(std::string const& desc, PushInnerError const& inner)
    : errCode_(PUSH_ERR_NONE), desc_(desc), innerErr_(inner)
{
}

std::string PushBaseRsp::GetErrAsString() const
{
    return std::to_string(errCode_);
}

std::string PushBaseRsp::GetInnerErrAsString() const
{
    return std::to_string(innerErr_);
}

std::string PushBaseRsp::GetInfo() const
{
    if (IsInnerCodeValid()) {
        return desc_ + ": error(" + GetErrAsString() + "), innerCode(" + GetInnerErrAsString() + ")";
    }
    if (errCode_ == PUSH_SUCCESS || errCode_ == PUSH_ERR_NONE) {
        return desc_;
    }
    return desc_ + ": error(" + GetErrAsString() + ")";
}

void PushBaseRsp::Reset(PushBaseRsp const& other)
{
    errCode_ = other.errCode_;
    desc_ = other.desc_;
    innerErr_ = other.innerErr_;
}

}  // namespace Kavo::Push
