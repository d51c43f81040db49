// SPDX-License-Identifier: MIT

#include "dialoganswers.h"

#include "waituntil.h"

#include <QApplication>
#include <QEvent>
#include <QFileDialog>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <utility>

namespace {

// The first of the dialog's filters that lets the file through.
QString filterFor(const QFileDialog &dialog, const QString &path)
{
    const QString suffix = QLatin1String("*.") + QFileInfo(path).suffix();
    const QStringList filters = dialog.nameFilters();
    for (const QString &filter : filters) {
        if (filter.contains(suffix, Qt::CaseInsensitive))
            return filter;
    }
    return {};
}

} // namespace

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
        m_boxes.append({box->windowTitle(), box->text() + box->detailedText()});
        if (!box->isVisible())
            return; // answered by what came before the answer
        QAbstractButton *button = box->defaultButton();
        if (!button && !box->buttons().isEmpty())
            button = box->buttons().constFirst();
        if (!button) {
            box->close();
            return;
        }
        const QPointer<QMessageBox> open(box);
        QTest::mouseClick(button, Qt::LeftButton);
        // Where the click that opened the box was at the same place, this one counts as the second
        // half of a double tap, which the program drops.
        if (open && open->isVisible())
            QTest::mouseClick(button, Qt::LeftButton);
        return;
    }

    auto *files = qobject_cast<QFileDialog *>(dialog);
    if (!files)
        return;
    ++m_fileDialogs;
    m_lastFolder = files->directory().absolutePath();
    if (!files->isVisible())
        return; // answered by what came before the answer
    const QString path = m_files.isEmpty() ? QString() : m_files.takeFirst();
    if (path.isEmpty()) {
        QTest::keyClick(files, Qt::Key_Escape);
        return;
    }
    files->selectNameFilter(filterFor(*files, path));
    // The name that is being typed would have the last word.
    if (auto *rows = files->findChild<QWidget *>(QStringLiteral("listView")))
        rows->setFocus();
    // The dialog reads the folder by and by.
    const bool selected = waitUntil([files, path] {
        files->selectFile(path);
        return files->selectedFiles() == QStringList{path};
    });
    if (!selected)
        qWarning("The file dialog does not show %s", qPrintable(path));
    // Its button follows the line that is typed into, with completions in between; what matters
    // here is what the dialog hands on.
    static_cast<QDialog *>(files)->done(QDialog::Accepted);
}
