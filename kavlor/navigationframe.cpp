// SPDX-License-Identifier: MIT

#include "navigationframe.h"

#include "progressivemodel.h"
#include "roomscale.h"
#include "ui_navigationframe.h"

namespace {

constexpr uint cellCount = 3;

} // namespace

NavigationFrame::NavigationFrame(QWidget *parent, bool showCancel, bool showProgress)
    : QFrame(parent)
    , m_progress(new CProgressiveModel(this, cellCount, 0))
    , m_ui(std::make_unique<Ui::NavigationFrame>())
{
    m_ui->setupUi(this);
    auto *scale = new RoomScale(this);
    scale->setPicture(m_ui->labelSmallestLogo, QStringLiteral(":/Kavlor Logo Smallest.png"), 48);
    m_ui->cancelNavigationButton->setVisible(showCancel);
    m_ui->progressBar->setVisible(showProgress);
    m_progress->setPercentage(1);
    m_ui->progressBar->setProgress(m_progress);
    scale->apply([this](qreal factor) { m_ui->progressBar->setScale(factor); });
}

NavigationFrame::~NavigationFrame() = default;

void NavigationFrame::retranslate()
{
    m_ui->retranslateUi(this);
}

void NavigationFrame::setWelcomeText(const QString &text)
{
    m_ui->labelWelcomeTo->setText(text);
}

QPushButton *NavigationFrame::cancelButton() const
{
    return m_ui->cancelNavigationButton;
}

void NavigationFrame::setProgressVisible(bool visible)
{
    m_ui->progressBar->setVisible(visible);
}

void NavigationFrame::progressAnimation(bool aStart, uint aHowOften, uint aHowLong)
{
    m_progress->animate(aStart, aHowOften, aHowLong);
}
