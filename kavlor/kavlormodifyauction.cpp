// SPDX-License-Identifier: MIT

#include "kavlormodifyauction.h"

#include "httptolvex.h"
#include "kavloruser.h"
#include "messagebox.h"
#include "pricebox.h"
#include "retranslation.h"
#include "roomscale.h"
#include "startfocus.h"
#include "ui_kavlormodifyauction.h"

namespace {

constexpr int thumbnailSide = 176; // pixels, as in the form
constexpr int thumbnailGrowth = 240;

} // namespace

CKavlorModifyAuction::CKavlorModifyAuction(CKavlorUser *user, int auctionId,
                                           const CAuctionRow &auction, QWidget *parent)
    : QFrame(parent)
    , m_auctionId(auctionId)
    , m_auction(auction)
    , m_user(user)
    , m_request(new CHttpTolvex(this))
    , m_ui(std::make_unique<Ui::CKavlorModifyAuction>())
{
    m_ui->setupUi(this);
    new Retranslation(this, [this] { retranslate(); });
    auto *scale = new RoomScale(this);
    new StartFocus(this, m_ui->reservedPrice);
    if (m_auction.finished) {
        emit done(0, 0, 0);
        return;
    }

    scale->apply([this](qreal factor) { showThumbnail(factor); });
    writePriceByLocale(m_ui->buyItNowPrice);
    writePriceByLocale(m_ui->reservedPrice);
    m_ui->buyItNowPrice->setValue(m_auction.buyItNowPrice);
    m_ui->reservedPrice->setValue(m_auction.reservePrice);
    connect(m_ui->done, &QPushButton::clicked, this, &CKavlorModifyAuction::doneClicked);
}

CKavlorModifyAuction::~CKavlorModifyAuction() = default;

void CKavlorModifyAuction::retranslate()
{
    m_ui->retranslateUi(this);
    showThumbnail(RoomScale::of(this)); // in the place of a text
}

void CKavlorModifyAuction::showThumbnail(qreal scale)
{
    // It takes more than its share of a larger room.
    const int side = qRound(thumbnailSide * scale + (scale - 1) * thumbnailGrowth);
    m_ui->photoThumb->setFixedSize(side, side);
    if (m_auction.thumbnail.isNull())
        return;
    m_ui->photoThumb->setPixmap(
        m_auction.thumbnail.scaled(m_ui->photoThumb->size(), Qt::KeepAspectRatio,
                                   scale == 1 ? Qt::FastTransformation : Qt::SmoothTransformation));
}

void CKavlorModifyAuction::doneClicked()
{
    m_newBuyItNow = m_ui->buyItNowPrice->value();
    m_newReserve = m_ui->reservedPrice->value();
    // Disabled before the request, which may wait for a connection and even fail in the call.
    m_ui->done->setEnabled(false);
    // For this answer only: the request object may report more when nothing is waited for.
    connect(m_request, qOverload<QString, QString>(&CHttpTolvex::requestIsFinished), this,
            &CKavlorModifyAuction::requestIsFinished, Qt::SingleShotConnection);
    m_request->modifyAuction(m_user->field(CKavlorUser::Username),
                             m_user->field(CKavlorUser::Password),
                             static_cast<quint32>(m_auctionId), static_cast<quint32>(m_newReserve),
                             static_cast<quint32>(m_newBuyItNow));
}

void CKavlorModifyAuction::requestIsFinished(const QString &response, const QString &error)
{
    m_ui->done->setEnabled(true);
    m_ui->done->setFocus();
    if (!CHttpTolvex::succeeded(response, error)) {
        MessageBox::tell(this, QMessageBox::Warning, tr("My kavlor"),
                         tr("One or more errors occured while updating auction.\n"
                            "Please find more info below.\n%1\n%2")
                             .arg(response, error),
                         MessageBox::ByItself);
        return;
    }

    // The list may be left, and this frame with it, while the window is open.
    if (MessageBox::tell(this, QMessageBox::Information, tr("My kavlor"),
                         tr("Your auction has been updated successfully."), MessageBox::ByItself))
        emit done(m_auctionId, m_newReserve, m_newBuyItNow);
}
