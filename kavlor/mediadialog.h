// SPDX-License-Identifier: MIT

#pragma once

#include <QFileDialog>

/**
 * The dialog in which a member chooses a photo or clip: as large as the window it stands over, in
 * the common look whatever the desktop's colours are, with rows to tap.
 *
 * It is the toolkit's own dialog, reduced to what choosing one file takes.
 */
class MediaDialog : public QFileDialog
{
    Q_OBJECT

public:
    /**
     * Opens with @p folder or, when that is a file, with its folder and the file selected. Returns
     * the path that was chosen, or an empty text; the dialog goes with @p parent if that goes.
     */
    static QString choose(QWidget *parent, const QString &title, const QString &folder,
                          const QString &filter);

private:
    MediaDialog(QWidget *parent, const QString &title, const QString &folder,
                const QString &filter);

    void reduce();
    void prepareRows();
};
