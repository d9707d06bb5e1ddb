// `kavo-push base64 encode|decode`: standard Base64 on one line, through the library's codec.
// The input streams through in pieces, so a large file never sits in memory whole; an input up
// to one piece is still one call on all of it.
#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <cstring>

#include "cli_io.h"
#include "command.h"
#include "kavo/push/codec/push_base64_convert.h"

namespace KavoTool {

namespace {

using Kavo::Push::PushBase64Convert;
using Kavo::Push::SecureString;

// Multiples of 3 bytes encode without padding, so the pieces' texts join into the whole text.
constexpr size_t ENCODE_PIECE_BYTES = size_t{3} * 16384;
// Multiples of 4 characters decode on their own into the bytes of the whole text.
constexpr size_t DECODE_PIECE_CHARS = size_t{4} * 16384;

// Encodes whole pieces as the bytes arrive; what is left, the only part that may need padding,
// goes at the end.
class Encoder {
public:
    bool Add(const char* data, size_t size, std::string& error)
    {
        pending_.append(data, size);
        while (pending_.size() > ENCODE_PIECE_BYTES) {
            if (!Put(pending_.substr(0, ENCODE_PIECE_BYTES), error)) {
                return false;
            }
            pending_.erase(0, ENCODE_PIECE_BYTES);
        }
        return true;
    }

    // The codec refuses nothing to encode; its Base64 is nothing too.
    bool Finish(std::string& error)
    {
        if (pending_.empty()) {
            return true;
        }
        if (!Put(pending_, error)) {
            return false;
        }
        WriteStdout("\n");
        return true;
    }

private:
    static bool Put(const SecureString& bytes, std::string& error)
    {
        SecureString text = PushBase64Convert::Base64Encode(bytes);
        if (text.empty()) {
            error = "encoding failed";
            return false;
        }
        WriteStdout(text);
        return true;
    }

    SecureString pending_;
};

// The value of each character of the alphabet, -1 for every other byte.
constexpr std::array<int8_t, 256> AlphabetValues()
{
    std::array<int8_t, 256> values{};
    for (auto& value : values) {
        value = -1;
    }
    const char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    for (int8_t i = 0; i < 64; ++i) {
        values[static_cast<unsigned char>(alphabet[i])] = i;
    }
    return values;
}

constexpr std::array<int8_t, 256> ALPHABET_VALUES = AlphabetValues();
constexpr size_t BLOCK_CHARS = 64;

// Whether all BLOCK_CHARS bytes are in the alphabet. Branch-free, so the compiler checks them
// side by side; most text is nothing else.
bool BlockInAlphabet(const unsigned char* bytes)
{
    // Byte-wide throughout, so each lane holds one character.
    unsigned char outside = 0;
    for (size_t i = 0; i < BLOCK_CHARS; ++i) {
        const unsigned char c = bytes[i];
        const bool letter = static_cast<unsigned char>((c | 0x20) - 'a') < 26;
        const bool digit = static_cast<unsigned char>(c - '0') < 10;
        outside |= static_cast<unsigned char>(!(letter | digit | (c == '+') | (c == '/')));
    }
    return outside == 0;
}

// Line breaks and spaces are dropped as the text arrives, and it is checked in the same pass:
// only canonical, padded Base64 passes, the text a Base64 encoder would give back for its bytes.
// The codec alone would skip an unfinished last group and accept stray bits in the last one.
// Padding ends the text, so a piece followed by more text may hold none; the last piece keeps
// a whole group before any unfinished one, so the codec sees the end of the text as it would
// see it whole.
class Decoder {
public:
    Decoder()
    {
        pending_.reserve(FULL);
        rest_.reserve(FULL);
    }

    bool Add(const char* data, size_t size, std::string& error)
    {
        for (size_t used = 0; used < size;) {
            used = Append(data, size, used);
            if (pending_.size() == FULL && !Put(DECODE_PIECE_CHARS, error)) {
                return false;
            }
        }
        return true;
    }

    bool Finish(std::string& error) { return pending_.empty() || Put(pending_.size(), error); }

private:
    // A piece and the group after it: the piece is decoded once that much text is pending.
    static constexpr size_t FULL = DECODE_PIECE_CHARS + 4;
    static constexpr size_t NONE = std::string::npos;

