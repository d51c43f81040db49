// SPDX-License-Identifier: MIT

#include "member.h"

#include "waituntil.h"

#include <QFile>
#include <QImage>
#include <QTabWidget>
#include <QTableView>

namespace {

// Far above what waits between two sockets.
constexpr qint64 clipSize = 8LL * 1024 * 1024;

QString text(const char *latin1)
{
    return QLatin1String(latin1);
}

} // namespace

Member::Member(RootWindow *window)
    : m_window(window)
{
}

bool Member::comes(const char *name) const
{
    return waitUntil([&] { return m_window->find(name) && m_window->find(name)->isEnabled(); });
}

bool Member::stay()
{
    return true;
}

bool Member::start()
{
    m_window->start();
    return true;
}

bool Member::toLogin()
{
    return m_window->click("loginButton") && m_window->type("lineUsername", text("m1"))
        && m_window->type("linePassword", text("secret"));
}

bool Member::openAccountForm()
{
    return m_window->click("createAccountButton");
}

bool Member::toAccountForm()
{
    const auto fill = [this](const char *line, const char *value) {
        return m_window->type(line, text(value));
    };
    if (!openAccountForm() || !fill("lineUsername", "m1") || !fill("linePassword", "secret")
        || !fill("lineEmailaddress", "m1@example.org") || !fill("lineAgain", "m1@example.org"))
        return false;
    m_window->find<QTabWidget>("tabWidget")->setCurrentIndex(1);
    return comes("checkTerms") && m_window->click("checkTerms");
}

bool Member::toSettings()
{
    return m_window->click("buttonSettings") && comes("pushButtonMyAccount");
}

bool Member::toMyAccount()
{
    return toSettings() && m_window->click("pushButtonMyAccount") && comes("checkBoxEmail")
        && m_window->click("checkBoxEmail") && m_window->type("lineEmail", text("m2@example.org"));
}

bool Member::toAlerts()
{
    return toSettings() && m_window->click("pushButtonNotifications") && comes("checkBoxOnBid")
        && m_window->click("checkBoxOnBid");
}

bool Member::openList()
{
    return m_window->click("buttonMyKavlor");
}

bool Member::toList()
{
    return openList() && comes("myAuctionsTable");
}

bool Member::clickCell(const char *name, int row)
{
    auto *table = m_window->find<QTableView>(name);
    const QModelIndex cell = table->model()->index(row, 1);
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, table->visualRect(cell).center());
    return true;
}

bool Member::toPrices()
{
    return toList() && clickCell("myAuctionsTable", 0) && comes("reservedPrice")
        && m_window->type("reservedPrice", text("45"));
}

bool Member::toWizard()
{
    return m_window->click("buttonUpload") && comes("photoClicker");
}

QString Member::mediaPath() const
{
    return m_folder.filePath(m_hasClip ? text("clip.mp4") : text("photo.png"));
}

bool Member::makeMedia() const
{
    if (m_hasClip) {
        QFile clip(mediaPath());
        return clip.open(QIODevice::WriteOnly) && clip.resize(clipSize);
    }
    QImage image(40, 30, QImage::Format_RGB32);
    image.fill(QColor(90, 150, 210));
    return image.save(mediaPath());
}

bool Member::toDescription()
{
    if (!makeMedia())
        return false;
    m_window->dialogs.chooseFile(mediaPath());
    return toWizard() && m_window->click("photoClicker") && comes("doneButton")
        && m_window->type("lineCaption", text("Lake"));
}

bool Member::toCategories()
{
    return toDescription() && m_window->click("doneButton") && comes("categoriesTable");
}

bool Member::toAuctionPrices()
{
    return toCategories() && clickCell("categoriesTable", 0) && comes("finalizeButton");
}

bool Member::toSummary()
{
    return toAuctionPrices() && m_window->click("finalizeButton") && comes("createAuctionButton");
}

bool Member::toSummaryOfClip()
{
    m_hasClip = true;
    return toSummary();
}

bool Member::toSuccess()
{
    return toSummary() && placeAuction() && comes("buttonOk");
}

bool Member::logIn()
{
    return m_window->click("loginButton");
}

bool Member::submit()
{
    return m_window->click("submitButton");
}

bool Member::done()
{
    return m_window->click("pushButtonDone");
}

bool Member::changePrices()
{
    return m_window->click("done");
}

bool Member::placeAuction()
{
    return m_window->click("createAuctionButton");
}

bool Member::isAtFirstScreen() const
{
    return m_window->find("buttonUpload") || m_window->find("createAccountButton");
}

bool Member::goToFirstScreen()
{
    return waitUntil([this] {
        if (isAtFirstScreen())
            return true;
        for (const char *button : {"backNavigationButton", "cancelNavigationButton"}) {
            if (m_window->click(button))
                break;
        }
        return false;
    });
}
