// SPDX-License-Identifier: MIT

#pragma once

/**
 * While one lives, the process looks up no host name: whoever asks the system for one waits until
 * it goes, or for a quarter of a minute. One at a time.
 *
 * A test program that has this file among its sources asks through it; addresses pass.
 */
class HeldNames
{
public:
    HeldNames();
    ~HeldNames();
    HeldNames(const HeldNames &) = delete;
    HeldNames &operator=(const HeldNames &) = delete;

    /** Somebody waits for a name. */
    bool isWaitedFor() const;
};
