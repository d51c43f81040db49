// SPDX-License-Identifier: MIT

#pragma once

#include <QFrame>
#include <memory>

class QLabel;
class QPushButton;
class RoomScale;

namespace Ui {
class NavigationControlableFrame;
}

/**
 * The bar of every screen after sign-in: back and cancel buttons, an icon and a title. The root
 * window makes, configures and deletes it.
 */
class NavigationControlableFrame : public QFrame
{
    Q_OBJECT

public:
    /** What setElementVisible() and setElementText() speak of; they ignore any other number. */
    enum Element { All = 0, BackButton = 1, CancelButton = 2, Icon = 3, Title = 4 };

    explicit NavigationControlableFrame(QWidget *parent);
    ~NavigationControlableFrame() override;

    /** Says the texts of the form in the language of now; whoever has set others says them again.
     */
    void retranslate();

    /** An empty @p iconPath hides the icon. */
    void setTitleAndIcon(const QString &title, const QString &iconPath);
    void setElementVisible(bool visible, int which);
    void setElementText(int which, const QString &text);
    QPushButton *cancelButton() const;

signals:
    void backClicked();
    void cancelClicked();

private:
    std::unique_ptr<Ui::NavigationControlableFrame> m_ui;
    RoomScale *m_scale;
};
