// SPDX-License-Identifier: MIT

#pragma once

#include <QFrame>
#include <memory>

class CProgressiveModel;
class QPushButton;

namespace Ui {
class NavigationFrame;
}

/**
 * The bar of the screens before sign-in: a welcome text with the logo, a cancel button and a
 * progress strip. The root window makes, configures and deletes it.
 */
class NavigationFrame : public QFrame
{
    Q_OBJECT

public:
    NavigationFrame(QWidget *parent, bool showCancel, bool showProgress);
    ~NavigationFrame() override;

    /** Says the texts of the form in the language of now; whoever has set others says them again.
     */
    void retranslate();

    void setWelcomeText(const QString &text);
    QPushButton *cancelButton() const;
    void setProgressVisible(bool visible);
    /** Starts or stops the strip; see CProgressiveModel::animate(). */
    void progressAnimation(bool aStart, uint aHowOften, uint aHowLong);

private:
    CProgressiveModel *m_progress;
    std::unique_ptr<Ui::NavigationFrame> m_ui;
};
