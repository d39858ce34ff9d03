// Picture of a whole window as the operator sees it. GUI thread only.
#pragma once
#include <QImage>

class QWidget;

namespace korvia {

/// On X11 read back from the screen, since floating buttons and monitors are windows of their own that the
/// widget's own painting does not know; elsewhere painted by the widget. Runs the event loop for a moment.
QImage pictureOf(QWidget* window);

}  // namespace korvia
