#pragma once

#include "onboarding/MailServerSettings.h"

#include <QList>
#include <QString>

// One message as the mail server filed it, decoded by Python's standard mail parser.
struct ReceivedMail
{
    QString envelopeRecipient;
    QString fromName;
    QString fromAddress;
    QString toName;
    QString toAddress;
    QString subject;
    QString messageId;
    QString contentType;
    QString charset;
    QByteArray body; // after the transfer encoding is undone
    bool bDated = false;
    int defects = 0; // what the parser found wrong with the message and its headers
    int longestLine = 0; // characters of the longest line as received, line break not counted
};

// The mail server that the test fixture started (tests/fixtures/smtp.sh), if any.
struct SmtpServer
{
    int port = 0;
    QString maildir;
    QString refusedAddress;
    QString user;
    QString password;
    QString python;
    QString script;

    static SmtpServer fromFixture();
    bool isAvailable() const { return port > 0; }

    // Plain SMTP to the fixture without a login, from "postmaster@sable.example".
    sable::MailServerSettings settings() const;

    // The messages whose envelope recipient is `address`, in no particular order.
    QList<ReceivedMail> receivedBy(const QString& address) const;
};

// A port on 127.0.0.1 on which nothing listens.
int closedLocalPort();

// An address nobody else in the test run uses.
QString uniqueAddress(const QString& local);
