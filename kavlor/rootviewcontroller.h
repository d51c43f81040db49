// SPDX-License-Identifier: MIT

#pragma once

#include <QFrame>
#include <QPointer>
#include <QString>
#include <functional>
#include <memory>

#include "kavlornotificationoptions.h"
#include "kavloruser.h"
#include "uploaddraft.h"

class CHttpTolvex;
class CKavlorSplashWindow;
class NavigationControlableFrame;
class QSettings;

namespace Ui {
class RootViewController;
}

/**
 * The one top-level window: a navigation bar above, a content frame below.
 *
 * It owns the signed-in member's record, the alert options, the texts that were fetched at start
 * and the bar. A content frame is a child of mainView; it finds the root with
 * RootViewController::of(), asks it for the next screen through one of the Show operations and
 * then takes itself away with leaveFrame(). Whoever makes the root owns it; the settings are not
 * owned by it.
 */
class RootViewController : public QFrame
{
    Q_OBJECT

public:
    explicit RootViewController(QSettings *settings, QWidget *parent = nullptr);
    ~RootViewController() override;

    /** The root above a content frame: the parent of its parent widget, or null. */
    static RootViewController *of(const QWidget *contentFrame);

    /** Shows the member's auctions. */
    void ShowMyKavlorOptions();
    /** Shows the upload wizard. */
    void ShowUploadOptions();

    const QString &termsText() const;
    const QString &countriesText() const;
    void setTermsText(const QString &text);
    void setCountriesText(const QString &text);
    void setCategoriesText(const QString &text);
    void setNotificationOptionsText(const QString &text);

    /** The live record of the signed-in member. */
    CKavlorUser *user();
    /** Where an upload that was not finished is kept, beside the settings. */
    UploadDraft uploadDraft() const;

signals:
    void WelcomeKavlor(QString userName, QString password, bool aValidated);
    /** The root's own request for the categories has ended, well or not. */
    void CategoriesDone();
    /** An upload is finished and its success page was left. */
    void UploadComplete();

public slots:
    /** Shows the home frame, or the welcome frame when either text is empty. */
    void ShowLoginOptions(QString userName = {}, QString password = {}, bool aValidated = false);
    /** Shows the settings menu; with @p aNotificationAtOnce not 0 its alert options at once. */
    void ShowSettingsOptions(const QString &userName, const QString &password,
                             int aNotificationAtOnce = 0);
    void showNotifications();
    void requestDone(const QString &aResponse, const QString &aError);
    /**
     * Sets what the bar says. @p icon and @p aShowCancel each matter to one kind of bar only;
     * the cancel button lowers @p aLogoutFrame. Returns false when there is no bar.
     */
    bool setNavigationTextAndIcon(const QString &text = {}, const QString &icon = {},
                                  bool aShowCancel = false, QFrame *aLogoutFrame = nullptr);
    /** Shows or hides the progress strip; false when the bar has none. */
    bool setProgressVisible(bool aVisible = true);
    /** Starts or stops the progress strip (times in ms); false when the bar has none. */
    bool progressAnimation(bool aStart, uint aHowOften = 350, uint aHowLong = 0);
    /** Brings the window in front of the others. */
    void comeForward();
    /**
     * Opens the upload wizard with the photo or clip @p mediaPath: at once from the home screen
     * and from the wizard's own first page. From everywhere else it waits until the member is back
     * at home, who is told so when signed in.
     */
    void openMedia(const QString &mediaPath);
    /** Ends the program soon. */
    void exitInitiated();
    void doExit();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    enum RequestState {
        NothingRequested = 0,
        NotificationOptionsRequested = 1,
        CategoriesRequested = 2
    };

    void showWelcome();
    void forgetMember();
    void makeRequest();
    void showHome(const QString &userName, const QString &password, bool aValidated);
    void openWaitingMedia();
    template <typename Frame>
    Frame *shownFrame() const;
    void deleteBar();
    using SayInBar = std::function<void(NavigationControlableFrame *bar)>;
    NavigationControlableFrame *makeControlableBar(const SayInBar &say);
    const QString &userName() const;
    const QString &password() const;

    CKavlorUser m_user;
    CKavlorNotificationOptions m_notificationOptions;
    std::unique_ptr<Ui::RootViewController> m_ui;
    QPointer<QFrame> m_bar;
    CHttpTolvex *m_request = nullptr;
    RequestState m_requestState = NothingRequested;
    QSettings *m_settings;
    QString m_termsText;
    QString m_countriesText;
    QString m_categoriesText;
    QString m_notificationOptionsText;
    QString m_waitingMedia; // a path; empty = none
    QPointer<CKavlorSplashWindow> m_splash;
};
