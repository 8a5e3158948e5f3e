#include "common/FailingVfs.h"

#include <sqlite3.h>

#include <new>

namespace tavrin::test {

namespace {

struct ShimFile {
    sqlite3_file base;
    FailingVfs* owner;
    [[nodiscard]] sqlite3_file* real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};

ShimFile* shimOf(sqlite3_file* file) { return reinterpret_cast<ShimFile*>(file); }
sqlite3_file* realOf(sqlite3_file* file) { return shimOf(file)->real(); }

int closeFile(sqlite3_file* file) { return realOf(file)->pMethods->xClose(realOf(file)); }
int readFile(sqlite3_file* file, void* into, int count, sqlite3_int64 offset) {
    if (shimOf(file)->owner->nextReadFails())
        return SQLITE_IOERR_READ;
    return realOf(file)->pMethods->xRead(realOf(file), into, count, offset);
}
int writeFile(sqlite3_file* file, const void* from, int count, sqlite3_int64 offset) {
    sqlite3_int64 size = 0;
    realOf(file)->pMethods->xFileSize(realOf(file), &size);
    if (shimOf(file)->owner->nextWriteFails(offset + count > size))
        return SQLITE_FULL;
    return realOf(file)->pMethods->xWrite(realOf(file), from, count, offset);
}
int truncateFile(sqlite3_file* file, sqlite3_int64 size) {
    return realOf(file)->pMethods->xTruncate(realOf(file), size);
}
int syncFile(sqlite3_file* file, int flags) { return realOf(file)->pMethods->xSync(realOf(file), flags); }
int fileSize(sqlite3_file* file, sqlite3_int64* size) {
    return realOf(file)->pMethods->xFileSize(realOf(file), size);
}
int lockFile(sqlite3_file* file, int lock) { return realOf(file)->pMethods->xLock(realOf(file), lock); }
int unlockFile(sqlite3_file* file, int lock) { return realOf(file)->pMethods->xUnlock(realOf(file), lock); }
int checkLock(sqlite3_file* file, int* result) {
    return realOf(file)->pMethods->xCheckReservedLock(realOf(file), result);
}
int fileControl(sqlite3_file* file, int operation, void* argument) {
    return realOf(file)->pMethods->xFileControl(realOf(file), operation, argument);
}
int sectorSize(sqlite3_file* file) { return realOf(file)->pMethods->xSectorSize(realOf(file)); }
int characteristics(sqlite3_file* file) {
    return realOf(file)->pMethods->xDeviceCharacteristics(realOf(file));
}

constexpr sqlite3_io_methods methods = {1,           closeFile,  readFile,        writeFile,  truncateFile,
                                        syncFile,    fileSize,   lockFile,        unlockFile, checkLock,
                                        fileControl, sectorSize, characteristics, nullptr,    nullptr,
                                        nullptr,     nullptr,    nullptr,         nullptr};

} // namespace

struct FailingVfs::Shim {
    sqlite3_vfs vfs{};
    sqlite3_vfs* real = nullptr;

    static int open(sqlite3_vfs* vfs, sqlite3_filename name, sqlite3_file* file, int flags, int* outFlags) {
        auto* owner = static_cast<FailingVfs*>(vfs->pAppData);
        auto* shimFile = new (file) ShimFile{};
        shimFile->owner = owner;
        sqlite3_vfs* below = owner->shim->real;
        const int result = below->xOpen(below, name, shimFile->real(), flags, outFlags);
        shimFile->base.pMethods = result == SQLITE_OK ? &methods : nullptr;
        return result;
    }
};

FailingVfs::FailingVfs() : shim(std::make_unique<Shim>()) {
    static std::atomic<int> count{0};
    vfsName = "failing" + std::to_string(++count);
    shim->real = sqlite3_vfs_find(nullptr);
    shim->vfs = *shim->real;
    shim->vfs.pNext = nullptr;
    shim->vfs.zName = vfsName.c_str();
    shim->vfs.pAppData = this;
    shim->vfs.szOsFile = static_cast<int>(sizeof(ShimFile)) + shim->real->szOsFile;
    shim->vfs.xOpen = Shim::open;
    sqlite3_vfs_register(&shim->vfs, 0);
}

FailingVfs::~FailingVfs() { sqlite3_vfs_unregister(&shim->vfs); }

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
