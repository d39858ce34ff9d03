// The two pictures that transitions are shown with, and the two symbols for what no transition draws. All of
// them are drawn by recipe, the letters too, so that they look the same with any fonts. Needs a
// QGuiApplication; main thread.
#pragma once
#include <QImage>

namespace korvia {

/// The outgoing picture: a warm evening with a large A. Size in pixels; opaque.
QImage drawSceneA(QSize size);
/// The incoming picture: a cold night with a large B.
QImage drawSceneB(QSize size);

/// A strip of film, cut between A and B.
QImage drawCut(QSize size);
/// A die over a picture that fills the size.
QImage drawDie(const QImage& background);

}  // namespace korvia
