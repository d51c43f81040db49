// SPDX-License-Identifier: MIT

#include "kavlormyauctionscontroller.h"

#include "announce.h"
#include "fingerscroll.h"
#include "httptolvex.h"
#include "kavlormodifyauction.h"
#include "kavlormyauctionsmodel.h"
#include "kavloruser.h"
#include "leaveframe.h"
#include "messagebox.h"
#include "paintedcelldelegate.h"
#include "paintedtableaccess.h"
#include "retranslation.h"
#include "roomscale.h"
#include "rootviewcontroller.h"
#include "slimscrollbar.h"
#include "ui_kavlormyauctionscontroller.h"

#include <QHeaderView>
#include <QShortcut>
#include <QSignalBlocker>

CKavlorMyAuctionsController::CKavlorMyAuctionsController(CKavlorUser *user, QWidget *parent)
    : QFrame(parent)
    , m_ui(std::make_unique<Ui::CKavlorMyAuctionsController>())
    , m_model(new CKavlorMyAuctionsModel(this))
    , m_user(user)
    , m_http(new CHttpTolvex(this))
{
    m_ui->setupUi(this);
    new Retranslation(this, [this] { retranslate(); });
    prepareTable();

    // Queued, since thumbnails are asked for while painting: a request may wait for a connection,
    // in an event loop that must not run in the midst of that. For the same reason the list is
    // fetched when the frame is there and whoever made it has finished.
    connect(m_model, &CKavlorMyAuctionsModel::requestThumb, this,
            &CKavlorMyAuctionsController::requestThumbnail, Qt::QueuedConnection);
    QMetaObject::invokeMethod(this, &CKavlorMyAuctionsController::fetchList, Qt::QueuedConnection);

    connect(m_http, qOverload<QPixmap, QString>(&CHttpTolvex::requestIsFinished), this,
            qOverload<const QPixmap &, const QString &>(
                &CKavlorMyAuctionsController::requestIsFinished));
    connect(m_http, qOverload<QString, QString>(&CHttpTolvex::requestIsFinished), this,
            qOverload<const QString &, const QString &>(
                &CKavlorMyAuctionsController::requestIsFinished));
}

CKavlorMyAuctionsController::~CKavlorMyAuctionsController() = default;

void CKavlorMyAuctionsController::retranslate()
{
    m_ui->retranslateUi(this);
    if (m_isListed)
        m_ui->labelPleaseWait->setText(tr("There is no data to display."));
}

void CKavlorMyAuctionsController::prepareTable()
{
    QTableView *table = m_ui->myAuctionsTable;
    const QList<QSize> sizes{CKavlorMyAuctionsModel::cellSize(CKavlorMyAuctionsModel::Thumbnail),
                             CKavlorMyAuctionsModel::cellSize(CKavlorMyAuctionsModel::Info)};
    m_delegate = new PaintedCellDelegate(sizes, table);
    m_delegate->setCellText([this](const QModelIndex &index) { return m_model->cellText(index); });
    showPaintedCells(table, m_delegate);
    table->hide();
    auto *scale = new RoomScale(this);
    scale->apply([this](qreal factor) {
        m_delegate->setScale(factor);
        m_model->setPixelRatio(factor * devicePixelRatioF());
        fitCells();
    });

    new SlimScrollBar(table);
    new FingerScroll(table, FingerScroll::Rows);

    connect(table, &QTableView::clicked, this, &CKavlorMyAuctionsController::auctionClicked);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        auto *shortcut = new QShortcut(key, table);
        shortcut->setContext(Qt::WidgetShortcut);
        connect(shortcut, &QShortcut::activated, this,
                [this, table] { auctionClicked(table->currentIndex()); });
    }
}

void CKavlorMyAuctionsController::fetchList()
{
    announce(m_ui->labelPleaseWait);
    m_http->getMyAuctions(m_user->field(CKavlorUser::Username),
                          m_user->field(CKavlorUser::Password));
}

void CKavlorMyAuctionsController::fetchThumbnail()
{
    m_http->getThumbnail(m_user->field(CKavlorUser::Username), m_user->field(CKavlorUser::Password),
                         m_thumbnailQueue.constFirst());
}

