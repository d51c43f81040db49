// SPDX-License-Identifier: MIT

#pragma once

#include <QHash>
#include <QList>
#include <QMargins>
#include <QObject>
#include <QPointer>
#include <QSize>
#include <QString>
#include <QWidget>

#include <functional>

class QLabel;
class QLayout;

/**
 * Lets a frame grow with the window that it is in: text, buttons, fields, pictures and the space
 * between them, all alike.
 *
 * The forms and style sheets are drawn for the handheld, a window of 800 x 424 pixels; there and in
 * all smaller windows the scale is 1, and nothing is touched. It rises with the window in steps of
 * a twentieth, up to 1.6 at 1920 x 1080, and always by less than the window does, so that a larger
 * window has more room, too, and what fits the handheld fits everywhere.
 *
 * Every frame, bar and page makes one as its child, once its form and its style sheet are there and
 * before it is shown. It knows what the form says at scale 1, and gives each widget its share of
 * it: the lengths of style sheets, the margins and spacings of layouts, the smallest and largest
 * sizes, and the sizes of icons. What a frame measures or paints by itself it hands to apply().
 */
class RoomScale : public QObject
{
    Q_OBJECT

public:
    /**
     * Of @p frame, whose content takes @p largest at most, its margins included, at scale 1: in a
     * larger frame it stays in the middle.
     */
    explicit RoomScale(QWidget *frame,
                       const QSize &largest = QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX));

    /** The scale of what is in a window of this size: 1 to 1.6. */
    static qreal forWindow(const QSize &window);
    /** The scale of what is in the window of @p widget. */
    static qreal of(const QWidget *widget);
    /**
     * The style sheet with every length of it, in px or pt, taken times @p scale, and with pictures
     * that are as large.
     */
    static QString styleSheet(const QString &sheet, qreal scale);

    /** Gives something of the frame the size that it has at a scale. */
    using Measure = std::function<void(qreal scale)>;
    /** Calls @p measure now and whenever the window has come to another scale. */
    void apply(const Measure &measure);
    /**
     * Shows the picture at @p path in @p label, @p height pixels high at scale 1, as sharp as the
     * screen can show it.
     */
    void setPicture(QLabel *label, const QString &path, int height);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    // What is measured may go before the frame does, and its measure with it.
    struct Step
    {
        QPointer<QObject> measured;
        Measure measure;
    };

    void measure(QWidget *widget);
    void measure(QLayout *layout);
    void add(QObject *measured, const Measure &measure);
    void run(const Step &step) const;
    void follow();
    void placeColumn();

    QWidget *m_frame;
    QPointer<QWidget> m_window;
    const QSize m_largest;
    QMargins m_margins; // of the frame's layout at scale 1
    QList<Step> m_steps;
    QHash<QLabel *, Step> m_pictures;
    qreal m_scale = 1;
};
