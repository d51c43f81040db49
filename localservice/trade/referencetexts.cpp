// SPDX-License-Identifier: MIT

#include "referencetexts.h"

#include <QLocale>
#include <QMap>

QByteArray serviceTerms()
{
    static const char *const sections[][2] = {
        {"What this agreement is",
         "These terms are an agreement between you and the auction service. By creating an account "
         "you say that you have read them and that you accept them. If you do not accept them, "
         "please do not create an account."},
        {"Your account",
         "You must be at least 18 years old to hold an account. You choose a user name and a "
         "password and keep the password to yourself; what is done with your account counts as "
         "done by you. Tell us at once when you believe that someone else knows your password."},
        {"What you may offer",
         "You may offer photographs and video clips that you took yourself, or that you have the "
         "written right to sell. You may not offer anything that breaks the law, that shows a "
         "person in a private place without that person's consent, or that you have already sold "
         "to somebody for exclusive use."},
        {"Auctions and prices",
         "An auction runs for seven days from its creation. All prices are whole US dollars. The "
         "start price is the lowest first bid. With a reserve price, which must be above the start "
         "price, the auction sells only to a bid that reaches it. With a buy-it-now price, the "
         "first buyer who pays it ends the auction. You may change the reserve price and the "
         "buy-it-now price until the auction has ended."},
        {"When your media is sold",
         "The winning bidder gets the right to publish your photograph or clip. You keep the right "
         "to be named as its author. Payment goes to the payment address in your account; the "
         "service takes no share of it."},
        {"Alerts",
         "With your consent the service writes to your e-mail address when somebody bids on, looks "
         "at or asks about your auction, and when your auction ends. You can switch each of these "
         "alerts off at any time."},
        {"Your data",
         "We keep your account's fields and your uploads for as long as your account exists, and "
         "use them for nothing but the auctions. Your password is kept only in a form from which "
         "it cannot be read."},
        {"Ending this agreement",
         "You may close your account whenever no auction of yours is running. We may close an "
         "account that breaks these terms. Auctions that have ended stay valid."},
    };

    // The client shows a text of 10 points in 22, and other sizes as they are: so the headings are
    // larger than that.
    const QByteArray text = "<p style='font-size:10.0pt'>";
    QByteArray terms = "<html><head><title>Terms of Service</title></head><body>\n"
                       "<h2 style='font-size:28.0pt'>Terms of Service</h2>\n";
    terms += text + "Please read these terms before you create an account.</p>\n";
    int number = 0;
    for (const auto &section : sections) {
        terms += "<p style='font-size:24.0pt'><b>" + QByteArray::number(++number) + ". "
            + section[0] + "</b></p>\n" + text + section[1] + "</p>\n";
    }
    terms += text + "<i>Thank you for selling with us.</i></p>\n</body></html>\n";
    return terms;
}

QByteArray countryList()
{
    QMap<QString, QString> codes;
    for (int i = QLocale::AnyTerritory + 1; i <= QLocale::LastTerritory; ++i) {
        const auto territory = QLocale::Territory(i);
        const QString code = QLocale::territoryToCode(territory);
        const bool isCountry = code.size() == 2 && code.at(0).isLetter();
        if (isCountry)
            codes.insert(QLocale::territoryToString(territory).remove(QLatin1Char(',')), code);
    }
    QByteArray list = "CountryID,Name\n";
    for (auto country = codes.cbegin(); country != codes.cend(); ++country)
        list += country.value().toUtf8() + ',' + country.key().toUtf8() + '\n';
    return list;
}
