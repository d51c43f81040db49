// SPDX-License-Identifier: MIT

#pragma once

#include "auctionrow.h"

#include <QFrame>
#include <memory>

class CHttpTolvex;
class CKavlorUser;

namespace Ui {
class CKavlorModifyAuction;
}

/**
 * New reserve and buy-it-now prices for one auction of the member.
 *
 * The auctions list opens it in its own place and takes it away when it is done. The user record
 * is not owned and must live longer.
 */
class CKavlorModifyAuction : public QFrame
{
    Q_OBJECT

public:
    CKavlorModifyAuction(CKavlorUser *user, int auctionId, const CAuctionRow &auction,
                         QWidget *parent);
    ~CKavlorModifyAuction() override;

signals:
    /**
     * The service has taken the new prices, in whole US dollars, and the member has read so.
     * All three are 0 when nothing was changed, which the constructor says of an auction that can
     * no longer be changed.
     */
    void done(int auctionId, int reservePrice, int buyItNowPrice);

public slots:
    void doneClicked();
    /** The service has answered. A refusal leaves the frame open, for another try. */
    void requestIsFinished(const QString &response, const QString &error);

private:
    void retranslate();
    void showThumbnail(qreal scale);

    int m_auctionId;
    CAuctionRow m_auction;
    CKavlorUser *m_user;
    CHttpTolvex *m_request;
    int m_newReserve = 0;
    int m_newBuyItNow = 0;
    std::unique_ptr<Ui::CKavlorModifyAuction> m_ui;
};
