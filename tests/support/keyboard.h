// SPDX-License-Identifier: MIT

#pragma once

#include <QString>
#include <Qt>

/**
 * The keyboard of a member: every key goes to the window that is in front, which hands it to what
 * has the focus, wherever that is. Nothing is clicked and nothing is given the focus.
 */
class Keyboard
{
public:
    static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    /** The key as it comes again and again while it is held. */
    static void hold(Qt::Key key);
    static void type(const QString &text);
    /** Replaces what is in the field by @p text. */
    static void replace(const QString &text);
    /** Goes on by the tab key until @p name has the focus; false when it never has. */
    static bool tabTo(const QString &name);
    /** The name of what has the focus; empty when nothing has. */
    static QString focus();
};
