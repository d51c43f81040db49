// SPDX-License-Identifier: MIT

#include "promptedfield.h"

#include <QFocusEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSignalBlocker>
#include <QTextCursor>
#include <QVariant>

#include <utility>

namespace {

const char editedProperty[] = "edited";

// The text with a capital first letter; unchanged when it has one already.
QString capitalized(const QString &text)
{
    return text.isEmpty() ? text : text.at(0).toUpper() + text.mid(1);
}

// Whether the member, not the program, has moved the focus.
bool isDeliberate(const QFocusEvent *event)
{
    switch (event->reason()) {
    case Qt::MouseFocusReason:
    case Qt::TabFocusReason:
    case Qt::BacktabFocusReason:
    case Qt::ShortcutFocusReason:
        return true;
    default:
        return false;
    }
}

// Whether the event, sent to a field, is about to put letters into it or shows that the member is.
bool isTouch(QEvent *event)
{
    switch (event->type()) {
    case QEvent::FocusIn:
        // A click or a tab into a field need not move its cursor.
        return isDeliberate(static_cast<QFocusEvent *>(event));
    case QEvent::KeyPress: {
        const QString letters = static_cast<QKeyEvent *>(event)->text();
        return !letters.isEmpty() && letters.at(0).isPrint();
    }
    case QEvent::InputMethod: {
        const auto *input = static_cast<QInputMethodEvent *>(event);
        return !input->preeditString().isEmpty() || !input->commitString().isEmpty();
    }
    default:
        return false;
    }
}

// What a member has given for a prompt that nobody had touched: all of a text that took its place,
// or the letters that were put into it.
QString withoutPrompt(const QString &text, const QString &prompt)
{
    const qsizetype shorter = qMin(text.size(), prompt.size());
    qsizetype before = 0;
    while (before < shorter && text.at(before) == prompt.at(before))
        ++before;
    qsizetype after = 0;
    while (after < shorter - before
           && text.at(text.size() - 1 - after) == prompt.at(prompt.size() - 1 - after))
        ++after;
    const QString given = text.mid(before, text.size() - before - after);
    const bool isPromptWhole = before + after == prompt.size();
    return isPromptWhole || given.isEmpty() ? given : text;
}

void fillLine(QLineEdit *line, const QString &text)
{
    {
        // Selected and deleted, since to set a text would also take an input method's first letter.
        const QSignalBlocker quiet(line);
        line->selectAll();
    }
    line->insert(text);
}

void correctLine(QLineEdit *line, const QString &text, int cursor)
{
    line->setText(text);
    line->setCursorPosition(cursor);
}

void fillPage(QPlainTextEdit *page, const QString &text)
{
    page->clear();
    page->insertPlainText(text);
}

void correctPage(QPlainTextEdit *page, const QString &text)
{
    page->clear();
    page->appendPlainText(text);
    // The cursor goes behind the first character, wherever the member was typing.
    QTextCursor cursor = page->textCursor();
    cursor.movePosition(QTextCursor::Start);
    cursor.movePosition(QTextCursor::NextCharacter);
    page->setTextCursor(cursor);
    page->ensureCursorVisible();
}

} // namespace

PromptedField::PromptedField(QLineEdit *field)
    : PromptedField(
        field, [field] { return field->text(); },
        [field](const QString &text) { fillLine(field, text); },
        [field](const QString &text, int cursor) { correctLine(field, text, cursor); })
{
    connect(field, &QLineEdit::textChanged, this, &PromptedField::textChanged);
}

PromptedField::PromptedField(QPlainTextEdit *field)
    : PromptedField(
        field, [field] { return field->toPlainText(); },
        [field](const QString &text) { fillPage(field, text); },
        [field](const QString &text, int) { correctPage(field, text); })
{
    connect(field, &QPlainTextEdit::textChanged, this, &PromptedField::textChanged);
}

PromptedField::PromptedField(QWidget *field, GetText text, SetText fill, SetTextAndCursor correct)
    : QObject(field)
    , m_field(field)
    , m_text(std::move(text))
    , m_fill(std::move(fill))
    , m_correct(std::move(correct))
    , m_prompt(m_text())
{
    field->installEventFilter(this);
}

void PromptedField::setPrompt(const QString &prompt)
{
    const bool isShown = !m_cleared && m_text() == m_prompt;
    m_prompt = prompt;
    if (!isShown)
        return;
    const QSignalBlocker quiet(m_field); // it is no touch
    m_fill(prompt);
}

bool PromptedField::isEmpty() const
{
    return m_empty;
}

QString PromptedField::text() const
{
    return m_text();
}

QString PromptedField::entered() const
{
    return m_empty ? QString() : text();
}

void PromptedField::resume(const QString &text)
{
    m_empty = text.isEmpty();
    m_cleared = !m_empty;
    m_field->setProperty(editedProperty, m_cleared);
}

void PromptedField::cursorMoved(int position)
{
    if (touch())
        return;
    const QString text = m_text();
    if (text.isEmpty())
        return;
    m_empty = false;
    if (text != capitalized(text))
        m_correct(capitalized(text), position);
}

bool PromptedField::eventFilter(QObject *watched, QEvent *event)
{
    if (isTouch(event))
        touch();
    return QObject::eventFilter(watched, event);
}

// True when this was the first touch and has left nothing in the field. It wipes the prompt; what
// has come into the field with it stays.
bool PromptedField::touch()
{
    if (m_cleared || !m_empty || m_field->property(editedProperty).toBool())
        return false;
    m_cleared = true;
    m_field->setProperty(editedProperty, true);
    const QString given = withoutPrompt(m_text(), m_prompt);
    m_fill(given);
    return given.isEmpty();
}

// Letters may come without a key and without a move of the cursor, as from a screen reader.
void PromptedField::textChanged()
{
    if (m_text() != m_prompt)
        touch();
}
