// SPDX-License-Identifier: MIT

// Preloaded into a program, it counts the places in its calls that touch a file in the folder
// KAVLOR_PLACES_FOLDER: one before each call, one after it, and one in the midst of each write. The
// other variables, each of which may be missing, say what happens there:
//   KAVLOR_PLACES_KILL=N      the program is killed at the N-th place
//   KAVLOR_PLACES_REFUSE=N,E  from the N-th place on, what needs room on the disk fails with the
//                             error number E, a write after half of its bytes
//   KAVLOR_PLACES_NAMED=1     files without a name are not to be had, as on some file systems
//   KAVLOR_PLACES_PLANT=F     each name of a file to be made is taken already, in turn by a link to
//                             the file F and by F itself; the first eight times
//   KAVLOR_PLACES_NOTES=F     the file that a line is added to for every place, and for every file
//                             of the folder that others may open there

#undef _FORTIFY_SOURCE // which has functions of its own under the names below

#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

#include <atomic>
#include <csignal>

namespace {

constexpr int plants = 8;

enum Need { NeedsNothing, NeedsRoom };

std::atomic<long> placesPassed = 0;
std::atomic<int> planted = 0;
thread_local bool isLooking = false; // what this library does itself is not counted

template <typename Function>
Function next(const char *name)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

const char *setting(const char *name)
{
    const char *const value = std::getenv(name);
    return value && *value ? value : nullptr;
}

void note(const char *what, const char *where)
{
    const char *const notes = setting("KAVLOR_PLACES_NOTES");
    if (!notes)
        return;
    char line[PATH_MAX + 64];
    const int length =
        std::snprintf(line, sizeof(line), "%ld %s %s\n", placesPassed.load(), what, where);
    const long file = ::syscall(SYS_openat, AT_FDCWD, notes,
                                O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, S_IRUSR | S_IWUSR);
    ::syscall(SYS_write, file, line, length);
    ::syscall(SYS_close, file);
}

bool isInFolder(const char *path)
{
    const char *const folder = setting("KAVLOR_PLACES_FOLDER");
    return folder && path && std::strncmp(path, folder, std::strlen(folder)) == 0
        && path[std::strlen(folder)] == '/';
}

// A link to an open file stands for the file, which need not have a name.
void noteIfOpenToOthers(int folder, const char *name, const char *path)
{
    struct stat is = {};
    const int flags = name == path ? AT_SYMLINK_NOFOLLOW : 0;
    if (::fstatat(folder, name, &is, flags) == 0 && S_ISREG(is.st_mode)
        && (is.st_mode & (S_IRWXG | S_IRWXO)) != 0)
        note("open-to-others", path);
}

void lookAtRightsIn(const char *folder)
{
    DIR *const entries = ::opendir(folder);
    if (!entries)
        return;
    while (const dirent *const entry = ::readdir(entries)) {
        char target[PATH_MAX] = {};
        if (::readlinkat(::dirfd(entries), entry->d_name, target, sizeof(target) - 1) < 0)
            noteIfOpenToOthers(::dirfd(entries), entry->d_name, entry->d_name);
        else if (isInFolder(target))
            noteIfOpenToOthers(::dirfd(entries), entry->d_name, target);
    }
    ::closedir(entries);
}

void passPlace(const char *what, const char *where)
{
    const int error = errno;
    isLooking = true;
    const long place = ++placesPassed;
    if (setting("KAVLOR_PLACES_NOTES")) {
        note(what, where);
        lookAtRightsIn(setting("KAVLOR_PLACES_FOLDER"));
        lookAtRightsIn("/proc/self/fd");
    }
    const char *const last = setting("KAVLOR_PLACES_KILL");
    if (last && place == std::atol(last))
        ::kill(::getpid(), SIGKILL);
    isLooking = false;
    errno = error;
}

// The error number to fail with, or 0.
int refusal()
{
    const char *const from = setting("KAVLOR_PLACES_REFUSE");
    const char *const comma = from ? std::strchr(from, ',') : nullptr;
    return comma && placesPassed >= std::atol(from) ? std::atoi(comma + 1) : 0;
}

template <typename Call>
auto atPlaces(const char *name, const char *path, Need need, Call call) -> decltype(call())
{
    if (isLooking || !isInFolder(path))
        return call();
    passPlace(name, path);
    const int error = need == NeedsRoom ? refusal() : 0;
    if (error != 0) {
        errno = error;
        return -1;
    }
    const auto result = call();
    passPlace(name, path);
    return result;
}

struct OpenFile
{
    explicit OpenFile(int file)
    {
        if (isLooking)
            return;
        char link[32];
        std::snprintf(link, sizeof(link), "/proc/self/fd/%d", file);
        const int error = errno;
        (void)!::readlink(link, path, sizeof(path) - 1);
        errno = error;
    }
    char path[PATH_MAX] = {};
};

template <typename Call>
int atPlaces(const char *name, int file, Need need, Call call)
{
    const OpenFile open(file);
    return atPlaces(name, open.path, need, call);
}

void plant(const char *path)
{
    const char *const target = setting("KAVLOR_PLACES_PLANT");
    if (!target || isLooking || !isInFolder(path) || planted >= plants)
        return;
    isLooking = true;
    const bool isLink = planted++ % 2 == 0;
    (void)!(isLink ? ::symlink(target, path) : ::link(target, path));
    note("planted", path);
    isLooking = false;
}

template <typename Call>
int opened(const char *path, int flags, Call call)
{
    const bool isUnnamed = (flags & O_TMPFILE) == O_TMPFILE;
    char inFolder[PATH_MAX];
    std::snprintf(inFolder, sizeof(inFolder), "%s%s", path ? path : "",
                  isUnnamed ? "/unnamed" : "");
    if (isUnnamed && isInFolder(inFolder) && setting("KAVLOR_PLACES_NAMED")) {
        errno = EOPNOTSUPP;
        return -1;
    }
    if ((flags & O_CREAT) != 0)
        plant(path);
    const bool makes = (flags & O_CREAT) != 0 || isUnnamed;
    const char *const name = isUnnamed ? "open-unnamed"
        : (flags & O_EXCL) != 0        ? "open-new"
        : makes                        ? "open-any"
                                       : "open";
    return atPlaces(name, inFolder, makes ? NeedsRoom : NeedsNothing, call);
}

bool makesFile(int flags)
{
    return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
}

} // namespace

