// SPDX-License-Identifier: MIT

#pragma once

class PaintedCellDelegate;
class QTableView;

/**
 * Shows a table by @p delegate and lets a screen reader read it by what the delegate says of each
 * cell.
 *
 * The models of such tables answer with pictures only, in which the toolkit's own access to a
 * table finds no text. Neither the table nor the delegate changes owner.
 */
void showPaintedCells(QTableView *table, PaintedCellDelegate *delegate);
