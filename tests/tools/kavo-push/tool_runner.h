// Every call uses its own scratch directory, so suites may run calls from several threads.
#ifndef KAVO_TESTS_TOOLS_KAVO_PUSH_TOOL_RUNNER_H
#define KAVO_TESTS_TOOLS_KAVO_PUSH_TOOL_RUNNER_H

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

extern char** environ;

namespace KavoTest {

class TempDir {
public:
    TempDir()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "kavo-push-test-XXXXXX").string();
        path_ = mkdtemp(pattern.data()) != nullptr ? pattern : "";
    }
    ~TempDir()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& Path() const { return path_; }
    std::string File(const std::string& name) const { return path_ + "/" + name; }
    std::string Write(const std::string& name, const std::string& data) const
    {
        std::ofstream(File(name), std::ios::binary) << data;
        return File(name);
    }
    std::string Read(const std::string& name) const
    {
        std::ostringstream data;
        data << std::ifstream(File(name), std::ios::binary).rdbuf();
        return data.str();
    }

private:
    std::string path_;
};

struct ToolRun {
    int status = -1;  // the exit status; -1 when the process did not start or did not exit
    std::string out;
    std::string err;
    long peakKib = 0;  // the most memory the process held at once (resident, KiB)
};

// argv[0] is looked up on PATH when it has no '/'. Standard output goes to `stdoutPath` when
// one is given (its contents are then not captured).
inline ToolRun RunProgram(const std::vector<std::string>& argv, const std::string& input = "",
                          const std::string& stdoutPath = "")
{
    TempDir scratch;
    std::string outPath = stdoutPath.empty() ? scratch.File("out") : stdoutPath;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, scratch.Write("in", input).c_str(), O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawn_file_actions_addopen(&actions, 2, scratch.File("err").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    std::vector<char*> args;
    args.reserve(argv.size() + 1);
    for (const auto& arg : argv) {
        args.push_back(const_cast<char*>(arg.c_str()));
    }
    args.push_back(nullptr);
    ToolRun run;
    pid_t pid = 0;
    int wait = 0;
    struct rusage usage = {};
    if (posix_spawnp(&pid, args[0], &actions, nullptr, args.data(), environ) == 0 &&
        wait4(pid, &wait, 0, &usage) == pid && WIFEXITED(wait)) {
        run.status = WEXITSTATUS(wait);
        run.peakKib = usage.ru_maxrss;
    }
    posix_spawn_file_actions_destroy(&actions);
    run.out = stdoutPath.empty() ? scratch.Read("out") : "";
    run.err = scratch.Read("err");
    return run;
}

inline ToolRun RunTool(const std::vector<std::string>& args, const std::string& input = "",
                       const std::string& stdoutPath = "")
{
    std::vector<std::string> argv = {KAVO_TOOL_PATH};
#ifdef KAVO_TEST_EMULATOR
    argv.insert(argv.begin(), KAVO_TEST_EMULATOR);  // a cross-built tool needs its emulator
#endif
    argv.insert(argv.end(), args.begin(), args.end());
    return RunProgram(argv, input, stdoutPath);
}

}  // namespace KavoTest

#endif  // KAVO_TESTS_TOOLS_KAVO_PUSH_TOOL_RUNNER_H
