// SPDX-License-Identifier: MIT

#pragma once

#include <QFrame>
#include <memory>

namespace Ui {
class CKavlorAuctionCreate;
}

/**
 * The wizard's page that asks for the prices of the auction, in whole US dollars.
 *
 * It deletes itself once valid prices were handed on; otherwise the wizard deletes it.
 */
class CKavlorAuctionCreate : public QFrame
{
    Q_OBJECT

public:
    /** Starts with these prices; a reserve or buy-it-now price of 0 is not set. */
    CKavlorAuctionCreate(int reserve, int buyItNow, int start, QWidget *parent);
    ~CKavlorAuctionCreate() override;

signals:
    /** The prices keep the rule; a reserve or buy-it-now price of 0 is not set. */
    void finalized(int aReserved, int aBuyItNow, int aStart);

public slots:
    /** Checks the prices and hands them on, or says what is wrong with them. */
    void finalizeClicked();

private:
    std::unique_ptr<Ui::CKavlorAuctionCreate> m_ui;
};
