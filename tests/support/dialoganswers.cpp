#include "dialoganswers.h"

#include <QApplication>
#include <QCompleter>
#include <QDialogButtonBox>
#include <QEvent>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <utility>

DialogAnswers::DialogAnswers(QObject *parent)
    : QObject(parent)
{
    qApp->installEventFilter(this);
}

DialogAnswers::~DialogAnswers() = default;

void DialogAnswers::chooseFile(const QString &path)
{
    m_files.append(path);
}

void DialogAnswers::beforeNextAnswer(const std::function<void()> &action)
{
    m_before = action;
}

QList<DialogAnswers::Box> DialogAnswers::boxes() const
{
    return m_boxes;
}

int DialogAnswers::fileDialogCount() const
{
    return m_fileDialogs;
}

QString DialogAnswers::lastFolder() const
{
    return m_lastFolder;
}

bool DialogAnswers::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Show
        && (qobject_cast<QMessageBox *>(watched) || qobject_cast<QFileDialog *>(watched))) {
        // Answered from the dialog's own event loop, once it is really there.
        QMetaObject::invokeMethod(
            this,
            [this, dialog = QPointer<QObject>(watched)] {
                if (const auto before = std::exchange(m_before, nullptr))
                    before();
                answer(dialog);
            },
            Qt::QueuedConnection);
    }
    return QObject::eventFilter(watched, event);
}

void DialogAnswers::answer(QObject *dialog)
{
    if (auto *box = qobject_cast<QMessageBox *>(dialog)) {
        m_boxes.append({box->windowTitle(), box->text()});
        QAbstractButton *button = box->defaultButton();
        if (!button && !box->buttons().isEmpty())
            button = box->buttons().constFirst();
        if (button)
            QTest::mouseClick(button, Qt::LeftButton);
        else
            box->close();
        return;
    }

    auto *files = qobject_cast<QFileDialog *>(dialog);
    if (!files)
        return;
    ++m_fileDialogs;
    m_lastFolder = files->directory().absolutePath();
    const QString path = m_files.isEmpty() ? QString() : m_files.takeFirst();
    if (path.isEmpty()) {
        QTest::keyClick(files, Qt::Key_Escape);
        return;
    }
    auto *name = files->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
    name->setCompleter(nullptr); // its popup would take the keys
    // Without the focus the dialog would write the name of a file that it finds over the path.
    files->activateWindow();
    QTest::mouseClick(name, Qt::LeftButton);
    if (!QTest::qWaitFor([name] { return name->hasFocus(); }))
        qWarning("The file dialog did not get the focus");
    name->clear();
    QTest::keyClicks(name, path);
    QTest::keyClick(name, Qt::Key_Return);
}
