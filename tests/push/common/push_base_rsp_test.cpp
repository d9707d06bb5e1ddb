// PushBaseRsp: what each constructor sets, the printable form, Reset and the formatting limit.
#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "kavo/push/common/push_base_rsp.h"

namespace {

using namespace Kavo::Push;
constexpr int UNSET = INT_MIN;

TEST(PushBaseRspTest, InfoShowsTheCodesThatAreSet)
{
    struct Case {
        const char* name;
        PushBaseRsp rsp;
        int err;
        const char* info;
    };
    const Case cases[] = {
        {"default is a success with nothing set", PushBaseRsp(), 0, ""},
        {"no description", PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL), 1000900001, ": error(1000900001)"},
        {"string not formatted", PushBaseRsp(PUSH_ERR_INVALID_PARAM, std::string("%s")), 401, "%s: error(401)"},
        {"code -1 hidden", PushBaseRsp(PUSH_ERR_NONE, std::string("x")), -1, "x"},
        {"inner code alone", PushBaseRsp(INNER_ERR_CLIENT_INFO_REFUSED), -1, ": error(-1), innerCode(100000016)"},
        {"with inner code", PushBaseRsp(std::string("x"), INNER_ERR_DATA_CONVERT_FAILED), -1,
         "x: error(-1), innerCode(100002014)"},
        {"inner code on a success", PushBaseRsp(PUSH_SUCCESS, 7, std::string("ok")), 0, "ok: error(0), innerCode(7)"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.rsp.GetErrAsInt32(), c.err) << c.name;
        EXPECT_EQ(c.rsp.GetInfo(), c.info) << c.name;
        EXPECT_EQ(c.rsp.GetSubStatusCode(), UNSET) << c.name;
    }
}

TEST(PushBaseRspTest, ResetTakesEverythingButTheSubStatus)
{
    const std::pair<PushBaseRsp, const char*> cases[] = {
        {PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, 100000143, std::string("s")),
         "s: error(1000900001), innerCode(100000143)"},
        {PushBaseRsp(77, PUSH_SUCCESS, "%s", ""), ""}};
    for (const auto& [source, info] : cases) {
        PushBaseRsp rsp(5, PUSH_ERR_INVALID_PARAM, "start");
        rsp.SetInnerErr(9);
        rsp.Reset(source);
        EXPECT_EQ(rsp.GetInfo(), info);
        EXPECT_EQ(rsp.GetSubStatusCode(), 5) << info;
    }
}

TEST(PushBaseRspTest, FormattedDescriptionsLongerThan4096AreDropped)
{
    for (size_t length : {4096u, 4097u}) {
        std::string text(length, 'q');
        PushBaseRsp rsp(3, PUSH_ERR_INVALID_PARAM, "%s", text.c_str());
        EXPECT_EQ(rsp.GetErrDescription(), length <= 4096 ? text : "") << length;
    }
}

}  // namespace
