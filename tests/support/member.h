// SPDX-License-Identifier: MIT

#pragma once

#include "rootwindow.h"

#include <QString>
#include <QTemporaryDir>

/**
 * A member who knows the ways through a RootWindow: from the first screen to any other, and back.
 *
 * Every operation waits for what it needs, and returns false when that does not come. On its way to
 * a screen a member does all but the last: what sends the request of that screen is an operation of
 * its own. The window's service must answer every request.
 */
class Member
{
public:
    /** A step of a way. */
    using Step = bool (Member::*)();

    explicit Member(RootWindow *window);

    bool stay();
    bool start();
    bool toLogin();
    bool openAccountForm();
    bool toAccountForm();
    bool toSettings();
    bool toMyAccount();
    bool toAlerts();
    bool openList();
    bool toList();
    bool toPrices();
    bool toWizard();
    bool toDescription();
    bool toCategories();
    bool toAuctionPrices();
    bool toSummary();
    /** With a clip of some megabytes, whose upload takes a while. */
    bool toSummaryOfClip();
    bool toSuccess();

    bool logIn();
    bool submit();
    bool done();
    bool changePrices();
    bool placeAuction();

    /** Waits for what bears @p name to be there and enabled. */
    bool comes(const char *name) const;
    bool isAtFirstScreen() const;
    /** As a member finds a way out of any screen: by the buttons of the bar. */
    bool goToFirstScreen();

private:
    bool clickCell(const char *table, int row);
    bool makeMedia() const;
    QString mediaPath() const;

    RootWindow *m_window;
    QTemporaryDir m_folder; // of the photo or clip
    bool m_hasClip = false;
};
