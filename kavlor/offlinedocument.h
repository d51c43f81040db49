// SPDX-License-Identifier: MIT

#pragma once

#include <QTextDocument>

/**
 * A document for HTML from elsewhere: it shows text, and loads neither pictures nor style sheets,
 * which could be any file of this computer.
 */
class OfflineDocument : public QTextDocument
{
    Q_OBJECT

public:
    using QTextDocument::QTextDocument;

    /**
     * Whether @p html is small and shallow enough to be shown as HTML in a moment: at most a
     * megabyte, and no more than 100 elements within each other. Other text is shown as it is.
     */
    static bool isModest(const QString &html);
    /** Plain text whose lines are short enough for a text of any size to be shown in a moment. */
    static QString withShortLines(const QString &text);

protected:
    QVariant loadResource(int type, const QUrl &name) override;
};
