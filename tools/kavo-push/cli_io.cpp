#include "cli_io.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <limits>

#include "command.h"

namespace KavoTool {

namespace {

bool Contains(const std::vector<std::string>& names, const std::string& name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool IsOption(const std::string& arg)
{
    return arg.size() > 1 && arg[0] == '-' && !std::isdigit(static_cast<unsigned char>(arg[1]));
}

std::string SystemError(const std::string& action, const std::string& path)
{
    return "cannot " + action + " " + path + ": " + std::strerror(errno);
}

int HexDigit(char c)
{
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return -1;
}

bool IsSpace(char c)
{
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

// Reads one option at args[i] into `out`, taking its value from the next argument when needed.
bool ParseOption(const std::vector<std::string>& args, size_t& i, const AcceptedOptions& accepted, Arguments& out,
                 std::string& error)
{
    std::string name = args[i];
    std::string value;
    size_t equals = name.find('=');
    bool inlineValue = equals != std::string::npos;
    if (inlineValue) {
        value = name.substr(equals + 1);
        name.resize(equals);
    }
    if (out.Has(name)) {
        error = "option " + name + " given twice";
        return false;
    }
    if (Contains(accepted.flags, name) && !inlineValue) {
        out.flags.insert(name);
        return true;
    }
    if (!Contains(accepted.valued, name)) {
        error = Contains(accepted.flags, name) ? "option " + name + " takes no value" : "unknown option " + name;
        return false;
    }
    if (!inlineValue) {
        if (i + 1 >= args.size()) {
            error = "option " + name + " needs a value";
            return false;
        }
        value = args[++i];
    }
    out.values[name] = value;
    return true;
}

}  // namespace

bool Arguments::Has(const std::string& name) const
{
    return flags.count(name) != 0 || values.count(name) != 0;
}

std::string Arguments::Value(const std::string& name, const std::string& fallback) const
{
    auto found = values.find(name);
    return found == values.end() ? fallback : found->second;
}

bool ParseArguments(const std::vector<std::string>& args, const AcceptedOptions& accepted, Arguments& out,
                    std::string& error)
{
    for (size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--") {
            out.positional.insert(out.positional.end(), args.begin() + static_cast<std::ptrdiff_t>(i) + 1, args.end());
            return true;
        }
        if (!IsOption(args[i])) {
            out.positional.push_back(args[i]);
        } else if (!ParseOption(args, i, accepted, out, error)) {
            return false;
        }
    }
    return true;
}

bool ReadInputPieces(const std::string& path, const InputConsumer& consume, std::string& error)
{
    bool useStdin = path.empty() || path == "-";
    int fd = useStdin ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        error = SystemError("open", path);
        return false;
    }
    std::vector<char> buffer(INPUT_PIECE_BYTES);
    bool ok = true;
    ssize_t got = 0;
    while (ok && (got = read(fd, buffer.data(), buffer.size())) != 0) {
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            error = SystemError("read", useStdin ? "standard input" : path);
            ok = false;
        } else {
            ok = consume(buffer.data(), static_cast<size_t>(got), error);
        }
    }
    if (!useStdin) {
        close(fd);
    }
    return ok;
}

bool ReadInput(const std::string& path, std::string& data, std::string& error)
{
    std::string result;
    auto append = [&result](const char* piece, size_t size, std::string&) {
        result.append(piece, size);
        return true;
    };
    if (!ReadInputPieces(path, append, error)) {
        return false;
    }
    data = std::move(result);
    return true;
}

bool WriteFile(const std::string& path, const std::string& data, mode_t mode, std::string& error)
{
    int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, mode);
    if (fd < 0 || fchmod(fd, mode) != 0) {
        error = SystemError("write", path);
        if (fd >= 0) {
            close(fd);
        }
        return false;
    }
    size_t done = 0;
    while (done < data.size()) {
        ssize_t put = write(fd, data.data() + done, data.size() - done);
        if (put < 0 && errno == EINTR) {
            continue;
        }
        if (put < 0) {
            error = SystemError("write", path);
            close(fd);
            return false;
        }
        done += static_cast<size_t>(put);
    }
    if (close(fd) != 0) {
        error = SystemError("write", path);
        return false;
    }
    return true;
}

bool ReadBytes(const std::string& path, bool hex, std::string& bytes, std::string& error)
{
    std::string data;
    if (!ReadInput(path, data, error)) {
        return false;
    }
    if (!hex) {
        bytes = std::move(data);
        return true;
    }
    return ParseHex(data, bytes, error);
}

void WriteStdout(const std::string& data)
{
    std::cout.write(data.data(), static_cast<std::streamsize>(data.size()));
}

Kavo::Push::SecureString ToHex(const std::string& bytes)
{
    static const char DIGITS[] = "0123456789abcdef";
    Kavo::Push::SecureString text;
    text.reserve(bytes.size() * 2);
    for (unsigned char byte : bytes) {
        text += DIGITS[byte >> 4];
        text += DIGITS[byte & 0x0F];
    }
    return text;
}

bool ParseHex(const std::string& text, std::string& bytes, std::string& error)
{
    std::string digits = WithoutSpace(text);
    if (digits.size() % 2 != 0) {
        error = "odd number of hex digits";
        return false;
    }
    std::string result(digits.size() / 2, '\0');
    for (size_t i = 0; i < digits.size(); ++i) {
        int value = HexDigit(digits[i]);
        if (value < 0) {
            error = std::string("not a hex digit: '") + digits[i] + "'";
            return false;
        }
        result[i / 2] = static_cast<char>(i % 2 == 0 ? value << 4 : (result[i / 2] | value));
    }
    bytes = std::move(result);
    return true;
}

std::string WithoutSpace(const std::string& text)
{
    std::string result = text;
    result.erase(std::remove_if(result.begin(), result.end(), IsSpace), result.end());
    return result;
}

bool ParseInt32(const std::string& text, int32_t& value)
{
    if (text.empty() || IsSpace(text[0])) {
        return false;
    }
    errno = 0;
    char* end = nullptr;
    long long parsed = std::strtoll(text.c_str(), &end, 10);
    if (errno != 0 || end != text.c_str() + text.size() || parsed < std::numeric_limits<int32_t>::min() ||
        parsed > std::numeric_limits<int32_t>::max()) {
        return false;
    }
    value = static_cast<int32_t>(parsed);
    return true;
}

void ShowErrorLog()
{
    const char* level = std::getenv("KAVO_LOG_LEVEL");
    if (level != nullptr && std::strcmp(level, "fatal") == 0) {
        setenv("KAVO_LOG_LEVEL", "error", 1);
    }
}

int Failed(const std::string& command, const std::string& message)
{
    std::cerr << "kavo-push " << command << ": " << message << "\n";
    return EXIT_FAILED;
}

}  // namespace KavoTool