    // Takes text from `from` until a piece and the group after it are pending, and returns where
    // it stopped. Runs of the alphabet are copied whole and white space is dropped; the first
    // other byte kept is remembered, so no piece is looked at again.
    size_t Append(const char* data, size_t size, size_t from)
    {
        const auto* bytes = reinterpret_cast<const unsigned char*>(data);
        size_t i = from;
        while (i < size && pending_.size() < FULL) {
            const size_t limit = i + std::min(FULL - pending_.size(), size - i);
            size_t end = i;
            while (end + BLOCK_CHARS <= limit && BlockInAlphabet(bytes + end)) {
                end += BLOCK_CHARS;
            }
            while (end < limit && ALPHABET_VALUES[bytes[end]] >= 0) {
                ++end;
            }
            pending_.append(data + i, end - i);
            i = end;
            if (end < limit) {
                if (std::isspace(bytes[end]) == 0) {
                    firstOutside_ = std::min(firstOutside_, pending_.size());
                    pending_ += data[end];
                }
                ++i;
            }
        }
        return i;
    }

    // The first `size` characters pending, padded at the end only when they are the last.
    bool Canonical(size_t size) const
    {
        if (firstOutside_ >= size) {
            return size % 4 == 0;
        }
        const size_t padding = size - firstOutside_;
        if (size != pending_.size() || size % 4 != 0 || padding > 2 || pending_[size - 1] != '=' ||
            pending_[firstOutside_] != '=') {
            return false;
        }
        // The bits of the last character that no byte takes must be zero.
        const int8_t last = ALPHABET_VALUES[static_cast<unsigned char>(pending_[firstOutside_ - 1])];
        return (last & (padding == 1 ? 0x03 : 0x0F)) == 0;
    }

    // Decodes the first `size` characters pending and keeps the rest for the next piece.
    bool Put(size_t size, std::string& error)
    {
        const bool last = size == pending_.size();
        if (!last && firstOutside_ < size &&
            std::memchr(pending_.data() + firstOutside_, '=', size - firstOutside_) != nullptr) {
            error = "input is not valid Base64";
            return false;
        }
        const bool canonical = Canonical(size);
        rest_.assign(pending_, size, NONE);
        pending_.resize(size);
        // The codec is asked even for text already known bad, so its own report stays as it was.
        const SecureString bytes = PushBase64Convert::Base64Decode(pending_);
        if (bytes.empty() || !canonical) {
            error = "input is not valid Base64";
            return false;
        }
        WriteStdout(bytes);
        pending_.swap(rest_);
        firstOutside_ = firstOutside_ == NONE ? NONE : firstOutside_ - size;
        return true;
    }

    SecureString pending_;
    SecureString rest_;
    size_t firstOutside_ = NONE;
};

template <class Coder>
int Stream(const std::string& path)
{
    Coder coder;
    std::string error;
    auto add = [&coder](const char* data, size_t size, std::string& pieceError) {
        return coder.Add(data, size, pieceError);
    };
    if (!ReadInputPieces(path, add, error) || !coder.Finish(error)) {
        return Failed("base64", error);
    }
    return EXIT_OK;
}

int RunBase64(const std::vector<std::string>& args)
{
    Arguments a;
    std::string error;
    if (!ParseArguments(args, {}, a, error)) {
        return UsageError("base64", error);
    }
    if (a.positional.empty() || (a.positional[0] != "encode" && a.positional[0] != "decode")) {
        return UsageError("base64", "expected encode or decode");
    }
    if (a.positional.size() > 2) {
        return UsageError("base64", "expected at most one FILE");
    }
    const std::string path = a.positional.size() == 2 ? a.positional[1] : "-";
    return a.positional[0] == "encode" ? Stream<Encoder>(path) : Stream<Decoder>(path);
}

}  // namespace

KAVO_REGISTER_COMMAND("base64", "encode bytes as Base64 or decode Base64 text",
                      "usage: kavo-push base64 encode|decode [FILE|-]\n\n"
                      "encode prints the bytes of FILE (standard input when FILE is - or absent) as\n"
                      "standard Base64 with '=' padding on one line. decode writes the bytes the\n"
                      "Base64 text stands for; spaces and line breaks in the text are ignored. Both\n"
                      "stream: on a long input that turns out invalid or unreadable, the output\n"
                      "written before the fault stays.\n"
                      "Exit status: 0, 1 when the input cannot be read or is not valid Base64,\n"
                      "2 on bad usage.\n",
                      RunBase64);

}  // namespace KavoTool
