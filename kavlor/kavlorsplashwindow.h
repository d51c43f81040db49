// SPDX-License-Identifier: MIT

#pragma once

#include <QFrame>
#include <memory>

#include "kavloruser.h"

class CHttpTolvex;
class CProgressiveModel;
class QSettings;
class RootViewController;

namespace Ui {
class CKavlorSplashWindow;
}

/**
 * The start-up window: checks the remembered login, fetches what the program needs from the
 * service, and hands over to the root window no sooner than timeConstants().startUpMinimum.
 *
 * A child of the root's mainView. It deletes itself after it has handed over; the root deletes it
 * when the start failed.
 */
class CKavlorSplashWindow : public QFrame
{
    Q_OBJECT

public:
    CKavlorSplashWindow(RootViewController *root, const QString &lastUserName, QSettings *settings,
                        QWidget *parent);
    ~CKavlorSplashWindow() override;

    /** Begins; the root calls it once it has shown this window. */
    void startRequests();

signals:
    /** The minimum time is over, or the last reply has come: the start may be complete. */
    void GoodExit();
    /** A request failed and the member has been told; the program must end. */
    void initFails();

public slots:
    void requestDone(const QString &aResponse, const QString &aError);
    void runOnGoodExit();
    void timerExpired();

private:
    enum State {
        Done = 0,
        ValidatingLogin = 1,
        FetchingTerms = 2,
        FetchingCountries = 3,
        FetchingCategories = 4,
        FetchingNotificationOptions = 5
    };

    void retranslate();
    void fail(const QString &error);
    void advance(const QString &response);
    void enter(State state, const char *message);
    void sayProgress();
    const QString &userName() const;
    const QString &password() const;

    static bool s_errorShown;

    std::unique_ptr<Ui::CKavlorSplashWindow> m_ui;
    CProgressiveModel *m_progress;
    RootViewController *m_root;
    CKavlorUser m_user;
    CHttpTolvex *m_request;
    bool m_loggedIn = false;
    State m_state = Done;
    const char *m_message = QT_TR_NOOP("Initializing...");
    bool m_timeIsUp = false;
};
