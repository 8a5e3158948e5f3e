#include "common/FailingVfs.h"

#include <sqlite3.h>

namespace tavrin::test {

namespace {

/// What stands behind a file of the default VFS: its own methods, of which two are replaced.
struct Shim {
    FailingVfs* owner;
    const sqlite3_io_methods* real;
    sqlite3_io_methods methods;
};

sqlite3_vfs& below() { return *sqlite3_vfs_find(nullptr); }

Shim& shimOf(sqlite3_file* file) {
    return *reinterpret_cast<Shim*>(reinterpret_cast<char*>(file) + below().szOsFile);
}

int readFile(sqlite3_file* file, void* into, int count, sqlite3_int64 offset) {
    if (shimOf(file).owner->nextReadFails())
        return SQLITE_IOERR_READ;
    return shimOf(file).real->xRead(file, into, count, offset);
}

int writeFile(sqlite3_file* file, const void* from, int count, sqlite3_int64 offset) {
    sqlite3_int64 size = 0;
    shimOf(file).real->xFileSize(file, &size);
    if (shimOf(file).owner->nextWriteFails(offset + count > size))
        return SQLITE_FULL;
    return shimOf(file).real->xWrite(file, from, count, offset);
}

int openFile(sqlite3_vfs* vfs, sqlite3_filename name, sqlite3_file* file, int flags, int* outFlags) {
    const int result = below().xOpen(&below(), name, file, flags, outFlags);
    if (result != SQLITE_OK)
        return result;
    Shim& shim = shimOf(file);
    shim = {static_cast<FailingVfs*>(vfs->pAppData), file->pMethods, *file->pMethods};
    shim.methods.iVersion = 1; // no shared memory, so nothing is read or written past these two
    shim.methods.xRead = readFile;
    shim.methods.xWrite = writeFile;
    file->pMethods = &shim.methods;
    return result;
}

} // namespace

FailingVfs::FailingVfs() : vfs(std::make_unique<sqlite3_vfs>(below())) {
    static std::atomic<int> count{0};
    vfsName = "failing" + std::to_string(++count);
    vfs->pNext = nullptr;
    vfs->zName = vfsName.c_str();
    vfs->pAppData = this;
    vfs->szOsFile += static_cast<int>(sizeof(Shim));
    vfs->xOpen = openFile;
    sqlite3_vfs_register(vfs.get(), 0);
}

FailingVfs::~FailingVfs() { sqlite3_vfs_unregister(vfs.get()); }

void FailingVfs::failRead(int k, bool andAllAfter) {
    readCount = 0;
    failingRead = k;
    failLaterReads = andAllAfter;
}

void FailingVfs::failWrite(int k, bool isFullThen) {
    writeCount = 0;
    failingWrite = k;
    failLaterGrowth = isFullThen;
}

bool FailingVfs::nextReadFails() {
    const int number = ++readCount;
    return failingRead != 0 && (number == failingRead || (failLaterReads && number > failingRead));
}

bool FailingVfs::nextWriteFails(bool grows) {
    const int number = ++writeCount;
    return failingWrite != 0 &&
           (number == failingWrite || (failLaterGrowth && grows && number > failingWrite));
}

} // namespace tavrin::test
