// SPDX-License-Identifier: MIT

#pragma once

#include <QImage>
#include <QString>

/**
 * Where and by how much two pictures differ; empty when they are alike.
 *
 * Alike are pictures of one size whose pixels differ by at most @p tolerance of 255 in each
 * channel, colours weighted by their opacity: processors round differently, and what nobody can see
 * is no difference. Otherwise the text tells both sizes, or how many pixels differ, the largest
 * difference and the place of it.
 */
QString pictureDifference(const QImage &picture, const QImage &expected, int tolerance = 2);
