// SPDX-License-Identifier: MIT

#include "mediadialog.h"

#include "fingerscroll.h"
#include "theme.h"

#include <QComboBox>
#include <QListView>
#include <QPointer>
#include <QPushButton>
#include <QScreen>

namespace {

constexpr QSize rowIcon(32, 32); // pixels

} // namespace

MediaDialog::MediaDialog(QWidget *parent, const QString &title, const QString &folder,
                         const QString &filter)
    : QFileDialog(parent, title, folder, filter)
{
    // Read only, since here nothing is to be renamed or thrown away.
    setOptions(DontUseNativeDialog | ReadOnly | HideNameFilterDetails);
    setFileMode(ExistingFile);
    setViewMode(List);
    setStyleSheet(fileDialogStyleSheet());
    reduce();
    prepareRows();
    resize(parent->window()->size().boundedTo(screen()->availableSize()));
}

QString MediaDialog::choose(QWidget *parent, const QString &title, const QString &folder,
                            const QString &filter)
{
    // Not on the stack: it goes with its parent if that goes while it is open.
    const QPointer<MediaDialog> dialog = new MediaDialog(parent, title, folder, filter);
    const bool isChosen = dialog->exec() == Accepted && dialog;
    const QString path = isChosen ? dialog->selectedFiles().value(0) : QString();
    delete dialog;
    return path;
}

// Leaves the way up, the folders above, the list, the name and the two buttons.
void MediaDialog::reduce()
{
    for (const char *part : {"sidebar", "backButton", "forwardButton", "newFolderButton",
                             "listModeButton", "detailModeButton", "lookInLabel"}) {
        if (auto *widget = findChild<QWidget *>(QLatin1String(part)))
            widget->hide();
    }
    // The desktop's own small pictures, which the look has no place for.
    const QList<QPushButton *> buttons = findChildren<QPushButton *>();
    for (QPushButton *button : buttons)
        button->setIcon(QIcon());
    // As wide as there is room for, not as their longest entry.
    const QList<QComboBox *> boxes = findChildren<QComboBox *>();
    for (QComboBox *box : boxes) {
        box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        box->setMinimumContentsLength(6);
    }
}

void MediaDialog::prepareRows()
{
    auto *rows = findChild<QListView *>(QStringLiteral("listView"));
    if (!rows)
        return;
    rows->setWrapping(false); // one below the other
    rows->setIconSize(rowIcon);
    rows->setTextElideMode(Qt::ElideMiddle);
    rows->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    new FingerScroll(rows, FingerScroll::Rows);
}
