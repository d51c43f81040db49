// SPDX-License-Identifier: MIT

#pragma once

#include <QFrame>
#include <memory>

class QSettings;

namespace Ui {
class FrameWelcomeKavlor;
}

/**
 * The screen for nobody signed in: create an account, or log in.
 *
 * A content frame of the root window; deletes itself when the next one is shown. The settings are
 * not owned.
 */
class FrameWelcomeKavlor : public QFrame
{
    Q_OBJECT

public:
    FrameWelcomeKavlor(QSettings *settings, QWidget *parent);
    ~FrameWelcomeKavlor() override;

signals:
    /** The account creation is about to be shown. */
    void CreateAccountClicked();
    /** The login is about to be shown. */
    void LoginClicked();

public slots:
    void showCreateAccountFrame();
    void showLoginFrame();

private:
    std::unique_ptr<Ui::FrameWelcomeKavlor> m_ui;
    QSettings *m_settings;
};
