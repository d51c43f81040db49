// SPDX-License-Identifier: MIT

#pragma once

#include <QFrame>
#include <QString>
#include <memory>

struct CAuctionRecord;

namespace Ui {
class CKavlorAuctionConfirm;
}

/**
 * The wizard's page that sums up the auction and starts the upload.
 *
 * It reads the wizard's record when it is made and does not own it. The wizard deletes the page.
 */
class CKavlorAuctionConfirm : public QFrame
{
    Q_OBJECT

public:
    CKavlorAuctionConfirm(const CAuctionRecord *record, QWidget *parent);
    ~CKavlorAuctionConfirm() override;

signals:
    /** The member agrees to the summary; comes once. */
    void CreateAuction();

public slots:
    /** Lets the member go on exactly when @p aText is the check number; nothing asks for it now. */
    void antiBotCheck(const QString &aText);
    void CreateAuctionClicked();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QString summary() const;
    void retranslate();

    const CAuctionRecord *m_record;
    int m_checkNumber = 0;
    std::unique_ptr<Ui::CKavlorAuctionConfirm> m_ui;
};
