// SPDX-License-Identifier: MIT

#pragma once

#include <QSettings>
#include <memory>

/**
 * Opens the settings of the current user, the organisation and application being "kavlor".
 *
 * The file keeps the members' passwords as they were typed, so it is made readable by its owner
 * alone before anything is written to it; one that others could read is closed to them. From then
 * on nothing that the program makes is open to others, for it may be the settings made anew, or a
 * draft. What a program left that was killed while it saved is removed.
 */
std::unique_ptr<QSettings> openSettingsStore();
