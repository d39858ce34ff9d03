// Picture of a whole window as the operator sees it. Console thread only.
#pragma once
#include <QImage>

class QWidget;

namespace korvia {

/// On X11 the picture is read back from the screen, because floating buttons and monitors are native windows
/// that the widget does not paint. On other platforms the widget paints it. Runs the event loop for a moment.
QImage pictureOf(QWidget* window);

}  // namespace korvia
