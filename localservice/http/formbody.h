// SPDX-License-Identifier: MIT

#pragma once

#include "fields.h"

#include <QByteArray>

/**
 * The fields of a form's body: "name=value" pairs joined by "&", percent-encoded. Empty pairs are
 * passed over, so doubled ampersands do no harm; of a repeated field the last one stands. After a
 * hundred fields the rest is passed over.
 */
Fields fieldsOfForm(const QByteArray &body);
