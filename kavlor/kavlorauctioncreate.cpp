// SPDX-License-Identifier: MIT

#include "kavlorauctioncreate.h"

#include "leaveframe.h"
#include "messagebox.h"
#include "pricebox.h"
#include "retranslation.h"
#include "roomscale.h"
#include "startfocus.h"
#include "ui_kavlorauctioncreate.h"

namespace {

constexpr int wideSpacing = 28; // pixels

} // namespace

CKavlorAuctionCreate::CKavlorAuctionCreate(int reserve, int buyItNow, int start, QWidget *parent)
    : QFrame(parent)
    , m_ui(std::make_unique<Ui::CKavlorAuctionCreate>())
{
    m_ui->setupUi(this);
    new Retranslation(this, [this] { m_ui->retranslateUi(this); });
    auto *scale = new RoomScale(this);
    // The prices share a page that is higher than the handheld's.
    scale->apply([this](qreal factor) {
        if (factor > 1)
            m_ui->prices->setVerticalSpacing(qRound(wideSpacing * factor));
    });
    new StartFocus(this, m_ui->startPrice);
    for (QSpinBox *box : {m_ui->startPrice, m_ui->reservePrice, m_ui->buyItNowPrice})
        writePriceByLocale(box);
    m_ui->reservePrice->setValue(reserve);
    m_ui->buyItNowPrice->setValue(buyItNow);
    m_ui->startPrice->setValue(start);
    connect(m_ui->finalizeButton, &QPushButton::clicked, this,
            &CKavlorAuctionCreate::finalizeClicked);
}

CKavlorAuctionCreate::~CKavlorAuctionCreate() = default;

void CKavlorAuctionCreate::finalizeClicked()
{
    const int reserve = m_ui->reservePrice->value();
    const int buyItNow = m_ui->buyItNowPrice->value();
    const int start = m_ui->startPrice->value();
    if (start == 0 || (reserve != 0 && reserve <= start)) {
        MessageBox::tell(
            this, QMessageBox::NoIcon, QString(),
            tr("Start price must be lower than reserve price, if reserve price is set."),
            MessageBox::ByItself);
        return;
    }
    emit finalized(reserve, buyItNow, start);
    leaveFrame(this);
}
