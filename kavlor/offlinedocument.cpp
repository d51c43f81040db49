// SPDX-License-Identifier: MIT

#include "offlinedocument.h"

#include <QImage>
#include <QRegularExpression>
#include <QStringList>
#include <QUrl>

namespace {

constexpr qsizetype mostBytes = 1024LL * 1024;
constexpr qsizetype deepest = 100;
// The toolkit would take more than a second to lay out a document beyond one of these.
constexpr int mostTags = 100000;
constexpr int longestWord = 1000;
constexpr qsizetype longestLine = 500;

// Elements without an end tag.
bool isVoid(const QString &name)
{
    static const QStringList names{
        QStringLiteral("area"),  QStringLiteral("base"), QStringLiteral("br"),
        QStringLiteral("col"),   QStringLiteral("hr"),   QStringLiteral("img"),
        QStringLiteral("input"), QStringLiteral("link"), QStringLiteral("meta")};
    return names.contains(name);
}

// Whether a start tag @p next closes the open element @p open, whose end tag HTML lets writers
// omit.
bool isEndedBy(const QString &open, const QString &next)
{
    static const QStringList cells{QStringLiteral("td"), QStringLiteral("th")};
    static const QStringList terms{QStringLiteral("dt"), QStringLiteral("dd")};
    if (cells.contains(open))
        return cells.contains(next) || next == QLatin1String("tr");
    if (terms.contains(open))
        return terms.contains(next);
    return open == next
        && (open == QLatin1String("p") || open == QLatin1String("li") || open == QLatin1String("tr")
            || open == QLatin1String("option"));
}

// Long texts without a blank take ages to be broken into lines.
bool hasEndlessWord(const QString &html)
{
    int length = 0;
    bool inTag = false;
    for (const QChar letter : html) {
        if (letter == QLatin1Char('<'))
            inTag = true;
        length = inTag || letter.isSpace() ? 0 : length + 1;
        if (letter == QLatin1Char('>'))
            inTag = false;
        if (length > longestWord)
            return true;
    }
    return false;
}

} // namespace

bool OfflineDocument::isModest(const QString &html)
{
    if (html.size() > mostBytes || html.toUtf8().size() > mostBytes || hasEndlessWord(html))
        return false;
    static const QRegularExpression tag(QStringLiteral("<(/?)([a-zA-Z][a-zA-Z0-9]*)"));
    QStringList open;
    int tagCount = 0;
    for (auto tags = tag.globalMatch(html); tags.hasNext();) {
        const QRegularExpressionMatch match = tags.next();
        if (++tagCount > mostTags)
            return false;
        const QString name = match.captured(2).toLower();
        if (isVoid(name))
            continue;
        if (match.capturedLength(1) > 0) {
            const qsizetype begin = open.lastIndexOf(name);
            if (begin >= 0)
                open.resize(begin);
            continue;
        }
        while (!open.isEmpty() && isEndedBy(open.constLast(), name))
            open.removeLast();
        open.append(name);
        if (open.size() > deepest)
            return false;
    }
    return true;
}

QString OfflineDocument::withShortLines(const QString &text)
{
    QString lines;
    lines.reserve(text.size() + text.size() / longestLine);
    for (qsizetype start = 0; start < text.size();) {
        qsizetype end = text.indexOf(QLatin1Char('\n'), start);
        if (end < 0)
            end = text.size();
        while (end - start > longestLine) {
            // Not in the whole text before: without blanks, that would take for ever.
            const QStringView line = QStringView(text).mid(start, longestLine + 1);
            const qsizetype blank = line.lastIndexOf(QLatin1Char(' '));
            const qsizetype next = start + (blank > 0 ? blank + 1 : longestLine);
            lines += QStringView(text).mid(start, next - start);
            lines += QLatin1Char('\n');
            start = next;
        }
        lines += QStringView(text).mid(start, end + 1 - start);
        start = end + 1;
    }
    return lines;
}

QVariant OfflineDocument::loadResource(int type, const QUrl &name)
{
    Q_UNUSED(name)
    // A picture of one transparent pixel: without any, the toolkit would open the named file
    // itself.
    if (type == ImageResource) {
        QImage nothing(1, 1, QImage::Format_ARGB32_Premultiplied);
        nothing.fill(Qt::transparent);
        return nothing;
    }
    return QString();
}
