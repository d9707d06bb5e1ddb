// `kavo-push certchain`: the device certificate chain attesting a challenge, as PEM.
#include "cli_io.h"
#include "command.h"
#include "kavo/push/codec/dcm_service.h"

namespace KavoTool {

namespace {

// The chain comes leaf first: the device certificate, the intermediate, the root.
const char* const CHAIN_FILES[] = {"device.pem", "intermediate.pem", "root.pem"};
constexpr size_t CHAIN_LENGTH = sizeof(CHAIN_FILES) / sizeof(CHAIN_FILES[0]);

int WriteChainFiles(const std::string& dir, const std::vector<std::string>& pems)
{
    if (pems.size() != CHAIN_LENGTH) {
        return Failed("certchain", "expected 3 certificates, got " + std::to_string(pems.size()));
    }
    std::string written;
    for (size_t i = 0; i < CHAIN_LENGTH; ++i) {
        std::string path = dir + "/" + CHAIN_FILES[i];
        std::string error;
        if (!WriteFile(path, pems[i] + "\n", 0644, error)) {
            return Failed("certchain", error);
        }
        written += path + "\n";
    }
    WriteStdout(written);
    return EXIT_OK;
}

int RunCertchain(const std::vector<std::string>& args)
{
    Arguments a;
    std::string error;
    if (!ParseArguments(args, {{}, {"--challenge", "--out-dir"}}, a, error)) {
        return UsageError("certchain", error);
    }
    if (!a.positional.empty()) {
        return UsageError("certchain", "unexpected argument " + a.positional[0]);
    }
    if (!a.Has("--challenge")) {
        return UsageError("certchain", "--challenge TEXT is required");
    }
    std::string challenge = a.Value("--challenge");
    std::vector<std::string> pems;
    auto rsp = Kavo::Push::DcmService::GetCertChain(challenge, pems);
    if (!rsp.Succeed()) {
        return Failed("certchain", rsp.GetInfo());
    }
    if (a.Has("--out-dir")) {
        return WriteChainFiles(a.Value("--out-dir"), pems);
    }
    for (const auto& pem : pems) {
        WriteStdout(pem + "\n");
    }
    return EXIT_OK;
}

}  // namespace

KAVO_REGISTER_COMMAND("certchain", "attest a challenge: the device certificate chain as PEM",
                      "usage: kavo-push certchain --challenge TEXT [--out-dir DIR]\n\n"
                      "Asks the device certificate manager to attest this device against TEXT and\n"
                      "prints the chain as PEM, leaf first: the device certificate (TEXT in its\n"
                      "challenge extension), the intermediate, the root. With --out-dir the three go\n"
                      "to DIR/device.pem, DIR/intermediate.pem and DIR/root.pem instead, and their\n"
                      "paths are printed. DIR must exist. Check a chain with\n"
                      "  openssl verify -CAfile root.pem -untrusted intermediate.pem device.pem\n"
                      "Exit status: 0, 1 when the chain cannot be made or written, 2 on bad usage.\n",
                      RunCertchain);

}  // namespace KavoTool
