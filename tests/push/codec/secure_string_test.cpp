#include "kavo/push/codec/secure_string.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <new>
#include <string>

namespace {

using Kavo::Push::SecureString;

// The string is built inside a buffer the test owns, so its inline storage can be read after
// the destructor has run.
struct Placed {
    alignas(SecureString) unsigned char storage[sizeof(SecureString)] = {};
    SecureString* string = nullptr;

    bool Inline() const
    {
        auto* data = reinterpret_cast<const unsigned char*>(string->data());
        return data >= storage && data < storage + sizeof(storage);
    }
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
    };
    const Case cases[] = {
        {"a short key is wiped", "k3y!"},
        {"zero bytes inside the contents do not stop the wipe", std::string("ab\0cd\0ef", 8)},
        {"the longest inline contents are wiped to the last byte", "0123456789abcde"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.behaviour);
        Placed placed;
        placed.string = new (placed.storage) SecureString(c.bytes.data(), c.bytes.size());
        ASSERT_EQ(*placed.string, c.bytes);
        ASSERT_TRUE(placed.Inline()) << "the case must exercise the short-string buffer";
        size_t offset = static_cast<size_t>(reinterpret_cast<unsigned char*>(placed.string->data()) - placed.storage);
        ASSERT_TRUE(placed.Holds(c.bytes));
        placed.string->~SecureString();
        EXPECT_FALSE(placed.Holds(c.bytes));
        EXPECT_TRUE(std::all_of(placed.storage + offset, placed.storage + offset + c.bytes.size(),
                                [](unsigned char b) { return b == 0; }));
    }
}

TEST(SecureStringTest, MovedFromStringStillWipesItsBytes)
{
    Placed placed;
    placed.string = new (placed.storage) SecureString("secret", 6);
    SecureString taken(std::move(*placed.string));
    EXPECT_EQ(taken, "secret");
    placed.string->~SecureString();
    EXPECT_FALSE(placed.Holds("secret"));
}

TEST(SecureStringTest, EmptyStringIsDestroyedWithoutWiping)
{
    Placed placed;
    placed.string = new (placed.storage) SecureString();
    placed.string->~SecureString();
    SUCCEED();
}

}  // namespace
