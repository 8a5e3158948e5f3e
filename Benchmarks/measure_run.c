/* Runs a command and tells what it took: measure_run REPORT COMMAND [ARGUMENT...] writes "wall processor peak"
   (seconds, seconds, KiB) to the file REPORT and ends with the command's status. A small program, because the
   peak of memory that the kernel tells begins with that of whoever starts the command. */
#define _GNU_SOURCE
#include <stdio.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

static double now(void) {
    struct timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return (double)time.tv_sec + (double)time.tv_nsec / 1e9;
}

static double seconds(struct timeval time) { return (double)time.tv_sec + (double)time.tv_usec / 1e6; }

int main(int count, char** arguments) {
    if (count < 3) {
        fputs("usage: measure_run REPORT COMMAND [ARGUMENT...]\n", stderr);
        return 2;
    }
    const double start = now();
    const pid_t child = fork();
    if (child == 0) {
        execvp(arguments[2], arguments + 2);
        perror(arguments[2]);
        _exit(127);
    }
    int status;
    struct rusage usage;
    if (child < 0 || wait4(child, &status, 0, &usage) != child) {
        perror(arguments[2]);
        return 2;
    }
    const double wall = now() - start;
    FILE* report = fopen(arguments[1], "w");
    if (!report) {
        perror(arguments[1]);
        return 2;
    }
    fprintf(report, "%.6f %.6f %ld\n", wall, seconds(usage.ru_utime) + seconds(usage.ru_stime), usage.ru_maxrss);
    fclose(report);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 126;
}
