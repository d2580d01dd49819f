#include "base/files.h"
#include "base/text.h"
#include "platform/linux/linux_doors.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace pelorin {

namespace {

std::vector<char*> Pointers(const std::vector<std::string>& arguments) {
    std::vector<char*> pointers;
    for (const auto& argument : arguments) pointers.push_back(const_cast<char*>(argument.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

int WaitFor(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) return -1;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

// A child that starts the program as its own child and ends at once: nobody has to wait for the program. The pipe
// closes by itself when the program has started, and carries a byte when it has not.
bool StartProgram(const std::vector<std::string>& arguments) {
    std::array<int, 2> ends{};
    if (arguments.empty() || pipe2(ends.data(), O_CLOEXEC) != 0) return false;
    const auto pointers = Pointers(arguments);
    const pid_t child = fork();
    if (child == 0) {
        setsid();
        const pid_t program = fork();
        if (program == 0) execvp(pointers[0], pointers.data());
        if (program <= 0) (void)!write(ends[1], "x", 1);
        _exit(0);
    }
    close(ends[1]);
    char failed = 0;
    ssize_t got = -1;
    if (child > 0) {
        do {
            got = read(ends[0], &failed, 1);
        } while (got < 0 && errno == EINTR);
        (void)WaitFor(child);
    }
    close(ends[0]);
    return got == 0;
}

int RunProgram(const std::vector<std::string>& arguments) {
    if (arguments.empty()) return -1;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const auto pointers = Pointers(arguments);
    const int error = posix_spawnp(&child, pointers[0], &actions, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    return error != 0 ? -1 : WaitFor(child);
}

std::vector<std::string> SplitCommand(std::string_view command, const std::string& file) {
    std::vector<std::string> arguments;
    bool open = false, quoted = false, placed = false;
    for (std::size_t i = 0; i < command.size(); ++i) {
        const char c = command[i];
        if (c == '"') {
            quoted = !quoted;
            if (!open) arguments.emplace_back();
            open = true;
            continue;
        }
        if (!quoted && (c == ' ' || c == '\t')) {
            open = false;
            continue;
        }
        if (!open) arguments.emplace_back();
        open = true;
        if (c == '%' && i + 1 < command.size() && command[i + 1] == '1') {
            arguments.back() += file;
            placed = true;
            ++i;
        } else {
            arguments.back() += c;
        }
    }
    if (!placed && !arguments.empty()) arguments.push_back(file);
    return arguments;
}

bool LinuxLauncher::Open(const std::string& target) {
    // A name that looks like an option must not be one.
    return StartProgram({"xdg-open", target.starts_with('-') ? "./" + target : target});
}

bool LinuxLauncher::Run(const std::string& command, const std::string& file) {
    return StartProgram(SplitCommand(command, file.starts_with('-') ? "./" + file : file));
}

} // namespace pelorin
