// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>
#include <QString>

#include <functional>

class QLineEdit;
class QPlainTextEdit;
class QWidget;

/**
 * A field whose text at first is a prompt, which goes at the member's first touch, and whose first
 * letter is made a capital.
 *
 * A touch is a click or tab into the field, a move of its cursor, or letters that come in whichever
 * way. The form marks with the property "edited" a field whose text is no prompt. The object is a
 * child of its field; its owner tells it of the cursor.
 */
class PromptedField : public QObject
{
    Q_OBJECT

public:
    explicit PromptedField(QLineEdit *field);
    explicit PromptedField(QPlainTextEdit *field);

    /** The prompt, in another language; shown unless a touch has wiped it. */
    void setPrompt(const QString &prompt);
    /** No first letter was seen yet. It does not count that all letters were taken out again. */
    bool isEmpty() const;
    /** What is in the field, be it the prompt. */
    QString text() const;
    /** What is in the field; nothing while isEmpty(). */
    QString entered() const;

    /**
     * From now on the field is as a member left it that entered @p text, which whoever calls puts
     * into it: no prompt is left to be wiped where something was entered.
     */
    void resume(const QString &text);
    /** The cursor or the selection has moved; a line's cursor ends at @p position. */
    void cursorMoved(int position = -1);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    using GetText = std::function<QString()>;
    using SetText = std::function<void(const QString &)>;
    using SetTextAndCursor = std::function<void(const QString &, int)>;

    PromptedField(QWidget *field, GetText text, SetText fill, SetTextAndCursor correct);
    bool touch();
    void textChanged();

    QWidget *const m_field;
    const GetText m_text;
    const SetText m_fill;             // instead of the prompt
    const SetTextAndCursor m_correct; // the first letter
    QString m_prompt;
    bool m_empty = true;
    bool m_cleared = false; // the prompt was wiped
};
