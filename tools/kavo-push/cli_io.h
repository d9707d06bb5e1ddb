// What every kavo-push command needs around the library call: its options parsed, its input
// read from a FILE or standard input, hex in and out, files written, and a failure reported.
// Plain functions on their arguments; the tool runs one command on one thread.
//
//   Arguments a;
//   std::string error;
//   if (!ParseArguments(args, {{"--hex"}, {"--out-dir"}}, a, error)) { return UsageError("decode", error); }
#ifndef KAVO_TOOLS_KAVO_PUSH_CLI_IO_H
#define KAVO_TOOLS_KAVO_PUSH_CLI_IO_H

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "kavo/push/codec/secure_string.h"

namespace KavoTool {

// The options a command accepts, all long ("--name"): flags stand alone, valued options take
// the next argument or "--name=VALUE".
struct AcceptedOptions {
    std::vector<std::string> flags;
    std::vector<std::string> valued;
};

struct Arguments {
    std::set<std::string> flags;
    std::map<std::string, std::string> values;
    std::vector<std::string> positional;  // in order; "-" is one, and all after "--" are

    bool Has(const std::string& name) const;
    std::string Value(const std::string& name, const std::string& fallback = "") const;
};

// Fails, with `error` saying why, on an unknown or repeated option, a valued option without its
// value and a flag given a value. A leading '-' followed by a digit is a number, not an option.
bool ParseArguments(const std::vector<std::string>& args, const AcceptedOptions& accepted, Arguments& out,
                    std::string& error);

// Hands the bytes of the file at `path`, or of standard input when it is "-" or empty, to
// `consume` in order, at most INPUT_PIECE_BYTES at a time, so a large file never sits in memory
// whole. Stops at the first piece `consume` refuses (it sets `error`) or at a read error.
constexpr size_t INPUT_PIECE_BYTES = 65536;
using InputConsumer = std::function<bool(const char* data, size_t size, std::string& error)>;
bool ReadInputPieces(const std::string& path, const InputConsumer& consume, std::string& error);
// Reads all bytes of the file at `path`, or of standard input when it is "-" or empty.
bool ReadInput(const std::string& path, std::string& data, std::string& error);
// Creates or replaces the file with exactly `data`, its permission bits set to `mode`
// (an existing file's too, so a key file never stays readable by others).
bool WriteFile(const std::string& path, const std::string& data, mode_t mode, std::string& error);
// ReadInput, then ParseHex when `hex` is set.
bool ReadBytes(const std::string& path, bool hex, std::string& bytes, std::string& error);
// Writes the bytes as they are; main checks standard output once the command returns.
void WriteStdout(const std::string& data);

// Two lower-case digits per byte.
Kavo::Push::SecureString ToHex(const std::string& bytes);
// Either case; white space anywhere is skipped. Fails on an odd digit count or a non-hex
// character, leaving `bytes` untouched.
bool ParseHex(const std::string& text, std::string& bytes, std::string& error);
// The text without any white space (spaces, tabs, line breaks).
std::string WithoutSpace(const std::string& text);
// A whole decimal number in range, optionally signed; nothing else around it.
bool ParseInt32(const std::string& text, int32_t& value);

// The library says why a record does not decode in its error log lines: keeps them on standard
// error even when KAVO_LOG_LEVEL asks for fatal lines only.
void ShowErrorLog();

// Prints "kavo-push COMMAND: message" to standard error; returns EXIT_FAILED.
int Failed(const std::string& command, const std::string& message);

}  // namespace KavoTool

#endif  // KAVO_TOOLS_KAVO_PUSH_CLI_IO_H
