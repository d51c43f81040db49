// SPDX-License-Identifier: MIT

#include "navigationcontrolableframe.h"

#include "roomscale.h"
#include "ui_navigationcontrolableframe.h"

namespace {

constexpr int iconHeight = 64; // pixels

} // namespace

NavigationControlableFrame::NavigationControlableFrame(QWidget *parent)
    : QFrame(parent)
    , m_ui(std::make_unique<Ui::NavigationControlableFrame>())
{
    m_ui->setupUi(this);
    m_scale = new RoomScale(this);
    connect(m_ui->backNavigationButton, &QPushButton::clicked, this,
            &NavigationControlableFrame::backClicked);
    connect(m_ui->cancelNavigationButton, &QPushButton::clicked, this,
            &NavigationControlableFrame::cancelClicked);
}

NavigationControlableFrame::~NavigationControlableFrame() = default;

void NavigationControlableFrame::retranslate()
{
    m_ui->retranslateUi(this);
}

void NavigationControlableFrame::setTitleAndIcon(const QString &title, const QString &iconPath)
{
    m_ui->labelNavigationTitle->setText(title);
    if (!iconPath.isEmpty())
        m_scale->setPicture(m_ui->labelNavigationIcon, iconPath, iconHeight);
    m_ui->labelNavigationIcon->setVisible(!iconPath.isEmpty());
}

void NavigationControlableFrame::setElementVisible(bool visible, int which)
{
    QWidget *const elements[] = {m_ui->backNavigationButton, m_ui->cancelNavigationButton,
                                 m_ui->labelNavigationIcon, m_ui->labelNavigationTitle};
    for (int element = BackButton; element <= Title; ++element) {
        if (which == All || which == element)
            elements[element - BackButton]->setVisible(visible);
    }
}

void NavigationControlableFrame::setElementText(int which, const QString &text)
{
    switch (which) {
    case BackButton:
        m_ui->backNavigationButton->setText(text);
        break;
    case CancelButton:
        m_ui->cancelNavigationButton->setText(text);
        break;
    case Icon:
        m_ui->labelNavigationIcon->setText(text);
        break;
    case Title:
        m_ui->labelNavigationTitle->setText(text);
        break;
    default:
        break;
    }
}

QPushButton *NavigationControlableFrame::cancelButton() const
{
    return m_ui->cancelNavigationButton;
}
