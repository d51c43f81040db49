// SPDX-License-Identifier: MIT

#pragma once

#include <QLabel>
#include <QPixmap>
#include <QSize>
#include <QStringList>
#include <QTimer>

/**
 * Shows in the upload wizard what the member has chosen: a photo, turned where it lies across, a
 * picture that stands for every clip, or the background of the prompt while there is nothing.
 */
class MediaPreview : public QLabel
{
    Q_OBJECT

public:
    explicit MediaPreview(QWidget *parent = nullptr);

    /** The background of the prompt, as large as it fits, now and when the size changes. */
    void showPrompt();
    /** False when there is no picture in the file; what was shown stays then. */
    bool showPhoto(const QString &fileName);
    void showClip();

    /**
     * Photos and clips are made for the size that the preview has at the first call. When it
     * becomes another they are shown larger or smaller with it, pixmap() stays as it is.
     */
    void keepSize();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void rotate();
    void readLargePhoto();

    bool m_showsPrompt = true;
    QSize m_shownSize; // at the first keepSize()
    QString m_photoFile;
    QSize m_photoSize; // in its file
    QPixmap m_large;   // the photo for a preview that has grown; null until then
    bool m_isTurned = false;
    QStringList m_photoTextKeys;
    QTimer m_rotationTimer;
};
