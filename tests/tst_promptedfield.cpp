// SPDX-License-Identifier: MIT

#include "promptedfield.h"
#include "testcase.h"
#include "testmain.h"

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QtTest>

namespace {

// A line that tells its field of its cursor, as the upload wizard does.
class Line : public QLineEdit
{
public:
    Line()
    {
        setText(QStringLiteral("Caption"));
        m_field = new PromptedField(this);
        connect(this, &QLineEdit::cursorPositionChanged, m_field,
                [this](int, int position) { m_field->cursorMoved(position); });
        connect(this, &QLineEdit::selectionChanged, m_field, [this] { m_field->cursorMoved(); });
    }
    const PromptedField &field() const
    {
        return *m_field;
    }
    void resume(const QString &text)
    {
        m_field->resume(text);
        setText(text);
    }

private:
    PromptedField *m_field = nullptr;
};

} // namespace

class tst_PromptedField : public TestCase
{
    Q_OBJECT

private slots:
    void promptIsNothingEntered();
    void keyWipesThePromptAndStays();
    void aTextPutInByAProgramTakesThePromptsPlace();
    void aTextThatLeavesTheCursorTakesThePromptsPlace();
    void erasedAgainItIsNotEmpty();
    void whatIsResumedIsNotWiped();
    void pageCursorGoesBehindTheFirstLetter();
};

void tst_PromptedField::promptIsNothingEntered()
{
    const Line line;
    QVERIFY(line.field().isEmpty());
    QCOMPARE(line.field().text(), QStringLiteral("Caption"));
    QCOMPARE(line.field().entered(), QString());
}

void tst_PromptedField::keyWipesThePromptAndStays()
{
    Line line;
    QTest::keyClicks(&line, QStringLiteral("hello"));
    QCOMPARE(line.text(), QStringLiteral("Hello"));
    QVERIFY(!line.field().isEmpty());
    QCOMPARE(line.field().entered(), QStringLiteral("Hello"));
    QVERIFY(line.property("edited").toBool());
}

void tst_PromptedField::aTextPutInByAProgramTakesThePromptsPlace()
{
    Line line;
    line.insert(QStringLiteral("hello"));
    QCOMPARE(line.text(), QStringLiteral("Hello"));
}

void tst_PromptedField::aTextThatLeavesTheCursorTakesThePromptsPlace()
{
    Line line;
    line.setText(QStringLiteral("fishing")); // has as many letters as the prompt
    QCOMPARE(line.text(), QStringLiteral("Fishing"));
    QCOMPARE(line.field().entered(), QStringLiteral("Fishing"));

    QPlainTextEdit page(QStringLiteral("Description"));
    auto *field = new PromptedField(&page);
    connect(&page, &QPlainTextEdit::cursorPositionChanged, field,
            [field] { field->cursorMoved(); });
    QTextCursor other(page.document());
    other.movePosition(QTextCursor::End);
    other.insertText(QStringLiteral("harbour"));
    QCOMPARE(page.toPlainText(), QStringLiteral("Harbour"));
    QCOMPARE(field->entered(), QStringLiteral("Harbour"));
}

void tst_PromptedField::erasedAgainItIsNotEmpty()
{
    Line line;
    QTest::keyClick(&line, Qt::Key_A);
    QTest::keyClick(&line, Qt::Key_Backspace);
    QCOMPARE(line.text(), QString());
    QVERIFY(!line.field().isEmpty());
}

void tst_PromptedField::whatIsResumedIsNotWiped()
{
    Line line;
    line.resume(QStringLiteral("Sunset"));
    QVERIFY(!line.field().isEmpty());
    QTest::keyClick(&line, Qt::Key_S);
    QCOMPARE(line.text(), QStringLiteral("Sunsets"));
}

void tst_PromptedField::pageCursorGoesBehindTheFirstLetter()
{
    QPlainTextEdit page(QStringLiteral("Description"));
    auto *field = new PromptedField(&page);
    connect(&page, &QPlainTextEdit::cursorPositionChanged, field,
            [field] { field->cursorMoved(); });
    QTest::keyClick(&page, Qt::Key_H);
    QCOMPARE(page.toPlainText(), QStringLiteral("H"));
    page.insertPlainText(QStringLiteral("arbour"));
    page.moveCursor(QTextCursor::Start);
    page.insertPlainText(QStringLiteral("the "));
    QCOMPARE(page.toPlainText(), QStringLiteral("The Harbour"));
    QCOMPARE(page.textCursor().position(), 1);
    QCOMPARE(field->entered(), QStringLiteral("The Harbour"));
}

KAVLOR_TEST_MAIN(tst_PromptedField)

#include "tst_promptedfield.moc"
