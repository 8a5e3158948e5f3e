/* The least that a rename of a tree can cost: c_loop FROM TO FOLDER... lists each folder, asks each file's
   data with statx, and renames every file whose name holds FROM, the first one replaced by TO. It plans nothing
   and checks nothing but the kernel's refusal to replace a file. */
#define _GNU_SOURCE
#include <dirent.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

struct names {
    char* bytes;
    size_t used, room;
};

static void fail(const char* what) {
    perror(what);
    exit(1);
}

/* All entries first: a folder that is renamed in while it is read may yield an entry twice. */
static struct names list(int folder) {
    struct names all = {NULL, 0, 0};
    DIR* stream = fdopendir(dup(folder));
    if (!stream)
        fail("fdopendir");
    for (struct dirent* entry; (entry = readdir(stream));) {
        if (strcmp(entry->d_name, ".") == 0 || strcmp(entry->d_name, "..") == 0)
            continue;
        const size_t length = strlen(entry->d_name) + 1;
        if (all.used + length > all.room) {
            all.room = (all.room + length) * 2;
            all.bytes = realloc(all.bytes, all.room);
            if (!all.bytes)
                fail("realloc");
        }
        memcpy(all.bytes + all.used, entry->d_name, length);
        all.used += length;
    }
    closedir(stream);
    return all;
}

static void rename_one(int folder, const char* name, const char* from, const char* to) {
    const char* found = strstr(name, from);
    if (!found)
        return;
    char target[512];
    snprintf(target, sizeof target, "%.*s%s%s", (int)(found - name), name, to, found + strlen(from));
    if (renameat2(folder, name, folder, target, RENAME_NOREPLACE))
        fail(name);
}

static void walk(int parent, const char* path, const char* from, const char* to) {
    const int folder = openat(parent, path, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        fail(path);
    struct names all = list(folder);
    for (size_t at = 0; at < all.used; at += strlen(all.bytes + at) + 1) {
        const char* name = all.bytes + at;
        struct statx data;
        if (statx(folder, name, AT_SYMLINK_NOFOLLOW, STATX_BASIC_STATS | STATX_BTIME, &data))
            fail(name);
        if (S_ISDIR(data.stx_mode))
            walk(folder, name, from, to);
        else
            rename_one(folder, name, from, to);
    }
    free(all.bytes);
    close(folder);
}

int main(int count, char** arguments) {
    if (count < 4) {
        fputs("usage: c_loop FROM TO FOLDER...\n", stderr);
        return 2;
    }
    for (int i = 3; i < count; i++)
        walk(AT_FDCWD, arguments[i], arguments[1], arguments[2]);
    return 0;
}
