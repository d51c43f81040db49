// SPDX-License-Identifier: MIT

#pragma once

#include "dialoganswers.h"
#include "kavloruser.h"
#include "onlineconnector.h"
#include "scriptedservice.h"

#include <QByteArrayList>
#include <QFrame>
#include <QSettings>
#include <QTemporaryDir>

/**
 * One frame by itself: in the common look, under the common keys and at the size it has in the
 * smallest window, over a scripted service, with settings of its own, being online. There is no
 * root window above it.
 *
 * A test makes the frame with area() as its parent and hands it to show().
 */
class FrameStage
{
public:
    FrameStage();
    Q_DISABLE_COPY_MOVE(FrameStage)

    QWidget *area();
    /** Shows @p frame in the whole area and waits until it can take keys. */
    bool show(QFrame *frame);
    /** Gives area and frame another size. */
    void resize(const QSize &size);
    /** Sends a request of its own and waits for the reply: what was sent before has arrived then.
     */
    bool settle();

    QTemporaryDir folder;
    QSettings settings;
    ScriptedService service;
    OnlineConnector connector;
    DialogAnswers dialogs;

private:
    QWidget m_area;
    QFrame *m_frame = nullptr;
};

/** The record of a member "m1" with the password "secret". */
CKavlorUser::Fields memberFields();
/** Clicks the mark of a check box, as wide as the box may be. */
void clickBox(QWidget *box);
/** Replaces the text of a line edit by keys; a locked one stays as it is. */
void typeInto(QWidget *line, const QString &text);
/** The names of what the tab key reaches, beginning with @p first, until it comes back there. */
QByteArrayList tabOrder(QWidget *first);
/** The names of the visible widgets in @p frame that are cut off. */
QByteArrayList cutOff(const QWidget *frame);
/** The names of the controls in @p frame that have no accessible name. */
QByteArrayList nameless(const QWidget *frame);
