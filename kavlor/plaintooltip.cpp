// SPDX-License-Identifier: MIT

#include "plaintooltip.h"

#include <QHelpEvent>
#include <QTextDocument>
#include <QToolTip>
#include <QWidget>

namespace {

constexpr qsizetype mostLetters = 300;
constexpr qsizetype mostLines = 8;

QString beginning(const QString &text)
{
    QString shown = text.left(mostLetters).section(QLatin1Char('\n'), 0, mostLines - 1);
    if (shown.size() < text.size())
        shown += QChar(0x2026); // an ellipsis
    return shown;
}

} // namespace

PlainToolTip::PlainToolTip(QWidget *widget)
    : QObject(widget)
    , m_widget(widget)
{
    widget->installEventFilter(this);
}

bool PlainToolTip::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::ToolTip || m_widget->toolTip().isEmpty())
        return QObject::eventFilter(watched, event);
    // The toolkit guesses whether a tip is markup; a text that is escaped leaves nothing to guess,
    // and its lines are broken where they do not fit.
    const QString text = beginning(m_widget->toolTip());
    QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(),
                       Qt::convertFromPlainText(text), m_widget);
    return true;
}
