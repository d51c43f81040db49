// SPDX-License-Identifier: MIT

#pragma once

#include <QFrame>
#include <QList>
#include <QModelIndex>
#include <QPixmap>
#include <QPointer>
#include <memory>

class CHttpTolvex;
class CKavlorModifyAuction;
class CKavlorMyAuctionsModel;
class CKavlorUser;
class PaintedCellDelegate;

namespace Ui {
class CKavlorMyAuctionsController;
}

/**
 * The list of the member's auctions.
 *
 * A content frame of the root window; deletes itself when it is left. It fetches the list, then
 * thumbnails one at a time, in the order in which painting asked for them, all on one request
 * object. A chosen auction opens the price frame in its place. The user record is not owned and
 * must live longer.
 */
class CKavlorMyAuctionsController : public QFrame
{
    Q_OBJECT

public:
    CKavlorMyAuctionsController(CKavlorUser *user, QWidget *parent);
    ~CKavlorMyAuctionsController() override;

public slots:
    /** Shows the auctions of a reply of the service, or says that there are none. */
    void myAuctions(const QString &aData);
    /** The thumbnail of an auction has arrived; null when it has none. */
    void thumbnail(uint aAuctionID, const QPixmap &aImage);
    /** Back to the home frame. */
    void backClicked();
    /** Back to the list when the price frame is open, otherwise to the home frame. */
    void cancelClicked();
    void requestThumbnail(uint auctionid);
    /** A text result; a failed one is passed over without a sign. */
    void requestIsFinished(const QString &response, const QString &error);
    /** An image result; after one with an error no thumbnail is fetched any more. */
    void requestIsFinished(const QPixmap &aImage, const QString &error);
    /** Opens the price frame for the auction in a row, unless it can no longer be changed. */
    void auctionClicked(const QModelIndex &index);
    /** The price frame is done with an auction; @p auctionId is 0 when nothing was changed. */
    void pricesRenewed(int auctionId, int reservePrice, int buyItNowPrice);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    enum State { Idle = 0, AwaitingList = 1, AwaitingThumbnail = 2 };

    void retranslate();
    void prepareTable();
    void fitCells();
    void fetchList();
    void fetchThumbnail();
    void closePriceFrame();
    void showList();

    std::unique_ptr<Ui::CKavlorMyAuctionsController> m_ui;
    CKavlorMyAuctionsModel *m_model;
    PaintedCellDelegate *m_delegate = nullptr;
    CKavlorUser *m_user;
    CHttpTolvex *m_http;
    State m_state = AwaitingList;
    QString m_reply;
    bool m_isListed = false; // the list has come
    QList<uint> m_thumbnailQueue;
    QPointer<CKavlorModifyAuction> m_priceFrame; // null unless it is shown in place of the list
};
