// SPDX-License-Identifier: MIT

#include "heldnames.h"

#include <chrono>
#include <condition_variable>
#include <mutex>

#include <dlfcn.h>
#include <netdb.h>

namespace {

struct Gate
{
    std::mutex mutex;
    std::condition_variable changed;
    bool isShut = false;
    int waiting = 0;
};

// Never destroyed: a thread that looks a name up may outlive the test.
Gate &gate()
{
    static auto *const it = new Gate;
    return *it;
}

void pass()
{
    std::unique_lock lock(gate().mutex);
    ++gate().waiting;
    gate().changed.wait_for(lock, std::chrono::seconds(15), [] { return !gate().isShut; });
    --gate().waiting;
}

} // namespace

// Found before the system's own.
extern "C" int getaddrinfo(const char *name, const char *service, const addrinfo *hints,
                           addrinfo **result)
{
    using Function = int (*)(const char *, const char *, const addrinfo *, addrinfo **);
    static const auto real = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "getaddrinfo"));
    pass();
    return real(name, service, hints, result);
}

HeldNames::HeldNames()
{
    const std::lock_guard lock(gate().mutex);
    gate().isShut = true;
}

HeldNames::~HeldNames()
{
    {
        const std::lock_guard lock(gate().mutex);
        gate().isShut = false;
    }
    gate().changed.notify_all();
}

bool HeldNames::isWaitedFor() const
{
    const std::lock_guard lock(gate().mutex);
    return gate().waiting > 0;
}
