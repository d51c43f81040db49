// SPDX-License-Identifier: MIT

#include "fuzztarget.h"
#include "offlinedocument.h"

#include <QAbstractTextDocumentLayout>
#include <QPlainTextDocumentLayout>
#include <QTextCursor>

// The terms as a new member sees them: HTML where it is modest, plain text where it is not.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    application();
    const QString terms = textOf(data, size);
    OfflineDocument document;
    auto *layout = new QPlainTextDocumentLayout(&document);
    document.setDocumentLayout(layout);
    if (OfflineDocument::isModest(terms))
        QTextCursor(&document).insertHtml(terms);
    else
        document.setPlainText(OfflineDocument::withShortLines(terms));
    constexpr int width = 600;
    document.setTextWidth(width);
    layout->documentSize();
    return 0;
}
