// SPDX-License-Identifier: MIT

#pragma once

#include <QFrame>
#include <QModelIndex>
#include <QTimer>
#include <memory>

class CKavlorCategoryModel;

namespace Ui {
class CKavlorAuctionCategorize;
}

/**
 * The wizard's page on which a member walks the category tree and picks a category.
 *
 * A category without children is handed on shortly after it was clicked; one with children is
 * marked and opened. The wizard makes the page and deletes it.
 */
class CKavlorAuctionCategorize : public QFrame
{
    Q_OBJECT

public:
    /**
     * Opens on the level of @p category; 0 opens the top level. With @p clearOnRenew set,
     * nothing stays marked when the page starts again.
     */
    CKavlorAuctionCategorize(QWidget *parent, int category, bool clearOnRenew);
    ~CKavlorAuctionCategorize() override;

signals:
    /** A category without children was picked. */
    void categoryChosen(int category);
    /** The mark or the level may have changed; @p aIndex is the clicked cell, if any. */
    void categoryChanged(int category, QModelIndex aIndex);

public slots:
    /** Shows the level of @p aCategory; for an unknown one the top level with nothing marked. */
    void renewCategories(int aCategory = 0);
    void redrawCategories(int aChosenCategory, QModelIndex aIndex);
    void categoryTableClicked(QModelIndex aIndex);

private:
    void retranslate();
    void setUpTable();
    void pickCurrent();
    void choose(int category);
    void goUpFrom(int category);

    std::unique_ptr<Ui::CKavlorAuctionCategorize> m_ui;
    CKavlorCategoryModel *m_model;
    int m_chosen; // 0 = none
    const bool m_clearOnRenew;
    int m_drawnLevel = 0; // the level at the last redraw
    QTimer m_chooseTimer;
};
