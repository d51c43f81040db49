// SPDX-License-Identifier: MIT

// Preloaded into a program, it makes the disk refuse to take anything while the file named by
// KAVLOR_FAULTY_DISK exists: every call that would put bytes into a file, or make one longer, fails
// with the error number that stands in that file. What is there already can be read.

#include <cerrno>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

namespace {

// The error number to fail with, or 0.
int fault(int file)
{
    struct stat status = {};
    if (::fstat(file, &status) != 0 || !S_ISREG(status.st_mode))
        return 0;
    const char *const control = std::getenv("KAVLOR_FAULTY_DISK");
    const int handle = control ? ::open(control, O_RDONLY | O_CLOEXEC) : -1;
    if (handle < 0)
        return 0;
    char text[8] = {};
    const ssize_t length = ::read(handle, text, sizeof(text) - 1);
    ::close(handle);
    return length > 0 ? std::atoi(text) : 0;
}

template <typename Function>
Function next(const char *name)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

template <typename Result, typename... Arguments>
Result unlessFaulty(const char *name, int file, Arguments... arguments)
{
    const int error = fault(file);
    if (error == 0)
        return next<Result (*)(int, Arguments...)>(name)(file, arguments...);
    errno = error;
    return -1;
}

} // namespace

extern "C" {

ssize_t write(int file, const void *bytes, size_t count)
{
    return unlessFaulty<ssize_t>("write", file, bytes, count);
}

ssize_t pwrite(int file, const void *bytes, size_t count, off_t offset)
{
    return unlessFaulty<ssize_t>("pwrite", file, bytes, count, offset);
}

ssize_t pwrite64(int file, const void *bytes, size_t count, off64_t offset)
{
    return unlessFaulty<ssize_t>("pwrite64", file, bytes, count, offset);
}

int ftruncate(int file, off_t length) noexcept
{
    return length == 0 ? next<int (*)(int, off_t)>("ftruncate")(file, length)
                       : unlessFaulty<int>("ftruncate", file, length);
}

int ftruncate64(int file, off64_t length) noexcept
{
    return length == 0 ? next<int (*)(int, off64_t)>("ftruncate64")(file, length)
                       : unlessFaulty<int>("ftruncate64", file, length);
}

int fallocate(int file, int mode, off_t offset, off_t length)
{
    return unlessFaulty<int>("fallocate", file, mode, offset, length);
}

int posix_fallocate(int file, off_t offset, off_t length)
{
    const int error = fault(file);
    return error != 0 ? error
                      : next<int (*)(int, off_t, off_t)>("posix_fallocate")(file, offset, length);
}
}
