// SPDX-License-Identifier: MIT

#pragma once

/** What there is to do for a request, and thereby whom it may hold up. */
enum class Effort {
    Reading,   ///< little: records are read
    Changing,  ///< records are changed and synced, or a password is hashed
    Picturing, ///< a picture may have to be made
};
