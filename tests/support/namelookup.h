// SPDX-License-Identifier: MIT

#pragma once

/**
 * What the process hears, while one lives, when it asks the system for a host name: that there is
 * none, or nothing at all until it goes, for a quarter of a minute at most. One at a time.
 *
 * A test program that has this file among its sources asks through it; there, names that end in
 * ".test" are this machine at all other times. Addresses pass.
 */
class NameLookup
{
public:
    enum Answer { Unknown, Held };

    explicit NameLookup(Answer answer);
    ~NameLookup();
    NameLookup(const NameLookup &) = delete;
    NameLookup &operator=(const NameLookup &) = delete;

    /** Somebody waits for a name. */
    static bool isWaitedFor();
};
