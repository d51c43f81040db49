// SPDX-License-Identifier: MIT

#pragma once

class QWidget;

/**
 * Takes a frame off the screen that has asked for the next one, or that whoever made it is through
 * with. It is deaf and invisible at once, as are its requests, and deleted from the event loop: it
 * may be its own button that asked.
 */
void leaveFrame(QWidget *frame);
