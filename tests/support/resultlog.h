// SPDX-License-Identifier: MIT

#pragma once

#include "httptolvex.h"

#include <QList>
#include <QObject>

/** Notes the results of a request object in their order, also of one that is deleted meanwhile. */
class ResultLog : public QObject
{
    Q_OBJECT

public:
    struct Result
    {
        bool isImage = false;
        QString response;
        QPixmap image;
        QString error;
    };

    ResultLog() = default;
    explicit ResultLog(CHttpTolvex *http);

    void follow(CHttpTolvex *http);

    qsizetype size() const;
    /** The result of that number, from 0; an empty one when there are fewer. */
    Result at(qsizetype index) const;
    /** "text" or "image", the response and the error, for comparing at one glance. */
    QString textAt(qsizetype index) const;

    /** That line for a text result. */
    static QString text(const QString &response, const QString &error);

private:
    QList<Result> m_results;
};

/** How many files under the folder for temporary files this process holds open or left there. */
int temporaryFileCount();
