// SPDX-License-Identifier: MIT

#include "kavlorauctionconfirm.h"

#include "auctionrecord.h"
#include "fingerscroll.h"
#include "kavlorcategorystore.h"
#include "offlinedocument.h"
#include "retranslation.h"
#include "roomscale.h"
#include "startfocus.h"
#include "ui_kavlorauctionconfirm.h"

#include <QEvent>

namespace {

QString rowEnd()
{
    return QStringLiteral("</td></tr>");
}

// The beginning of a row: its label, in a cell with @p alignment, and what opens the value's cell.
QString rowStart(const QString &label, QLatin1String alignment, QLatin1String valueCell)
{
    return QLatin1String("<tr><th ") + alignment + QLatin1String("><pre>") + label
        + QLatin1String("</pre></th>") + valueCell;
}

} // namespace

CKavlorAuctionConfirm::CKavlorAuctionConfirm(const CAuctionRecord *record, QWidget *parent)
    : QFrame(parent)
    , m_record(record)
    , m_ui(std::make_unique<Ui::CKavlorAuctionConfirm>())
{
    m_ui->setupUi(this);
    new Retranslation(this, [this] { retranslate(); });
    new RoomScale(this);
    new StartFocus(this, m_ui->auctionOverallInfo);
    // A photo may be named like markup, which must not load anything either.
    auto *document = new OfflineDocument(m_ui->auctionOverallInfo);
    document->setDefaultStyleSheet(QStringLiteral("th,td{color: #697278;font-weight: 20px;}"));
    document->setHtml(summary());
    m_ui->auctionOverallInfo->setDocument(document);
    new FingerScroll(m_ui->auctionOverallInfo, FingerScroll::Text);
    m_ui->createAuctionButton->installEventFilter(this);
    connect(m_ui->createAuctionButton, &QPushButton::clicked, this,
            &CKavlorAuctionConfirm::CreateAuctionClicked);
}

CKavlorAuctionConfirm::~CKavlorAuctionConfirm() = default;

void CKavlorAuctionConfirm::retranslate()
{
    m_ui->retranslateUi(this);
    m_ui->auctionOverallInfo->document()->setHtml(summary());
}

void CKavlorAuctionConfirm::antiBotCheck(const QString &aText)
{
    bool isNumber = false;
    const int number = aText.toInt(&isNumber);
    m_ui->createAuctionButton->setEnabled(isNumber && number == m_checkNumber);
}

void CKavlorAuctionConfirm::CreateAuctionClicked()
{
    m_ui->auctionOverallInfo->setFocus(); // not on to whatever comes next
    m_ui->createAuctionButton->setEnabled(false);
    emit CreateAuction();
}

bool CKavlorAuctionConfirm::eventFilter(QObject *watched, QEvent *event)
{
    // The second half of a double click that began on the page before is no consent.
    if (watched == m_ui->createAuctionButton && event->type() == QEvent::MouseButtonDblClick)
        return true;
    return QFrame::eventFilter(watched, event);
}

QString CKavlorAuctionConfirm::summary() const
{
    const auto price = [](quint32 dollars) {
        return dollars == 0 ? tr("Not set") : tr("USD %1").arg(dollars);
    };
    const auto escaped = [](QString text) {
        return text.replace(QLatin1Char('<'), QLatin1String("&lt;"));
    };
    const QLatin1String right("align='right'");
    const QLatin1String centred("<td valign='middle'>");
    const QString heading = tr("Please verify data you entered ");
    const QString fileName = m_record->mediaPath.section(QLatin1Char('/'), -1);

    const QString body = QLatin1String("<tr><td colspan='2'> <h3>") + heading
        + QLatin1String("</h3></td></tr>") + rowStart(tr("Start price:"), right, centred)
        + price(m_record->startPrice) + rowEnd() + rowStart(tr("Reserved:"), right, centred)
        + price(m_record->reservePrice) + rowEnd() + rowStart(tr("Buy it now:"), right, centred)
        + price(m_record->buyItNowPrice) + rowEnd()
        + rowStart(tr("Caption:"), QLatin1String("align='right'  valign='middle'"), centred)
        + escaped(m_record->caption) + rowEnd()
        + rowStart(tr("Category:"), QLatin1String("align='right' valign='middle'"), centred)
        + escaped(CKavlorCategoryStore::pathText(m_record->category)) + rowEnd()
        + rowStart(tr("File:"), right, QLatin1String("<td>")) + fileName + rowEnd();

    return QLatin1String("<html><head><meta http-equiv='Content-Type' content='text/html; "
                         "charset=iso-8859-1'></head><body><table font='large' width='100%'>")
        + body + QLatin1String("</table></body></html>");
}
