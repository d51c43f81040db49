// SPDX-License-Identifier: MIT

// Preloaded into a program, it notes what a power cut would leave of the folder KAVLOR_SYNC_ROOT:
// at every sync of a file or a folder below it, the contents as they are then go to the folder
// KAVLOR_SYNC_STORE, under what the file system knows the file by (see powercut.h). Nothing is
// really synced, which would take long. With KAVLOR_SYNC_FORGETS=folders the sync of a folder
// counts for nothing, as in a program that forgot it; with KAVLOR_SYNC_FORGETS=files, that of a
// file named *.part.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <mutex>
#include <string>

namespace {

std::mutex guard; // the contents of the later sync are kept, not those of the slower one

const char *setting(const char *name)
{
    const char *const value = std::getenv(name);
    return value ? value : "";
}

std::string pathOf(int file)
{
    char path[PATH_MAX] = {};
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    return ::readlink(link.c_str(), path, sizeof(path) - 1) > 0 ? path : "";
}

std::string keyOf(int folder, const char *name, int flags)
{
    struct statx is = {};
    if (::statx(folder, name, flags, STATX_INO | STATX_BTIME, &is) != 0)
        return {};
    return std::to_string(is.stx_ino) + '-' + std::to_string(is.stx_btime.tv_sec) + '-'
        + std::to_string(is.stx_btime.tv_nsec);
}

// A line for each entry: its key and its name.
std::string listing(const std::string &path)
{
    std::string lines;
    DIR *const entries = ::opendir(path.c_str());
    while (const dirent *const entry = entries ? ::readdir(entries) : nullptr) {
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0) {
            lines += keyOf(::dirfd(entries), entry->d_name, AT_SYMLINK_NOFOLLOW) + ' '
                + entry->d_name + '\n';
        }
    }
    if (entries)
        ::closedir(entries);
    return lines;
}

// Opened anew only if it has to be: closing that would end the program's locks on the file.
std::string contents(int file, size_t size)
{
    const bool isReadable = (::fcntl(file, F_GETFL) & O_ACCMODE) != O_WRONLY;
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    const int source = isReadable ? file : ::open(link.c_str(), O_RDONLY | O_CLOEXEC);
    std::string bytes(size, '\0');
    size_t read = 0;
    for (ssize_t more = 1; more > 0 && read < size; read += size_t(more > 0 ? more : 0))
        more = ::pread(source, &bytes[read], size - read, off_t(read));
    if (!isReadable)
        ::close(source);
    return bytes;
}

bool isForgotten(bool isFolder, const std::string &path)
{
    const std::string forgets = setting("KAVLOR_SYNC_FORGETS");
    return isFolder ? forgets == "folders"
                    : forgets == "files" && path.find("/incoming/") != std::string::npos;
}

int noteSync(int file)
{
    struct stat is = {};
    const std::string path = pathOf(file);
    const std::string root = setting("KAVLOR_SYNC_ROOT");
    if (root.empty() || ::fstat(file, &is) != 0 || path.compare(0, root.size(), root) != 0
        || isForgotten(S_ISDIR(is.st_mode), path))
        return 0;
    const std::lock_guard<std::mutex> lock(guard);
    const std::string noted =
        std::string(setting("KAVLOR_SYNC_STORE")) + '/' + keyOf(file, "", AT_EMPTY_PATH);
    const std::string bytes =
        S_ISDIR(is.st_mode) ? listing(path) : contents(file, size_t(is.st_size));
    const std::string draft = noted + ".new";
    std::FILE *const out = std::fopen(draft.c_str(), "w");
    if (!out)
        return -1;
    const bool isWhole = std::fwrite(bytes.data(), 1, bytes.size(), out) == bytes.size();
    return std::fclose(out) == 0 && isWhole ? ::rename(draft.c_str(), noted.c_str()) : -1;
}

} // namespace

extern "C" {

int fsync(int file)
{
    return noteSync(file);
}

int fdatasync(int file)
{
    return noteSync(file);
}
}
