#include "kavo/push/codec/secure_string.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <new>
#include <string>

namespace {

using Kavo::Push::SecureString;

// Built inside a buffer the test owns, so the inline storage can be read after destruction.
struct Placed {
    alignas(SecureString) unsigned char storage[sizeof(SecureString)] = {};

    bool Holds(const std::string& bytes) const
    {
        return std::search(std::begin(storage), std::end(storage), bytes.begin(), bytes.end()) != std::end(storage);
    }
};

TEST(SecureStringTest, DestructorZeroesInlineContents)
{
    struct Case {
        const char* behaviour;
        std::string bytes;
        bool moveFirst;
    };
    const Case cases[] = {
        {"a short key is wiped", "k3y!", false},
        {"zero bytes inside do not stop the wipe", std::string("ab\0cd\0ef", 8), false},
        {"the longest inline contents are wiped to the last byte", "0123456789abcde", false},
        {"a moved-from string still wipes what it held", "secret", true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        Placed placed;
        auto* string = new (placed.storage) SecureString(c.bytes.data(), c.bytes.size());
        ASSERT_TRUE(placed.Holds(c.bytes)) << "the case must exercise the short-string buffer";
        if (c.moveFirst) {
            SecureString taken(std::move(*string));
            EXPECT_EQ(taken, c.bytes);
        }
        string->~SecureString();
        EXPECT_FALSE(placed.Holds(c.bytes));
    }
}

}  // namespace
