// SPDX-License-Identifier: MIT

#include "mediapreview.h"

#include "drawings.h"
#include "photofile.h"
#include "timeconstants.h"

#include <QFont>
#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <QPixmapCache>
#include <QResizeEvent>
#include <QScreen>
#include <QTransform>

namespace {

bool isSideways(const QSize &image, const QSize &preview)
{
    const bool imageIsPortrait = image.height() > image.width();
    const bool imageIsLandscape = image.width() > image.height();
    const bool previewIsPortrait = preview.height() > preview.width();
    const bool previewIsLandscape = preview.width() > preview.height();
    return (imageIsPortrait && previewIsLandscape) || (imageIsLandscape && previewIsPortrait);
}

const QTransform &clockwise()
{
    static const QTransform turn = QTransform().rotate(90);
    return turn;
}

QString clipKey()
{
    return QStringLiteral(":/videoicon.png");
}

QPixmap paintVideoIcon(const QSize &size)
{
    QPixmap icon = QPixmap(QStringLiteral(":/videoicon.png"))
                       .scaled(size, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    QPainter painter(&icon);
    painter.setFont(QFont(QStringLiteral("SmallSystemFont"), 16, QFont::Normal));
    painter.setPen(QColor(41, 53, 95));
    const int half = size.height() / 2;
    painter.drawText(QRect(2, half, size.width() - 4, half), Qt::AlignCenter | Qt::TextWordWrap,
                     MediaPreview::tr("Your media\nhas been selected.\n"
                                      "Please describe\nand categorize it."));
    return icon;
}

} // namespace

MediaPreview::MediaPreview(QWidget *parent)
    : QLabel(parent)
{
    m_rotationTimer.setSingleShot(true);
    connect(&m_rotationTimer, &QTimer::timeout, this, &MediaPreview::rotate);
}

void MediaPreview::showPrompt()
{
    static const QImage plain(QStringLiteral(":/UploadBG.png"));
    static const QImage large(largeDrawing(QStringLiteral(":/UploadBG.png")));
    const QImage &background = width() > plain.width() ? large : plain;
    m_rotationTimer.stop();
    m_showsPrompt = true;
    setPixmap(QPixmap::fromImage(
        background.scaled(size(), Qt::KeepAspectRatio, Qt::SmoothTransformation)));
}

bool MediaPreview::showPhoto(const QString &fileName)
{
    m_rotationTimer.stop();
    // A box as wide as high: a photo of either form then fits, turned or not.
    const QSize box(m_shownSize.height(), m_shownSize.height());
    const ShownPhoto photo = readPhoto(fileName, box);
    if (photo.image.isNull())
        return false;

    m_showsPrompt = false;
    m_photoFile = fileName;
    m_large = QPixmap();
    m_isTurned = false;
    m_photoTextKeys = photo.image.textKeys();
    m_photoSize = photo.originalSize;
    setPixmap(QPixmap::fromImage(photo.image));
    if (isSideways(m_photoSize, m_shownSize))
        m_rotationTimer.start(timeConstants().rotationDelay);
    return true;
}

void MediaPreview::showClip()
{
    m_rotationTimer.stop();
    m_showsPrompt = false;
    m_photoFile.clear();
    m_large = QPixmap();
    QPixmap icon;
    if (!QPixmapCache::find(clipKey(), &icon)) {
        icon = paintVideoIcon(m_shownSize);
        QPixmapCache::insert(clipKey(), icon);
    }
    setPixmap(icon);
}

void MediaPreview::keepSize()
{
    if (!m_shownSize.isValid())
        m_shownSize = size();
}

void MediaPreview::changeEvent(QEvent *event)
{
    const bool showsClip = !m_showsPrompt && m_photoFile.isEmpty();
    if (event->type() == QEvent::LanguageChange && showsClip) {
        QPixmapCache::remove(clipKey());
        showClip();
    }
    QLabel::changeEvent(event);
}

void MediaPreview::resizeEvent(QResizeEvent *event)
{
    QLabel::resizeEvent(event);
    if (m_showsPrompt)
        showPrompt();
    else if (height() > m_shownSize.height() && m_large.isNull())
        readLargePhoto();
}

// Once, as large as any window of this screen can need it.
void MediaPreview::readLargePhoto()
{
    const int height = screen()->size().height();
    const ShownPhoto photo = readPhoto(m_photoFile, QSize(height, height));
    m_large = QPixmap::fromImage(photo.image);
    if (m_isTurned)
        m_large = m_large.transformed(clockwise());
}

void MediaPreview::paintEvent(QPaintEvent *event)
{
    if (m_showsPrompt || size() == m_shownSize) {
        QLabel::paintEvent(event);
        return;
    }
    const QPixmap own = pixmap();
    const bool hasGrown = height() > m_shownSize.height();
    const QPixmap &shown = hasGrown && !m_large.isNull() ? m_large : own;
    const QSizeF grown = own.deviceIndependentSize() * height() / m_shownSize.height();
    QRectF place({}, grown.scaled(grown.boundedTo(size()), Qt::KeepAspectRatio));
    place.moveCenter(QRectF(rect()).center());
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(place, shown, shown.rect());
}

void MediaPreview::rotate()
{
    m_isTurned = true;
    setPixmap(pixmap().transformed(clockwise()));
    if (!m_large.isNull())
        m_large = m_large.transformed(clockwise());
}