extern "C" {

int open(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = makesFile(flags) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return opened(path, flags,
                  [=] { return next<int (*)(const char *, int, ...)>("open")(path, flags, mode); });
}

int open64(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = makesFile(flags) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return opened(path, flags, [=] {
        return next<int (*)(const char *, int, ...)>("open64")(path, flags, mode);
    });
}

int openat(int folder, const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = makesFile(flags) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return opened(path, flags, [=] {
        return next<int (*)(int, const char *, int, ...)>("openat")(folder, path, flags, mode);
    });
}

int openat64(int folder, const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = makesFile(flags) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return opened(path, flags, [=] {
        return next<int (*)(int, const char *, int, ...)>("openat64")(folder, path, flags, mode);
    });
}

ssize_t write(int file, const void *bytes, size_t count)
{
    const auto write = next<ssize_t (*)(int, const void *, size_t)>("write");
    const OpenFile open(file);
    if (isLooking || !isInFolder(open.path))
        return write(file, bytes, count);
    passPlace("write", open.path);
    const size_t half = count / 2;
    const ssize_t first = write(file, bytes, half);
    const int error = refusal();
    if (error != 0 && half == 0) {
        errno = error;
        return -1;
    }
    if (first < 0 || size_t(first) < half || error != 0)
        return first;
    passPlace("half-write", open.path);
    const ssize_t second = write(file, static_cast<const char *>(bytes) + half, count - half);
    passPlace("write", open.path);
    return second < 0 ? first : first + second;
}

int close(int file)
{
    // Where it has to tell that there was no room, it has closed the file all the same.
    return atPlaces("close", file, NeedsNothing, [=] {
        const int closed = next<int (*)(int)>("close")(file);
        const int error = refusal();
        errno = error != 0 ? error : errno;
        return error != 0 ? -1 : closed;
    });
}

// Without a power cut nothing depends on these two, and they take long.
int fsync(int file)
{
    return atPlaces("fsync", file, NeedsRoom, [] { return 0; });
}

int fdatasync(int file)
{
    return atPlaces("fdatasync", file, NeedsRoom, [] { return 0; });
}

int ftruncate64(int file, off64_t length) noexcept
{
    return atPlaces("ftruncate", file, NeedsNothing,
                    [=] { return next<int (*)(int, off64_t)>("ftruncate64")(file, length); });
}

int fchmod(int file, mode_t mode) noexcept
{
    return atPlaces("fchmod", file, NeedsNothing,
                    [=] { return next<int (*)(int, mode_t)>("fchmod")(file, mode); });
}

int chmod(const char *path, mode_t mode) noexcept
{
    return atPlaces("chmod", path, NeedsNothing,
                    [=] { return next<int (*)(const char *, mode_t)>("chmod")(path, mode); });
}

int linkat(int oldFolder, const char *oldPath, int newFolder, const char *newPath,
           int flags) noexcept
{
    plant(newPath);
    return atPlaces("linkat", newPath, NeedsRoom, [=] {
        return next<int (*)(int, const char *, int, const char *, int)>("linkat")(
            oldFolder, oldPath, newFolder, newPath, flags);
    });
}

int link(const char *oldPath, const char *newPath) noexcept
{
    return atPlaces("link", newPath, NeedsRoom, [=] {
        return next<int (*)(const char *, const char *)>("link")(oldPath, newPath);
    });
}

int rename(const char *oldPath, const char *newPath) noexcept
{
    return atPlaces("rename", newPath, NeedsRoom, [=] {
        return next<int (*)(const char *, const char *)>("rename")(oldPath, newPath);
    });
}

int renameat2(int oldFolder, const char *oldPath, int newFolder, const char *newPath,
              unsigned flags) noexcept
{
    return atPlaces("renameat2", newPath, NeedsRoom, [=] {
        return next<int (*)(int, const char *, int, const char *, unsigned)>("renameat2")(
            oldFolder, oldPath, newFolder, newPath, flags);
    });
}

int unlink(const char *path) noexcept
{
    return atPlaces("unlink", path, NeedsNothing,
                    [=] { return next<int (*)(const char *)>("unlink")(path); });
}

int mkdir(const char *path, mode_t mode) noexcept
{
    return atPlaces("mkdir", path, NeedsRoom,
                    [=] { return next<int (*)(const char *, mode_t)>("mkdir")(path, mode); });
}
}