void CKavlorMyAuctionsController::myAuctions(const QString &aData)
{
    QTableView *table = m_ui->myAuctionsTable;
    table->hide();
    m_model->load(aData);
    m_isListed = true;
    if (m_model->rowCount() == 0) {
        m_ui->labelPleaseWait->setText(tr("There is no data to display."));
        m_ui->labelPleaseWait->show();
        announce(m_ui->labelPleaseWait);
        return;
    }

    m_ui->labelPleaseWait->hide();
    table->setModel(m_model);
    table->setAlternatingRowColors(true);
    table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    {
        // It is laid out when it is shown. Had it heard of the widths before, it would paint itself
        // a second time, and ask for all its thumbnails again.
        const QSignalBlocker blocker(table->horizontalHeader());
        fitCells();
    }
    table->show();
    table->setFocus();
    // Where the keys begin; the cell tells a screen reader all of the row.
    table->setCurrentIndex(m_model->index(0, CKavlorMyAuctionsModel::Info));
}

// The cells stand in the middle of the table, whose rows go from side to side.
void CKavlorMyAuctionsController::fitCells()
{
    QTableView *table = m_ui->myAuctionsTable;
    const int thumbnailWidth = m_delegate->cellSize(CKavlorMyAuctionsModel::Thumbnail).width();
    const QSize info = m_delegate->cellSize(CKavlorMyAuctionsModel::Info);
    const int spare = qMax(0, width() - thumbnailWidth - info.width());
    table->setColumnWidth(CKavlorMyAuctionsModel::Thumbnail, spare / 2 + thumbnailWidth);
    table->setColumnWidth(CKavlorMyAuctionsModel::Info, info.width());
    // All rows have the height of their contents, at a cost that does not grow with their number.
    table->verticalHeader()->setDefaultSectionSize(info.height());
}

void CKavlorMyAuctionsController::resizeEvent(QResizeEvent *event)
{
    QFrame::resizeEvent(event);
    fitCells();
}

void CKavlorMyAuctionsController::thumbnail(uint aAuctionID, const QPixmap &aImage)
{
    m_model->setThumbnail(aAuctionID, aImage);
}

void CKavlorMyAuctionsController::requestThumbnail(uint auctionid)
{
    m_thumbnailQueue.append(auctionid);
    if (m_state != Idle)
        return;
    m_state = AwaitingThumbnail;
    fetchThumbnail();
}

void CKavlorMyAuctionsController::requestIsFinished(const QString &response, const QString &error)
{
    if (!CHttpTolvex::succeeded(response, error))
        return;
    if (m_state == AwaitingList) {
        m_reply = response;
        myAuctions(response);
    } else if (m_state == AwaitingThumbnail) {
        m_thumbnailQueue.removeFirst();
    }
    m_state = Idle;
}

void CKavlorMyAuctionsController::requestIsFinished(const QPixmap &aImage, const QString &error)
{
    if (!error.isEmpty() || m_thumbnailQueue.isEmpty() || m_state != AwaitingThumbnail)
        return;
    thumbnail(m_thumbnailQueue.takeFirst(), aImage);
    if (m_thumbnailQueue.isEmpty())
        m_state = Idle;
    else
        fetchThumbnail();
}

void CKavlorMyAuctionsController::auctionClicked(const QModelIndex &index)
{
    if (!index.isValid() || m_priceFrame)
        return;
    const uint id = m_model->auctionId(index.row());
    const CAuctionRow auction = m_model->auction(id);
    if (auction.finished) {
        MessageBox::tell(this, QMessageBox::Information, tr("My kavlor"),
                         tr("This auction can no longer be changed."));
        return;
    }

    m_priceFrame = new CKavlorModifyAuction(m_user, static_cast<int>(id), auction, parentWidget());
    connect(m_priceFrame, &CKavlorModifyAuction::done, this,
            &CKavlorMyAuctionsController::pricesRenewed);
    m_priceFrame->show();
    hide();
}

void CKavlorMyAuctionsController::pricesRenewed(int auctionId, int reservePrice, int buyItNowPrice)
{
    closePriceFrame();
    m_model->setPrices(static_cast<uint>(auctionId), reservePrice, buyItNowPrice);
    showList();
}

void CKavlorMyAuctionsController::backClicked()
{
    closePriceFrame();
    if (RootViewController *root = RootViewController::of(this)) {
        root->ShowLoginOptions(m_user->field(CKavlorUser::Username),
                               m_user->field(CKavlorUser::Password), true);
    }
    leaveFrame(this);
}

void CKavlorMyAuctionsController::cancelClicked()
{
    if (!m_priceFrame) {
        backClicked();
        return;
    }
    closePriceFrame();
    showList();
}

void CKavlorMyAuctionsController::closePriceFrame()
{
    // Not deleted at once: it may be its own signal that ends it.
    if (m_priceFrame)
        leaveFrame(m_priceFrame);
    m_priceFrame.clear();
}

void CKavlorMyAuctionsController::showList()
{
    show();
    m_ui->myAuctionsTable->setFocus();
}
