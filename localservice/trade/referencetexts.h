// SPDX-License-Identifier: MIT

#pragma once

#include <QByteArray>

/** The terms of service, as a page of HTML in ASCII. */
QByteArray serviceTerms();
/** A header line, then "code,name" a line, the names in their alphabetical order. */
QByteArray countryList();
