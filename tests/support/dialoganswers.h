// SPDX-License-Identifier: MIT

#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <functional>

/**
 * Answers the modal windows of the program as a member would, and notes what they said.
 *
 * While it lives, every message box that appears is recorded and its default button clicked with
 * the mouse; every file dialog gets the next path of chooseFile() selected and accepted, or is
 * cancelled when there is none.
 */
class DialogAnswers : public QObject
{
    Q_OBJECT

public:
    struct Box
    {
        QString title;
        QString text; ///< all of it, also what stands in the details
    };

    explicit DialogAnswers(QObject *parent = nullptr);
    ~DialogAnswers() override;

    /** The next file dialog gets @p path; an empty path cancels it. */
    void chooseFile(const QString &path);
    /** Does @p action once the next dialog is there, before it is answered; it may answer itself.
     */
    void beforeNextAnswer(const std::function<void()> &action);

    QList<Box> boxes() const;
    int fileDialogCount() const;
    /** The folder that the last file dialog opened with. */
    QString lastFolder() const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void answer(QObject *dialog);

    QList<Box> m_boxes;
    QStringList m_files;
    std::function<void()> m_before;
    int m_fileDialogs = 0;
    QString m_lastFolder;
};
