#include "kavo/push/codec/secure_string.h"

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <string>
#include <utility>

namespace {

using namespace Kavo::Push;

// Placed in storage the test owns, so the inline buffer can be read after the string is done.
TEST(SecureStringTest, SecretBytesAreWipedOnEveryWayOut)
{
    struct Case {
        const char* behaviour;
        std::function<void(SecureString&)> before;  // done to the string before it dies
        bool wipedAtOnce;                           // the bytes past its new end are zero already
    };
    const Case cases[] = {
        {"destroyed as it is", [](SecureString&) {}, true},
        {"moved into a plain string, leaving bytes behind", [](SecureString& s) { std::string other(std::move(s)); },
         false},
        {"assigned shorter contents, wiping the old tail at once", [](SecureString& s) { s = SecureString("x"); },
         true},
    };
    for (const std::string& bytes : {std::string("k3y!"), std::string("ab\0cd\0ef", 8), std::string(15, 's')}) {
        for (const Case& c : cases) {
            alignas(SecureString) char storage[sizeof(SecureString)] = {};
            auto* string = new (storage) SecureString(bytes.data(), bytes.size());
            const size_t at = std::string(storage, sizeof(storage)).find(bytes);
            ASSERT_NE(at, std::string::npos) << "the case must use the short-string buffer";
            c.before(*string);
            const std::string tail(storage + at + string->size(), bytes.size() - string->size());
            EXPECT_TRUE(!c.wipedAtOnce || tail == std::string(tail.size(), '\0')) << c.behaviour;
            string->~SecureString();
            EXPECT_EQ(std::string(storage + at, bytes.size()), std::string(bytes.size(), '\0')) << c.behaviour;
        }
    }
}

}  // namespace
