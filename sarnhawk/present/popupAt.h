// Places a popup at a side of the widget that opened it, and shows it. Console thread.
#pragma once

class QWidget;

/// Sides are Qt alignment values, seen from the top left corner of the anchor. Vertical: Qt::AlignBottom puts
/// the popup under the anchor, 0x84 centres it on the anchor's top edge, anything else puts it above.
/// Horizontal: Qt::AlignLeft puts it to the left, 0x84 centres it on the anchor's left edge, anything else
/// puts it to the right. The popup is kept within what is available of the screen that it was on, its bottom
/// right corner last, and shown.
void popupAt(QWidget* popup, const QWidget* anchor, int vertical, int horizontal);
