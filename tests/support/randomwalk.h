// SPDX-License-Identifier: MIT

#pragma once

#include "moodyservice.h"
#include "rootwindow.h"

#include <QHash>
#include <QObject>
#include <QStringList>

#include <functional>
#include <random>

class QAbstractScrollArea;
class QTabBar;
class QTableView;

/**
 * One member who does anything at all: clicks, keys, drags and closed windows over all screens,
 * with a service that answers when and as it likes.
 *
 * What is done follows from the seed and from what is on the screen; nothing happens by itself,
 * since each reply is a step of the walk as well. It is drawn to the controls on the way to some
 * operation.
 */
class RandomWalk : public QObject
{
    Q_OBJECT

public:
    /** @p folder holds the files of makeFiles(). */
    RandomWalk(quint32 seed, QString folder);
    ~RandomWalk() override;

    /** Puts into @p folder what a member may choose there; false when it cannot be written. */
    static bool makeFiles(const QString &folder);

    /** Walks, and goes home. What went wrong; empty when nothing did. */
    QString run();

    int actionCount() const;
    /** What was done, in words. */
    QStringList way() const;
    /** How many requests for @p operation there were. */
    int requestCount(const QByteArray &operation) const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Action
    {
        int weight;
        const char *name;
        void (RandomWalk::*act)();
    };

    int number(int below);
    bool chance(int oneIn);
    template <typename Item>
    Item one(const QList<Item> &items);
    void note(const QString &text);

    void start();
    void step();
    QList<Action> actions() const;
    bool isStarting() const;
    void perform(const Action &action);
    void settle();
    bool isSettled() const;
    void loseTime(int milliseconds);
    QString finish();
    QString complaint() const;

    QWidget *chosenControl();
    void tap(QWidget *widget, const QPoint &point);
    QPoint placeIn(QWidget *widget);
    void typeInto(QWidget *field, const QString &text);
    QString textFor(const QWidget *field);

    void tapControl();
    void tapAnywhere();
    void tapTwice();
    void pressKey();
    void typeSomething();
    void completeForm();
    void drag();
    void resize();
    void closeWindow();
    void answer();
    void breakConnections();
    void toggleService();
    void toggleNetwork();
    void losePatience();
    void openMedia();
    void duringDialog();
    void meanwhile();

    std::mt19937 m_random;
    const QString m_folder;
    QStringList m_goal; // the controls that it is drawn to
    std::unique_ptr<RootWindow> m_window;
    std::unique_ptr<MoodyService> m_service;
    QHash<QByteArray, int> m_confirmed; // how often the button of an operation was pressed
    int m_actions = 0;
    QStringList m_way;
    QString m_complaint;
    bool m_isDialogOpen = false;
    bool m_isActing = false;
    bool m_isOnline = true;
    bool m_isListening = true;
    bool m_isImpatient = false;
};
