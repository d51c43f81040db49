// SPDX-License-Identifier: MIT

#include "framestage.h"

#include "enterkey.h"
#include "httptolvex.h"
#include "theme.h"
#include "waituntil.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSignalSpy>
#include <QTest>

namespace {

constexpr QSize smallestArea(800, 344);
constexpr int markWidth = 18;

bool isPart(const QWidget *widget)
{
    return qobject_cast<const QAbstractButton *>(widget) || qobject_cast<const QLineEdit *>(widget)
        || qobject_cast<const QPlainTextEdit *>(widget) || qobject_cast<const QLabel *>(widget);
}

bool isOwn(const QWidget *widget)
{
    return !widget->objectName().isEmpty()
        && !widget->objectName().startsWith(QLatin1String("qt_"));
}

} // namespace

FrameStage::FrameStage()
    : settings(folder.filePath(QStringLiteral("kavlor.conf")), QSettings::IniFormat)
{
    m_area.setStyleSheet(themeStyleSheet());
    m_area.resize(smallestArea);
    new EnterKey(&m_area);
}

QWidget *FrameStage::area()
{
    return &m_area;
}

bool FrameStage::show(QFrame *frame)
{
    m_frame = frame;
    m_area.show();
    m_frame->show();
    m_frame->setGeometry(m_area.rect());
    m_area.activateWindow();
    return QTest::qWaitForWindowActive(&m_area);
}

void FrameStage::resize(const QSize &size)
{
    m_area.resize(size);
    m_frame->setGeometry(m_area.rect());
    QCoreApplication::processEvents();
}

bool FrameStage::settle()
{
    service.expect("GetCountryList", "countries");
    CHttpTolvex request;
    QSignalSpy finished(&request, qOverload<QString, QString>(&CHttpTolvex::requestIsFinished));
    request.getCountryList();
    return !finished.isEmpty() || finished.wait(patience);
}

CKavlorUser::Fields memberFields()
{
    CKavlorUser::Fields fields = CKavlorUser::defaultFields();
    fields[CKavlorUser::Username] = QStringLiteral("m1");
    fields[CKavlorUser::Password] = QStringLiteral("secret");
    fields[CKavlorUser::EmailAddress] = QStringLiteral("m1@example.org");
    fields[CKavlorUser::PaypalAddress] = QStringLiteral("m1@pay");
    return fields;
}

void clickBox(QWidget *box)
{
    QTest::mouseClick(box, Qt::LeftButton, Qt::NoModifier, QPoint(markWidth, box->height() / 2));
}

void typeInto(QWidget *line, const QString &text)
{
    QTest::mouseClick(line, Qt::LeftButton);
    QTest::keyClick(line, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(line, Qt::Key_Delete);
    for (const QChar letter : text)
        QTest::sendKeyEvent(QTest::Click, line, Qt::Key_unknown, QString(letter), Qt::NoModifier);
}

QByteArrayList tabOrder(QWidget *first)
{
    constexpr int enough = 50;
    QByteArrayList names;
    first->setFocus(Qt::TabFocusReason);
    QWidget *now = first;
    do {
        names.append(now->objectName().toUtf8());
        QTest::keyClick(now, Qt::Key_Tab);
        now = QApplication::focusWidget();
    } while (now && now != first && names.size() < enough);
    return names;
}

QByteArrayList cutOff(const QWidget *frame)
{
    QByteArrayList names;
    const QList<QWidget *> widgets = frame->findChildren<QWidget *>();
    for (const QWidget *widget : widgets) {
        if (!widget->isVisible() || !isPart(widget) || !isOwn(widget))
            continue;
        const QRect place(widget->mapTo(frame, QPoint(0, 0)), widget->size());
        const bool isCut = !frame->rect().contains(place)
            || !widget->parentWidget()->rect().contains(widget->geometry())
            || widget->width() < widget->minimumSizeHint().width()
            || widget->height() < widget->minimumSizeHint().height();
        if (isCut)
            names.append(widget->objectName().toUtf8());
    }
    return names;
}

QByteArrayList nameless(const QWidget *frame)
{
    QByteArrayList names;
    const QList<QWidget *> widgets = frame->findChildren<QWidget *>();
    for (const QWidget *widget : widgets) {
        if (isPart(widget) && isOwn(widget) && !qobject_cast<const QLabel *>(widget)
            && widget->accessibleName().isEmpty()) {
            names.append(widget->objectName().toUtf8());
        }
    }
    return names;
}
