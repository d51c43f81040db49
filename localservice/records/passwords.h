// SPDX-License-Identifier: MIT

#pragma once

#include "result.h"

#include <QByteArray>
#include <QString>

// Secrets, all made and checked by libsodium. prepareSecrets() comes first; false = no randomness.

bool prepareSecrets();

/** The argon2id hash to keep in place of a password; fails when memory is short. */
Result<QByteArray> hashPassword(const QString &password);
/** Takes as long for an empty @p hash as for a real one, and says no. */
Result<bool> isPassword(const QByteArray &hash, const QString &password);

/** 32 hexadecimal digits that nobody can guess. */
QByteArray randomName();
/** What is kept of a one-time secret, so that the data folder does not hold it. */
QByteArray fingerprint(const QByteArray &secret);
/** The seal of @p text under a key that this run of the program made for itself. */
QByteArray seal(const QByteArray &text);
/** Compares in a time that tells nothing. */
bool isSeal(const QByteArray &text, const QByteArray &candidate);
