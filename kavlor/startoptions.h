// SPDX-License-Identifier: MIT

#pragma once

#include <QString>
#include <QStringList>

/** What the member asked for when starting the program. */
struct StartOptions
{
    QString mediaPath; ///< absolute; a photo or clip for the upload wizard, empty = none
    QString error;     ///< what is wrong with the arguments; empty = nothing
};

/**
 * Reads @p arguments, the program's name first, without those that the toolkit has taken.
 * A relative path counts from the current folder.
 */
StartOptions readStartOptions(const QStringList &arguments);

/** Whether @p arguments only ask for a text on the terminal, which takes no window. */
bool askForText(const QStringList &arguments);

/** The text that @p arguments ask for. */
QString startText(const QStringList &arguments);
