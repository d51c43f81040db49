// SPDX-License-Identifier: MIT

#pragma once

#include "dialoganswers.h"
#include "onlineconnector.h"
#include "rootviewcontroller.h"
#include "scriptedservice.h"

#include <QFrame>
#include <QImage>
#include <QSettings>
#include <QTemporaryDir>
#include <memory>

/**
 * The real root window over a scripted service, with settings of its own, being online.
 *
 * A test scripts the replies of the start with one of the script operations, calls start(), and
 * then clicks and types by object name. What lies outside of the window (message boxes, file
 * dialogs) is answered by dialogs.
 */
class RootWindow
{
public:
    RootWindow();
    ~RootWindow();
    Q_DISABLE_COPY_MOVE(RootWindow)

    /** Puts a login into the settings, as an earlier run would have left it. */
    void remember(const QString &userName, const QString &password);
    /** The replies of a start with nobody remembered. */
    void scriptStart();
    /** The replies of a start whose remembered login is right. */
    void scriptSignedInStart();
    /** Makes the window and begins the start. */
    void start();
    /** start() with nobody remembered, up to the welcome frame; false when it does not come. */
    bool startAtWelcome();
    /** start() with a right login of "m1" and "secret", up to the home frame. */
    bool startAtHome();
    /** Ends the program as far as the window goes: deletes it. */
    void end();

    RootViewController *root() const;
    QString title() const;

    /** The frame of type @p Frame that is shown in the main view or as the bar; null = none. */
    template <typename Frame>
    Frame *shown() const
    {
        const QList<Frame *> frames = m_root->findChildren<Frame *>();
        for (Frame *frame : frames) {
            if (frame->isVisible() && frame->isEnabled())
                return frame;
        }
        return nullptr;
    }

    /** What bears @p name, is visible and belongs to a frame that is not about to go. */
    QWidget *find(const char *name) const;
    template <typename Widget>
    Widget *find(const char *name) const
    {
        return qobject_cast<Widget *>(find(name));
    }
    /** Clicks @p name with the mouse; false when it is not there or disabled. */
    bool click(const char *name);
    /**
     * Clicks @p name, which leaves @p frame, and lets the held reply to that frame's request come
     * before the click is through, while the frame is still there. False when it does not come.
     */
    bool clickAsReplyComes(const char *name, QFrame *frame);
    /** Replaces the text of @p name by keys. */
    bool type(const char *name, const QString &text);
    QString text(const char *name) const;
    /** What the window shows where @p name is; null when it is not there. */
    QImage picture(const char *name) const;

    QTemporaryDir folder;
    QSettings settings;
    ScriptedService service;
    OnlineConnector connector;
    DialogAnswers dialogs;

private:
    std::unique_ptr<RootViewController> m_root;
};
