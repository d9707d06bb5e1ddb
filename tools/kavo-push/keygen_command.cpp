// `kavo-push keygen`: a fresh Ed25519 key pair as the library hands it out.
#include <sys/stat.h>

#include "cli_io.h"
#include "command.h"
#include "kavo/push/codec/push_curve25519_helper.h"

namespace KavoTool {

namespace {

using Kavo::Push::SecureString;

constexpr mode_t PRIVATE_FILE = S_IRUSR | S_IWUSR;
constexpr mode_t PUBLIC_FILE = S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH;

// The key material holds the private key: its file is readable by the owner alone.
int WriteKeyFiles(const std::string& dir, const SecureString& material, const SecureString& der)
{
    std::string error;
    std::string materialPath = dir + "/key_material.bin";
    std::string derPath = dir + "/public_key.der";
    if (!WriteFile(materialPath, material, PRIVATE_FILE, error) || !WriteFile(derPath, der, PUBLIC_FILE, error)) {
        return Failed("keygen", error);
    }
    WriteStdout(materialPath + "\n" + derPath + "\n");
    return EXIT_OK;
}

int RunKeygen(const std::vector<std::string>& args)
{
    Arguments a;
    std::string error;
    if (!ParseArguments(args, {{}, {"--out-dir"}}, a, error)) {
        return UsageError("keygen", error);
    }
    if (!a.positional.empty()) {
        return UsageError("keygen", "unexpected argument " + a.positional[0]);
    }
    SecureString material;
    SecureString der;
    auto rsp = Kavo::Push::PushCurve25519Helper::GenerateEd25519Key(material, der);
    // A failed key material alone does not fail the call; the tool wants both.
    if (!rsp.Succeed() || material.empty() || der.empty()) {
        return Failed("keygen", "key generation failed: " + rsp.GetInfo());
    }
    if (a.Has("--out-dir")) {
        return WriteKeyFiles(a.Value("--out-dir"), material, der);
    }
    SecureString out = "key-material: ";
    out += ToHex(material);  // piece by piece: every temporary holding key bytes wipes itself
    out += "\npublic-key-der: ";
    out += ToHex(der);
    out += "\n";
    WriteStdout(out);
    return EXIT_OK;
}

}  // namespace

KAVO_REGISTER_COMMAND("keygen", "make an Ed25519 key pair: key material and DER public key",
                      "usage: kavo-push keygen [--out-dir DIR]\n\n"
                      "Makes a fresh Ed25519 key pair and prints two lines of lower-case hex:\n"
                      "  key-material: HEX     84 bytes: five 32-bit words in host byte order\n"
                      "                        (algorithm 102, key bits 256, public-key length,\n"
                      "                        private-key length, 0), the public key, the private key\n"
                      "  public-key-der: HEX   the public key as a DER SubjectPublicKeyInfo\n"
                      "With --out-dir the bytes go to DIR/key_material.bin (owner-only) and\n"
                      "DIR/public_key.der instead, and their paths are printed. DIR must exist.\n"
                      "Exit status: 0, 1 when the keys cannot be made or written, 2 on bad usage.\n",
                      RunKeygen);

}  // namespace KavoTool
