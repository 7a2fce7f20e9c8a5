// Runs a program once and prints its exit status, seconds of processor time and peak memory in kB.
// A program of its own, because a process inherits the peak memory of the one that started it.

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

/// once PROGRAM ARGUMENT...
int main(int argc, char** argv) {
    if (argc < 2) return 2;
    const pid_t child = fork();
    if (child == 0) {
        execv(argv[1], argv + 1);
        std::perror(argv[1]);
        _exit(127);
    }
    int status = 0;
    rusage usage = {};
    if (child < 0 || wait4(child, &status, 0, &usage) != child) return 2;
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    std::printf("\n%d %.6f %ld\n", WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status),
                seconds(usage.ru_utime) + seconds(usage.ru_stime), usage.ru_maxrss);
    return 0;
}
