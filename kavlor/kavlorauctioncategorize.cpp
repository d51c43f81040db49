// SPDX-License-Identifier: MIT

#include "kavlorauctioncategorize.h"

#include "fingerscroll.h"
#include "kavlorcategorymodel.h"
#include "kavlorcategorystore.h"
#include "paintedcelldelegate.h"
#include "paintedtableaccess.h"
#include "retranslation.h"
#include "roomscale.h"
#include "rootviewcontroller.h"
#include "startfocus.h"
#include "timeconstants.h"
#include "ui_kavlorauctioncategorize.h"

#include <QHeaderView>
#include <QShortcut>

namespace {

constexpr int unknown = -1;

// The page stands in the wizard's page area, so the wizard is its parent's parent.
RootViewController *rootAbove(const QWidget *page)
{
    const QWidget *area = page->parentWidget();
    const QWidget *wizard = area ? area->parentWidget() : nullptr;
    return wizard ? RootViewController::of(wizard) : nullptr;
}

const CKavlorCategoryStore &store()
{
    return CKavlorCategoryStore::instanceOrEmpty();
}

} // namespace

CKavlorAuctionCategorize::CKavlorAuctionCategorize(QWidget *parent, int category, bool clearOnRenew)
    : QFrame(parent)
    , m_ui(std::make_unique<Ui::CKavlorAuctionCategorize>())
    , m_model(new CKavlorCategoryModel(this))
    , m_chosen(category)
    , m_clearOnRenew(clearOnRenew)
{
    m_ui->setupUi(this);
    new Retranslation(this, [this] { retranslate(); });
    new StartFocus(this, m_ui->categoriesTable);
    setUpTable();
    m_chooseTimer.setSingleShot(true);

    if (RootViewController *root = rootAbove(this)) {
        connect(root, &RootViewController::CategoriesDone, this, [this] { renewCategories(); });
    }
    connect(m_ui->categoriesTable, &QTableView::clicked, this,
            &CKavlorAuctionCategorize::categoryTableClicked);
    connect(this, &CKavlorAuctionCategorize::categoryChanged, this,
            &CKavlorAuctionCategorize::redrawCategories);
    connect(m_ui->unselect, &QPushButton::clicked, this, [this] { renewCategories(); });
    connect(&m_chooseTimer, &QTimer::timeout, this, [this] { emit categoryChosen(m_chosen); });

    renewCategories(category);
}

CKavlorAuctionCategorize::~CKavlorAuctionCategorize() = default;

void CKavlorAuctionCategorize::retranslate()
{
    m_ui->retranslateUi(this);
    m_ui->categorySelected->setText(CKavlorCategoryStore::pathText(m_chosen));
}

void CKavlorAuctionCategorize::setUpTable()
{
    QList<QSize> sizes;
    for (int column = 0; column < CKavlorCategoryModel::columns; ++column)
        sizes.append(CKavlorCategoryModel::cellSize(column));
    auto *delegate = new PaintedCellDelegate(sizes, this);
    auto *scale = new RoomScale(this);
    scale->apply([this, delegate](qreal factor) {
        delegate->setScale(factor);
        m_model->setPixelRatio(factor * devicePixelRatioF());
        m_ui->categoriesTable->resizeColumnsToContents();
        // All rows have the height of their contents, at a cost that does not grow with their
        // number.
        m_ui->categoriesTable->verticalHeader()->setDefaultSectionSize(
            delegate->cellSize(CKavlorCategoryModel::CategoryColumn).height());
    });
    delegate->setCellText([this](const QModelIndex &index) { return m_model->cellText(index); });
    showPaintedCells(m_ui->categoriesTable, delegate);
    m_ui->categoriesTable->viewport()->setAutoFillBackground(false);
    m_ui->categoriesTable->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    new FingerScroll(m_ui->categoriesTable, FingerScroll::Rows);
    // By name, since the table's slot is protected.
    connect(m_model, SIGNAL(rowCountChanged(int, int)), m_ui->categoriesTable,
            SLOT(rowCountChanged(int, int)));
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        auto *shortcut = new QShortcut(key, m_ui->categoriesTable);
        shortcut->setContext(Qt::WidgetShortcut);
        connect(shortcut, &QShortcut::activated, this, &CKavlorAuctionCategorize::pickCurrent);
    }
}

void CKavlorAuctionCategorize::pickCurrent()
{
    categoryTableClicked(m_ui->categoriesTable->currentIndex());
}

void CKavlorAuctionCategorize::renewCategories(int aCategory)
{
    // What is about to be handed on is no longer what the member sees.
    m_chooseTimer.stop();

    const bool known = aCategory != 0 && store().contains(aCategory);
    m_model->showLevel(known ? store().parentOf(aCategory, 0) : 0);
    if (!known || m_clearOnRenew)
        m_chosen = 0;

    m_model->setChosen(m_chosen);
    m_ui->categoriesTable->setModel(m_model);
    m_ui->categoriesTable->resizeColumnsToContents();
    m_ui->categoriesTable->setProperty("FingerScrollable", true);
    emit categoryChanged(m_chosen, QModelIndex());
}

void CKavlorAuctionCategorize::categoryTableClicked(QModelIndex aIndex)
{
    const int category = m_model->identifierAt(aIndex.row());
    if (aIndex.column() == CKavlorCategoryModel::BackColumn)
        goUpFrom(category);
    else if (aIndex.isValid())
        choose(category);
    emit categoryChanged(m_chosen, aIndex);
}

void CKavlorAuctionCategorize::choose(int category)
{
    m_chooseTimer.stop();
    m_chosen = category;
    if (store().children(category).isEmpty())
        m_chooseTimer.start(timeConstants().categoryDelay);
    else
        m_model->showLevel(category);
}

void CKavlorAuctionCategorize::goUpFrom(int category)
{
    const int parent = store().parentOf(category, unknown);
    if (parent == unknown || parent == 0)
        return;
    m_chooseTimer.stop();
    m_model->showLevel(store().parentOf(parent, 0));
}

void CKavlorAuctionCategorize::redrawCategories(int aChosenCategory, QModelIndex aIndex)
{
    m_model->setChosen(aChosenCategory);
    const bool levelChanged = m_model->levelParent() != m_drawnLevel;
    m_drawnLevel = m_model->levelParent();
    if (levelChanged || aIndex.model() != m_model) {
        // Where the keys begin.
        m_ui->categoriesTable->setCurrentIndex(
            m_model->index(0, CKavlorCategoryModel::CategoryColumn));
        m_ui->categoriesTable->scrollToTop();
    } else {
        m_ui->categoriesTable->update(aIndex);
    }
    m_ui->categoriesTable->resizeColumnsToContents();
    m_ui->categoriesTable->viewport()->repaint();
    m_ui->categorySelected->setText(CKavlorCategoryStore::pathText(m_chosen));
}
