// `kavo-push base64 encode|decode`: standard Base64 on one line, through the library's codec.
// The input streams through in pieces, so a large file never sits in memory whole; an input up
// to one piece is still one call on all of it.
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

// Line breaks and spaces are dropped first, so wrapped text decodes too. The codec skips an
// unfinished last group and accepts stray bits in the last one, so each piece is encoded again
// and must give its text back: only canonical, padded Base64 passes. Padding ends the text, so
// a piece followed by more text may hold none; the last piece keeps a whole group before any
// unfinished one, so the codec sees the end of the text as it would see it whole.
class Decoder {
public:
    bool Add(const char* data, size_t size, std::string& error)
    {
        pending_ += WithoutSpace(std::string(data, size));
        while (pending_.size() >= DECODE_PIECE_CHARS + 4) {
            SecureString piece = pending_.substr(0, DECODE_PIECE_CHARS);
            if (piece.find('=') != std::string::npos) {
                error = "input is not valid Base64";
                return false;
            }
            if (!Put(piece, error)) {
                return false;
            }
            pending_.erase(0, DECODE_PIECE_CHARS);
        }
        return true;
    }

    bool Finish(std::string& error) { return pending_.empty() || Put(pending_, error); }

private:
    static bool Put(const SecureString& text, std::string& error)
    {
        SecureString bytes = PushBase64Convert::Base64Decode(text);
        if (bytes.empty() || PushBase64Convert::Base64Encode(bytes) != text) {
            error = "input is not valid Base64";
            return false;
        }
        WriteStdout(bytes);
        return true;
    }

    SecureString pending_;
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
