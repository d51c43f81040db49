// SPDX-License-Identifier: MIT

#pragma once

#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QTranslator>

/** A language whose texts are two fifths longer than the English ones, made from these. */
class PaddedTexts : public QTranslator
{
public:
    bool isEmpty() const override
    {
        return false;
    }

    QString translate(const char *context, const char *source, const char *disambiguation,
                      int number) const override
    {
        Q_UNUSED(disambiguation)
        Q_UNUSED(number)
        const bool isOfTheToolkit = context[0] == 'Q' && qstrcmp(context, "QHttp") != 0;
        const QString text = QString::fromUtf8(source);
        // A file filter is read by the dialog, too.
        if (isOfTheToolkit || text.contains(QLatin1String("(*.")))
            return {};
        return text.startsWith(QLatin1Char('<')) ? paddedMarkup(text) : paddedLines(text);
    }

private:
    static QString padded(const QString &line)
    {
        constexpr int shortText = 20; // a button's, mostly one word
        const QString trimmed = line.trimmed();
        const auto more = static_cast<int>((trimmed.size() * 2 + 4) / 5);
        const QString pattern =
            trimmed.size() <= shortText ? QStringLiteral("nouaters") : QStringLiteral(" nou aters");
        const QString filling = pattern.repeated(more / static_cast<int>(pattern.size()) + 1);
        QString longer = line;
        return longer.replace(trimmed, trimmed + filling.left(more).trimmed());
    }

    static QString paddedLines(const QString &text)
    {
        QStringList lines = text.split(QLatin1Char('\n'));
        for (QString &line : lines) {
            if (!line.trimmed().isEmpty())
                line = padded(line);
        }
        return lines.join(QLatin1Char('\n'));
    }

    static QString paddedMarkup(const QString &text)
    {
        static const QRegularExpression piece(QStringLiteral(">([^<]+)<"));
        QString longer;
        qsizetype done = 0;
        for (auto each = piece.globalMatch(text); each.hasNext();) {
            const QRegularExpressionMatch found = each.next();
            longer += QStringView(text).mid(done, found.capturedStart(1) - done);
            longer += padded(found.captured(1));
            done = found.capturedEnd(1);
        }
        return longer + text.mid(done);
    }
};
