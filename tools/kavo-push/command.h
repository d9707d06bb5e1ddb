// Commands of the kavo-push tool. Each command lives in its own file and registers itself
// with a static KAVO_REGISTER_COMMAND, so adding one touches no other file.
//
// Exit status: 0 success, 1 the operation failed, 2 bad usage. Results go to standard
// output, diagnostics to standard error.
#ifndef KAVO_TOOLS_KAVO_PUSH_COMMAND_H
#define KAVO_TOOLS_KAVO_PUSH_COMMAND_H

#include <functional>
#include <string>
#include <vector>

namespace KavoTool {

constexpr int EXIT_OK = 0;
constexpr int EXIT_FAILED = 1;
constexpr int EXIT_USAGE = 2;

struct Command {
    std::string name;
    std::string summary;
    std::string usage;  // full help text shown by `kavo-push NAME --help`
    std::function<int(const std::vector<std::string>& args)> run;
};

std::vector<Command>& Commands();

struct CommandRegistrar {
    explicit CommandRegistrar(Command command) { Commands().push_back(std::move(command)); }
};

// True when args ask for help; the caller prints the usage and exits 0.
bool WantsHelp(const std::vector<std::string>& args);
// Prints "kavo-push NAME: message" and the usage hint to standard error; returns EXIT_USAGE.
int UsageError(const std::string& command, const std::string& message);

}  // namespace KavoTool

#define KAVO_REGISTER_COMMAND_CONCAT2(a, b) a##b
#define KAVO_REGISTER_COMMAND_CONCAT(a, b) KAVO_REGISTER_COMMAND_CONCAT2(a, b)
#define KAVO_REGISTER_COMMAND(...)                                                                                     \
    static const ::KavoTool::CommandRegistrar KAVO_REGISTER_COMMAND_CONCAT(g_registrar_,                               \
                                                                           __LINE__)(::KavoTool::Command{__VA_ARGS__})

#endif  // KAVO_TOOLS_KAVO_PUSH_COMMAND_H
