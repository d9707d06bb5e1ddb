// `kavo-push base64 encode|decode`: standard Base64 on one line, through the library's codec.
#include "cli_io.h"
#include "command.h"
#include "kavo/push/codec/push_base64_convert.h"

namespace KavoTool {

namespace {

using Kavo::Push::PushBase64Convert;
using Kavo::Push::SecureString;

int Encode(const std::string& data)
{
    // The codec refuses nothing to encode; its Base64 is nothing too.
    if (data.empty()) {
        return EXIT_OK;
    }
    SecureString text = PushBase64Convert::Base64Encode(data);
    if (text.empty()) {
        return Failed("base64", "encoding failed");
    }
    WriteStdout(text + "\n");
    return EXIT_OK;
}

// Line breaks and spaces are dropped first, so wrapped text decodes too. The codec skips an
// unfinished last group and accepts stray bits in the last one, so the result is encoded again
// and must give the text back: only canonical, padded Base64 passes.
int Decode(const std::string& data)
{
    SecureString text = WithoutSpace(data);
    if (text.empty()) {
        return EXIT_OK;
    }
    SecureString bytes = PushBase64Convert::Base64Decode(text);
    if (bytes.empty() || PushBase64Convert::Base64Encode(bytes) != text) {
        return Failed("base64", "input is not valid Base64");
    }
    WriteStdout(bytes);
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
    std::string data;
    if (!ReadInput(a.positional.size() == 2 ? a.positional[1] : "-", data, error)) {
        return Failed("base64", error);
    }
    return a.positional[0] == "encode" ? Encode(data) : Decode(data);
}

}  // namespace

KAVO_REGISTER_COMMAND("base64", "encode bytes as Base64 or decode Base64 text",
                      "usage: kavo-push base64 encode|decode [FILE|-]\n\n"
                      "encode prints the bytes of FILE (standard input when FILE is - or absent) as\n"
                      "standard Base64 with '=' padding on one line. decode writes the bytes the\n"
                      "Base64 text stands for; spaces and line breaks in the text are ignored.\n"
                      "Exit status: 0, 1 when the input cannot be read or is not valid Base64,\n"
                      "2 on bad usage.\n",
                      RunBase64);

}  // namespace KavoTool
