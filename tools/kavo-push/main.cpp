// kavo-push: the push utilities at a prompt. `kavo-push help` lists the commands.
#include <algorithm>
#include <cstdio>
#include <iostream>

#include "command.h"

namespace KavoTool {

std::vector<Command>& Commands()
{
    static std::vector<Command> commands;
    return commands;
}

bool WantsHelp(const std::vector<std::string>& args)
{
    return std::any_of(args.begin(), args.end(), [](const std::string& a) { return a == "--help" || a == "-h"; });
}

int UsageError(const std::string& command, const std::string& message)
{
    std::cerr << "kavo-push " << command << ": " << message << "\n"
              << "Try 'kavo-push " << command << " --help'.\n";
    return EXIT_USAGE;
}

namespace {

void PrintOverview(std::ostream& out)
{
    auto commands = Commands();
    std::sort(commands.begin(), commands.end(), [](const Command& a, const Command& b) { return a.name < b.name; });
    out << "usage: kavo-push COMMAND [ARGS...]\n\nCommands:\n";
    for (const auto& command : commands) {
        out << "  " << command.name << std::string(command.name.size() < 12 ? 12 - command.name.size() : 1, ' ')
            << command.summary << "\n";
    }
    out << "\n'kavo-push COMMAND --help' describes one command.\n";
}

// A result that did not reach standard output (a full disk, a closed pipe) fails the command.
int Finish(int status)
{
    if (!std::cout.flush()) {
        std::cerr << "kavo-push: cannot write standard output\n";
        return status == EXIT_OK ? EXIT_FAILED : status;
    }
    return status;
}

}  // namespace

}  // namespace KavoTool

int main(int argc, char** argv)
{
    using namespace KavoTool;
    if (argc < 2) {
        PrintOverview(std::cerr);
        return EXIT_USAGE;
    }
    std::string name = argv[1];
    if (name == "help" || name == "--help" || name == "-h") {
        PrintOverview(std::cout);
        return Finish(EXIT_OK);
    }
    std::vector<std::string> args(argv + 2, argv + argc);
    for (const auto& command : Commands()) {
        if (command.name != name) {
            continue;
        }
        if (WantsHelp(args)) {
            std::cout << command.usage;
            return Finish(EXIT_OK);
        }
        return Finish(command.run(args));
    }
    std::cerr << "kavo-push: unknown command '" << name << "'\n";
    PrintOverview(std::cerr);
    return EXIT_USAGE;
}
