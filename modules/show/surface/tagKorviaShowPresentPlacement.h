// Reports that an item was dragged on a monitor. A plain value, usable from any thread.
#pragma once
#include <QMetaType>
#include <QString>

enum KorviaShowPresentKind : qint32 { PresentKindSubtitle = 1, PresentKindLogo = 2, PresentKindOverlay = 3 };

/// `x` and `y` are the centre of the item, in fractions of the picture like its size.
struct tagKorviaShowPresentPlacement {
  /// A KorviaShowPresentKind.
  qint32 kind = 0;
  /// The item's identifier.
  QString key;
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;

  friend bool operator==(const tagKorviaShowPresentPlacement&,
                         const tagKorviaShowPresentPlacement&) = default;
};

Q_DECLARE_METATYPE(tagKorviaShowPresentPlacement)
