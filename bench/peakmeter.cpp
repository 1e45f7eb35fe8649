// peakmeter: runs one program to its end and writes how long it took and its peak resident
// memory. bench_pdf starts every measured run through it because Linux carries the resident
// peak of the process that calls exec into the peak that wait4() reports: a child started
// straight from the large benchmark process would inherit the benchmark's own peak. This
// program is small and uses no Qt, so the peak it reports is the measured program's.
//
// Usage: peakmeter RESULT STDOUT STDERR PROGRAM [ARGUMENTS...]
// RESULT receives one line "EXIT SIGNAL SECONDS PEAK_BYTES" (EXIT -1 when killed by SIGNAL).
// Exits 0 when the program ran, whatever its exit status; 2 on a usage error, 1 otherwise.

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace {

double monotonicSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return double(now.tv_sec) + double(now.tv_nsec) / 1e9;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 5) {
        std::fprintf(stderr, "usage: peakmeter RESULT STDOUT STDERR PROGRAM [ARGUMENTS...]\n");
        return 2;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, argv[2], O_WRONLY | O_CREAT | O_TRUNC, 0644);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, argv[3], O_WRONLY | O_CREAT | O_TRUNC, 0644);

    const double start = monotonicSeconds();
    pid_t child = 0;
    const int spawned = posix_spawn(&child, argv[4], &actions, nullptr, argv + 4, environ);
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0) {
        std::fprintf(stderr, "peakmeter: cannot start %s: %s\n", argv[4], std::strerror(spawned));
        return 1;
    }
    int status = 0;
    rusage usage{};
    pid_t waited = 0;
    do {
        waited = wait4(child, &status, 0, &usage);
    } while (waited < 0 && errno == EINTR);
    const double seconds = monotonicSeconds() - start;
    if (waited < 0) {
        std::fprintf(stderr, "peakmeter: lost %s: %s\n", argv[4], std::strerror(errno));
        return 1;
    }

    FILE* result = std::fopen(argv[1], "w");
    if (!result)
        return 1;
    // ru_maxrss is in KiB.
    std::fprintf(result, "%d %d %.9f %lld\n", WIFEXITED(status) ? WEXITSTATUS(status) : -1,
                 WIFSIGNALED(status) ? WTERMSIG(status) : 0, seconds,
                 static_cast<long long>(usage.ru_maxrss) * 1024);
    return std::fclose(result) == 0 ? 0 : 1;
}
