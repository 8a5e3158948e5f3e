/* Makes a local disk as slow as a remote one: preloaded, it lets each call that a server would be asked for take
   SLOW_DISK_MICROSECONDS longer, and fstatfs tell of NFS. Calls of different threads wait side by side. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <fcntl.h>
#include <linux/magic.h>
#include <stdarg.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/vfs.h>
#include <time.h>
#include <unistd.h>

static void ask_server(void) {
    static long microseconds = -1;
    if (microseconds < 0) {
        const char* wanted = getenv("SLOW_DISK_MICROSECONDS");
        microseconds = wanted ? atol(wanted) : 1000;
    }
    const struct timespec delay = {microseconds / 1000000, microseconds % 1000000 * 1000};
    nanosleep(&delay, NULL);
}

/* The function that the program would call without this library. */
#define NEXT(name)                    \
    static __typeof__(&name) next;    \
    if (!next)                        \
        *(void**)&next = dlsym(RTLD_NEXT, #name)

int statx(int folder, const char* restrict path, int flags, unsigned mask, struct statx* restrict status) {
    NEXT(statx);
    ask_server();
    return next(folder, path, flags, mask, status);
}

int renameat2(int from_folder, const char* from, int to_folder, const char* to, unsigned flags) {
    NEXT(renameat2);
    ask_server();
    return next(from_folder, from, to_folder, to, flags);
}

int faccessat(int folder, const char* path, int mode, int flags) {
    NEXT(faccessat);
    ask_server();
    return next(folder, path, mode, flags);
}

int openat(int folder, const char* path, int flags, ...) {
    NEXT(openat);
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = flags & (O_CREAT | O_TMPFILE) ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    ask_server();
    return next(folder, path, flags, mode);
}

/* Listings are read past the C library. */
long syscall(long number, ...) {
    NEXT(syscall);
    long a[6];
    va_list rest;
    va_start(rest, number);
    for (int i = 0; i < 6; ++i)
        a[i] = va_arg(rest, long);
    va_end(rest);
    if (number == SYS_getdents64)
        ask_server();
    return next(number, a[0], a[1], a[2], a[3], a[4], a[5]);
}

int fstatfs(int file, struct statfs* status) {
    NEXT(fstatfs);
    ask_server();
    const int result = next(file, status);
    if (result == 0)
        status->f_type = NFS_SUPER_MAGIC;
    return result;
}
