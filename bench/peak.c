/*
 * Runs a program and prints its peak of resident memory in bytes. The kernel counts a new program's peak from that of
 * the process it was started by, and this one is small. peak PROGRAM ARGUMENT ...
 */
#define _GNU_SOURCE

#include <fcntl.h>
#include <spawn.h>
#include <stdio.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

int main(int argc, char* argv[]) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    int status = 0;
    struct rusage usage;
    if (argc < 2 || posix_spawn(&child, argv[1], &actions, NULL, argv + 1, environ) != 0 ||
        wait4(child, &status, 0, &usage) != child || status != 0) {
        fprintf(stderr, "peak: the program failed\n");
        return 1;
    }
    printf("%ld\n", usage.ru_maxrss * 1024);
    return 0;
}
