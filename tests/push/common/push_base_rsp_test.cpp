// PushBaseRsp: what each constructor sets, the printable form, Reset and the formatting limit.
#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "kavo/push/common/push_base_rsp.h"

namespace {

using Kavo::Push::PushBaseRsp;
using namespace Kavo::Push;

class PushBaseRspTest : public ::testing::Test {};

TEST_F(PushBaseRspTest, ConstructorsSetTheirFieldsAndLeaveTheRestUnset)
{
    struct Case {
        const char* name;
        PushBaseRsp rsp;
        int err;
        const char* desc;
        int inner;
        int subStatus;
        bool succeed;
    };
    const Case cases[] = {
        {"default is a success with nothing set", PushBaseRsp(), 0, "", INT_MIN, INT_MIN, true},
        {"error code alone", PushBaseRsp(PUSH_ERR_INVALID_PARAM), 401, "", INT_MIN, INT_MIN, false},
        {"formatted description", PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, "uid %d name %s", 20010, "app"), 1000900001,
         "uid 20010 name app", INT_MIN, INT_MIN, false},
        {"formatted description keeps a literal percent", PushBaseRsp(PUSH_ERR_INVALID_PARAM, "100%% of %u", 3u), 401,
         "100% of 3", INT_MIN, INT_MIN, false},
        {"sub-status with formatted description", PushBaseRsp(17, PUSH_ERR_EXTENSION_NOT_EXIST, "ext %s", "x"),
         1000900002, "ext x", INT_MIN, 17, false},
        {"sub-status of a success", PushBaseRsp(-5, PUSH_SUCCESS, "ok"), 0, "ok", INT_MIN, -5, true},
        {"description string taken as it is", PushBaseRsp(PUSH_ERR_INVALID_PARAM, std::string("50% %s")), 401,
         "50% %s", INT_MIN, INT_MIN, false},
        {"error, inner code and description", PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, 100000143, std::string("d")),
         1000900001, "d", 100000143, INT_MIN, false},
        {"inner code of a success", PushBaseRsp(PUSH_SUCCESS, 7, std::string()), 0, "", 7, INT_MIN, true},
        {"inner code alone means no public code", PushBaseRsp(INNER_ERR_CLIENT_INFO_REFUSED), -1, "", 100000016,
         INT_MIN, false},
        {"description and inner code", PushBaseRsp(std::string("read"), INNER_ERR_DATA_CONVERT_FAILED), -1, "read",
         100002014, INT_MIN, false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.rsp.GetErrAsInt32(), c.err) << c.name;
        EXPECT_EQ(static_cast<int>(c.rsp.GetErr()), c.err) << c.name;
        EXPECT_EQ(c.rsp.GetErrAsString(), std::to_string(c.err)) << c.name;
        EXPECT_EQ(c.rsp.GetErrDescription(), c.desc) << c.name;
        EXPECT_EQ(c.rsp.GetInnerErr(), c.inner) << c.name;
        EXPECT_EQ(c.rsp.IsInnerCodeValid(), c.inner != INT_MIN) << c.name;
        EXPECT_EQ(c.rsp.GetInnerErrAsString(), std::to_string(c.inner)) << c.name;
        EXPECT_EQ(c.rsp.GetSubStatusCode(), c.subStatus) << c.name;
        EXPECT_EQ(c.rsp.IsSubStatusCodeValid(), c.subStatus != INT_MIN) << c.name;
        EXPECT_EQ(c.rsp.Succeed(), c.succeed) << c.name;
    }
}

