// Draws the two pictures that transitions are shown with, and the symbols for a cut and for a random effect.
// The letters are drawn as strokes, so that the pictures do not depend on fonts. Needs a QGuiApplication;
// main thread.
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
