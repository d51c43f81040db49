// SPDX-License-Identifier: MIT

#include "messagebox.h"

#include "fingerscroll.h"
#include "roomscale.h"
#include "theme.h"

#include <QAbstractButton>
#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QPointer>
#include <QScreen>
#include <QTextEdit>
#include <QtMath>

#include <algorithm>

namespace {

constexpr QSize largestBox(784, 424);  // leaves room for the frame that windows have at their sides
constexpr int smallestTextWidth = 320; // room for a title
constexpr int textIndent = 12;         // pixels between the icon and the text
constexpr int detailsTextHeight = 130;
// In letters: more than the first never fit into a box, and more than the second nobody reads in
// its details. Laying out a text of some megabytes would make the window hang.
constexpr qsizetype enoughForABox = 5000;
constexpr qsizetype enoughForDetails = 50000;

} // namespace

MessageBox::MessageBox(QWidget *parent, qreal scale, Icon icon, const QString &title,
                       const QString &text, StandardButtons buttons, StandardButton preset)
    : QMessageBox(icon, title, QString(), buttons, parent)
    , m_label(findChild<QLabel *>(QStringLiteral("qt_msgbox_label")))
    , m_scale(scale)
{
    setStyleSheet(RoomScale::styleSheet(messageBoxStyleSheet(), scale));
    enlargeIcon();
    setTextFormat(Qt::PlainText);
    setTextInteractionFlags(Qt::NoTextInteraction);
    setDefaultButton(preset);
    removeButtonIcons();
    m_label->installEventFilter(this);
    fitText(text);
}

bool MessageBox::tell(QWidget *frame, Icon icon, const QString &title, const QString &text,
                      Place place)
{
    const QPointer<QWidget> teller(frame);
    show(frame, place, icon, title, text, Ok, Ok);
    return !teller.isNull();
}

bool MessageBox::ask(QWidget *frame, const QString &title, const QString &question, Place place)
{
    const QPointer<QWidget> asker(frame);
    return show(frame, place, Question, title, question, Yes | No, No) == Yes && asker;
}

QMessageBox::StandardButton MessageBox::show(QWidget *frame, Place place, Icon icon,
                                             const QString &title, const QString &text,
                                             StandardButtons buttons, StandardButton preset)
{
    // Not on the stack: it goes with its parent if that goes while it is open.
    const QPointer<MessageBox> box =
        new MessageBox(place == OverFrame ? frame : nullptr, RoomScale::of(frame), icon, title,
                       text, buttons, preset);
    const auto answer = static_cast<StandardButton>(box->exec());
    delete box;
    return answer;
}

int MessageBox::scaled(int length) const
{
    return qRound(length * m_scale);
}

// The desktop's own small pictures, which the look has no place for.
void MessageBox::removeButtonIcons()
{
    const QList<QAbstractButton *> all = QMessageBox::buttons();
    for (QAbstractButton *button : all)
        button->setIcon(QIcon());
}

// The toolkit's icon has one size.
void MessageBox::enlargeIcon()
{
    auto *label = findChild<QLabel *>(QStringLiteral("qt_msgboxex_icon_label"));
    if (m_scale == 1 || !label || icon() == NoIcon)
        return;
    const qreal size = iconPixmap().deviceIndependentSize().height() * m_scale;
    const qreal ratio = devicePixelRatioF();
    QPixmap enlarged = iconPixmap().scaledToHeight(qRound(size * ratio), Qt::SmoothTransformation);
    enlarged.setDevicePixelRatio(ratio);
    label->setPixmap(enlarged);
}

// Shows all of the text or, when there is no room for it, its beginning above the details.
void MessageBox::fitText(const QString &text)
{
    const QSize room = roomForText();
    qsizetype shown = layOut(text, room);
    if (shown < text.size()) {
        setDetailedText(text.left(enoughForDetails));
        shown = layOut(text, room - QSize(0, detailsHeight()));
        setDetailedText(text.mid(shown, enoughForDetails));
    }
    setText(text.left(shown));
}

// What is left for the text in a box of the largest size.
QSize MessageBox::roomForText() const
{
    const QSize limit = (largestBox * m_scale).boundedTo(screen()->availableSize());
    const QList<QWidget *> parts = findChildren<QWidget *>();
    for (QWidget *part : parts)
        part->ensurePolished();
    m_label->setFixedSize(limit);
    layout()->activate();
    return limit - (layout()->totalMinimumSize() - limit);
}

int MessageBox::detailsHeight()
{
    auto *details = findChild<QTextEdit *>();
    details->ensurePolished();
    details->setFixedHeight(scaled(detailsTextHeight));
    new FingerScroll(details, FingerScroll::Text);
    const auto *grid = qobject_cast<QGridLayout *>(layout());
    return details->parentWidget()->sizeHint().height() + grid->verticalSpacing();
}

// Breaks the text into lines that fit, gives the label their size, and returns how many letters
// they hold. A word that is wider than a line is broken, too.
qsizetype MessageBox::layOut(const QString &text, const QSize &room)
{
    QString lines = text.left(enoughForABox);
    lines.replace(QLatin1Char('\n'), QChar(QChar::LineSeparator));
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    m_layout.setTextOption(option);
    m_layout.setFont(m_label->font());
    m_layout.setText(lines);

    m_lines = 0;
    qsizetype shown = 0;
    const int indent = scaled(textIndent);
    qreal width = scaled(smallestTextWidth) - indent;
    qreal height = 0;
    m_layout.beginLayout();
    for (QTextLine line = m_layout.createLine(); line.isValid(); line = m_layout.createLine()) {
        line.setLineWidth(room.width() - indent);
        if (height + line.height() > room.height())
            break;
        line.setPosition(QPointF(indent, height));
        width = std::max(width, line.naturalTextWidth());
        height += line.height();
        shown = line.textStart() + line.textLength();
        ++m_lines;
    }
    m_layout.endLayout();
    m_label->setFixedSize(qCeil(width) + indent, qCeil(height));
    return shown;
}

bool MessageBox::eventFilter(QObject *watched, QEvent *event)
{
    // The label itself would break no word, and cut off what is wider than a line.
    if (watched == m_label && event->type() == QEvent::Paint) {
        paintText();
        return true;
    }
    return QMessageBox::eventFilter(watched, event);
}

void MessageBox::paintText() const
{
    QPainter painter(m_label);
    painter.setPen(m_label->palette().color(QPalette::WindowText));
    for (int line = 0; line < m_lines; ++line)
        m_layout.lineAt(line).draw(&painter, QPointF());
}

void MessageBox::resizeEvent(QResizeEvent *event)
{
    QMessageBox::resizeEvent(event);
    // Opened details must not push the buttons or themselves off the screen.
    const QRect free = screen()->availableGeometry();
    if (isVisible() && frameGeometry().bottom() > free.bottom())
        move(x(), std::max(free.top(), free.bottom() - frameGeometry().height()));
}
