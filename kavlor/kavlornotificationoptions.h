// SPDX-License-Identifier: MIT

#pragma once

#include <QObject>

/**
 * Which e-mail alerts a member wants.
 *
 * The root window owns the one live record; the settings menu owns a copy that the alert frame
 * edits. A copy or an assignment takes over the flags only, never parent or connections.
 */
class CKavlorNotificationOptions : public QObject
{
    Q_OBJECT

public:
    struct Flags
    {
        bool onBid = false;
        bool onAuctionEnd = false;
        bool onView = false;
        bool onBuyerQuestion = false;
    };

    explicit CKavlorNotificationOptions(QObject *parent = nullptr);
    CKavlorNotificationOptions(QObject *parent, const Flags &flags, bool initialized);
    CKavlorNotificationOptions(const CKavlorNotificationOptions &other);
    CKavlorNotificationOptions &operator=(const CKavlorNotificationOptions &other);

    Flags flags() const;
    /** Stores the choices; the record counts as initialized from then on. */
    void setFlags(const Flags &flags);
    /** True once the flags came from the service or from the member. */
    bool isInitialized() const;

    /** The flags as "0" or "1", separated by commas, in the order of Flags; always four items. */
    QString toText() const;
    /**
     * Takes over the body of a GetNotificationOptions reply, whose second line holds the flags
     * separated by commas. A body of one line changes nothing; flags that are missing keep their
     * value and leave the record uninitialized.
     */
    void parse(const QString &reply);

signals:
    /** A reply held all four flags. */
    void gotInitialized();

private:
    bool m_initialized = false;
    quint8 m_bits = 0;
};
