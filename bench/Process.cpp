#include "bench/Process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>

namespace bench {

namespace {

double seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

[[noreturn]] void fail(const std::string& command) {
    std::cerr << "failed: " << command << "\n";
    std::exit(1);
}

}  // namespace

double runProgram(const std::vector<std::string>& command, int exitStatus) {
    std::vector<char*> arguments;
    for (const std::string& argument : command) {
        arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    int status = -1;
    rusage usage{};
    if (posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ) == 0) {
        wait4(child, &status, 0, &usage);
    }
    posix_spawn_file_actions_destroy(&actions);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != exitStatus) {
        fail(command[0]);
    }
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

std::string outputOf(const std::string& command) {
    std::string text;
    FILE* const pipe = popen(command.c_str(), "r");
    if (pipe != nullptr) {
        char piece[4096];
        for (std::size_t got = 0; (got = fread(piece, 1, sizeof piece, pipe)) > 0;) {
            text.append(piece, got);
        }
    }
    if (pipe == nullptr || pclose(pipe) != 0 || text.empty()) {
        fail(command);
    }
    return text;
}

}  // namespace bench
