// SPDX-License-Identifier: MIT

#pragma once

#include <QMessageBox>
#include <QTextLayout>

class QLabel;

/**
 * What the program tells or asks in a window of its own; no other place makes a message box.
 *
 * The text is plain text, whatever it holds, and all boxes look alike. They grow with the
 * window that tells or asks as its frames do (RoomScale), and a box fits that window with its
 * buttons in reach, 800 x 424 pixels in the smallest: a text that is too long for that is shown as
 * far as there is room, and its rest behind "Show Details...".
 *
 * Both operations wait in an event loop until the member has answered. The frame that tells or
 * asks may be deleted meanwhile; they say so, and their caller must not touch it any more then.
 */
class MessageBox : public QMessageBox
{
    Q_OBJECT

public:
    enum Place {
        OverFrame, ///< a child of the frame, gone when the frame goes
        ByItself   ///< a window without a parent, which outlives the frame
    };

    /** Tells something, with one button to go on. False when @p frame has gone meanwhile. */
    static bool tell(QWidget *frame, Icon icon, const QString &title, const QString &text,
                     Place place = OverFrame);
    /**
     * Asks for a yes or a no; a closed box is a no. True when the member has said yes and
     * @p frame is still there.
     */
    static bool ask(QWidget *frame, const QString &title, const QString &question,
                    Place place = OverFrame);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    MessageBox(QWidget *parent, qreal scale, Icon icon, const QString &title, const QString &text,
               StandardButtons buttons, StandardButton preset);

    static StandardButton show(QWidget *frame, Place place, Icon icon, const QString &title,
                               const QString &text, StandardButtons buttons, StandardButton preset);
    int scaled(int length) const;
    void removeButtonIcons();
    void enlargeIcon();
    void fitText(const QString &text);
    QSize roomForText() const;
    int detailsHeight();
    qsizetype layOut(const QString &text, const QSize &room);
    void paintText() const;

    QLabel *m_label;     // the toolkit's own, painted by this class
    const qreal m_scale; // of the window that tells or asks
    QTextLayout m_layout;
    int m_lines = 0; // of the layout that are shown
};
