// Draws a sheet that shows what changes over time: rows of a name, a note and pictures from 0 to 100 %. Needs
// a QGuiApplication with fonts; main thread.
#pragma once
#include <QImage>
#include <QString>
#include <functional>
#include <vector>

namespace korvia {

struct MomentRow {
  QString name;
  /// Stands smaller under the name.
  QString note;
  /// The picture at a position of 0 to 1, in the size of the sheet's pictures.
  std::function<QImage(double position)> picture;
};

/// The rows with the pictures at 0, 25, 50, 75 and 100 %, spread over blocks beside each other.
QImage drawMomentSheet(const std::vector<MomentRow>& rows, int blocks, QSize picture);

}  // namespace korvia
