// `kavo-push sha256`: the SHA-256 digest of a file, in hex or Base64. The file streams through
// the digest in pieces, so a large one never sits in memory whole.
#include <openssl/evp.h>

#include <memory>

#include "cli_io.h"
#include "command.h"
#include "kavo/push/codec/push_base64_convert.h"
#include "kavo/push/codec/push_encrypt_helper.h"

namespace KavoTool {

namespace {

using Kavo::Push::PushEncryptHelper;
using DigestContext = std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)>;

// The raw digest of the input, so empty input has its digest too (the text forms refuse it).
bool DigestInput(const std::string& path, std::string& raw, std::string& error)
{
    DigestContext context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    if (context == nullptr || EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) != 1) {
        error = "computing the digest failed";
        return false;
    }
    auto add = [&context](const char* data, size_t size, std::string& pieceError) {
        if (EVP_DigestUpdate(context.get(), data, size) != 1) {
            pieceError = "computing the digest failed";
            return false;
        }
        return true;
    };
    if (!ReadInputPieces(path, add, error)) {
        return false;
    }
    unsigned char digest[PushEncryptHelper::SHA256_DIGEST_BYTES] = {};
    unsigned int size = 0;
    if (EVP_DigestFinal_ex(context.get(), digest, &size) != 1 || size != sizeof(digest)) {
        error = "computing the digest failed";
        return false;
    }
    raw.assign(reinterpret_cast<const char*>(digest), sizeof(digest));
    return true;
}

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
    std::string raw;
    if (!DigestInput(a.positional.empty() ? "-" : a.positional[0], raw, error)) {
        return Failed("sha256", error);
    }
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