TEST_F(PushBaseRspTest, InfoDecoratesTheDescriptionWithTheCodes)
{
    struct Case {
        const char* name;
        PushBaseRsp rsp;
        const char* info;
    };
    const Case cases[] = {
        {"success without inner code is the description alone", PushBaseRsp(), ""},
        {"success with a description", PushBaseRsp(PUSH_SUCCESS, std::string("fine")), "fine"},
        {"public code appended", PushBaseRsp(PUSH_ERR_INVALID_PARAM, std::string("bad")), "bad: error(401)"},
        {"empty description still decorated", PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL), ": error(1000900001)"},
        {"no public code and no inner code is the description alone", PushBaseRsp(PUSH_ERR_NONE, std::string("x")),
         "x"},
        {"description with inner code only", PushBaseRsp(std::string("x"), INNER_ERR_DATA_CONVERT_FAILED),
         "x: error(-1), innerCode(100002014)"},
        {"inner code alone", PushBaseRsp(INNER_ERR_CLIENT_INFO_REFUSED), ": error(-1), innerCode(100000016)"},
        {"inner code on a success is shown", PushBaseRsp(PUSH_SUCCESS, 7, std::string("ok")),
         "ok: error(0), innerCode(7)"},
        {"negative inner code", PushBaseRsp(PUSH_ERR_CALLER_ILLEGAL, -3, std::string("c")),
         "c: error(202), innerCode(-3)"},
        {"sub-status never shown", PushBaseRsp(99, PUSH_ERR_INVALID_PARAM, "s"), "s: error(401)"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.rsp.GetInfo(), c.info) << c.name;
    }
}

TEST_F(PushBaseRspTest, SettersAndResetChangeOnlyTheirFields)
{
    struct Case {
        const char* name;
        void (*change)(PushBaseRsp& rsp);
        const char* info;
        int subStatus;
    };
    const Case cases[] = {
        {"error code of -1 without inner code hides the code",
         [](PushBaseRsp& rsp) {
             rsp.SetErr(PUSH_ERR_NONE);
             rsp.SetDesc("d");
         },
         "d", 5},
        {"inner code set later is shown",
         [](PushBaseRsp& rsp) { rsp.SetInnerErr(100000142); }, "start: error(401), innerCode(100000142)", 5},
        {"inner code cleared again with INT_MIN",
         [](PushBaseRsp& rsp) {
             rsp.SetInnerErr(3);
             rsp.SetInnerErr(INT_MIN);
         },
         "start: error(401)", 5},
        {"reset takes error, description and inner code but keeps the sub-status",
         [](PushBaseRsp& rsp) { rsp.Reset(PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, 100000143, std::string("other"))); },
         "other: error(1000900001), innerCode(100000143)", 5},
        {"reset from a result with its own sub-status keeps ours",
         [](PushBaseRsp& rsp) { rsp.Reset(PushBaseRsp(77, PUSH_SUCCESS, "")); }, "", 5},
        {"reset clears an inner code the source does not have",
         [](PushBaseRsp& rsp) {
             rsp.SetInnerErr(9);
             rsp.Reset(PushBaseRsp(PUSH_ERR_CALLER_ILLEGAL, std::string("src")));
         },
         "src: error(202)", 5},
    };
    for (const auto& c : cases) {
        PushBaseRsp rsp(5, PUSH_ERR_INVALID_PARAM, "start");
        c.change(rsp);
        EXPECT_EQ(rsp.GetInfo(), c.info) << c.name;
        EXPECT_EQ(rsp.GetSubStatusCode(), c.subStatus) << c.name;
    }
}

TEST_F(PushBaseRspTest, FormattedDescriptionsLongerThan4096AreDropped)
{
    struct Case {
        const char* name;
        size_t length;
        bool kept;
    };
    const Case cases[] = {
        {"4095 characters kept", 4095, true},
        {"exactly 4096 characters kept", 4096, true},
        {"4097 characters dropped", 4097, false},
        {"far longer dropped", 100000, false},
    };
    for (const auto& c : cases) {
        std::string text(c.length, 'q');
        PushBaseRsp plain(PUSH_ERR_INVALID_PARAM, "%s", text.c_str());
        PushBaseRsp withSubStatus(3, PUSH_ERR_INVALID_PARAM, "%s", text.c_str());
        const std::string expected = c.kept ? text : std::string();
        EXPECT_EQ(plain.GetErrDescription(), expected) << c.name;
        EXPECT_EQ(withSubStatus.GetErrDescription(), expected) << c.name;
        EXPECT_EQ(plain.GetErr(), PUSH_ERR_INVALID_PARAM) << c.name;
        EXPECT_EQ(withSubStatus.GetSubStatusCode(), 3) << c.name;
    }
}

}  // namespace
