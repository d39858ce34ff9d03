// Where an item lies on one bus, for the mouse on the monitors. A plain value, any thread.
#pragma once
#include <QRectF>
#include <QString>

namespace korvia {

struct PlacedItem {
  QString key;
  /// PVMObject or PGMObject.
  int bus = 0;
  /// In pixels of the render picture.
  QRectF content;
  /// Its centre, in fractions of the picture.
  double x = 0;
  double y = 0;
  /// A crawl passes on its line: it is moved up and down only.
  bool isCrawl = false;
  /// Grows with the order of being shown on the bus.
  quint64 turn = 0;
};

}  // namespace korvia
