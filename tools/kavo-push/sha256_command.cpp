// `kavo-push sha256`: the SHA-256 digest of a file, in hex or Base64.
#include "cli_io.h"
#include "command.h"
#include "kavo/push/codec/push_base64_convert.h"
#include "kavo/push/codec/push_encrypt_helper.h"

namespace KavoTool {

namespace {

using Kavo::Push::PushEncryptHelper;

int RunSha256(const std::vector<std::string>& args)
{
    Arguments a;
    std::string error;
    if (!ParseArguments(args, {{"--base64"}, {}}, a, error)) {
        return UsageError("sha256", error);
    }
    if (a.positional.size() > 1) {
        return UsageError("sha256", "expected at most one FILE");
    }
    std::string data;
    if (!ReadInput(a.positional.empty() ? "-" : a.positional[0], data, error)) {
        return Failed("sha256", error);
    }
    // The raw digest, so empty input has its digest too (the text forms refuse it).
    unsigned char digest[PushEncryptHelper::SHA256_DIGEST_BYTES] = {};
    PushEncryptHelper::Sha256(data, digest);
    std::string raw(reinterpret_cast<const char*>(digest), sizeof(digest));
    std::string text =
        a.Has("--base64") ? std::string(Kavo::Push::PushBase64Convert::Base64Encode(raw)) : std::string(ToHex(raw));
    if (text.empty()) {
        return Failed("sha256", "encoding the digest failed");
    }
    WriteStdout(text + "\n");
    return EXIT_OK;
}

}  // namespace

KAVO_REGISTER_COMMAND("sha256", "print the SHA-256 digest of a file",
                      "usage: kavo-push sha256 [--base64] [FILE|-]\n\n"
                      "Prints the SHA-256 digest of FILE (standard input when FILE is - or absent)\n"
                      "as 64 lower-case hex digits, or with --base64 as 44 Base64 characters.\n"
                      "Exit status: 0, 1 when the input cannot be read, 2 on bad usage.\n",
                      RunSha256);

}  // namespace KavoTool
