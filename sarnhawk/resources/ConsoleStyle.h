// Base style of the whole console, below its style sheet. GUI thread only.
#pragma once
#include <QProxyStyle>

class ConsoleStyle : public QProxyStyle {
  Q_OBJECT

 public:
  ConsoleStyle();

  /// Disabled icons are faded: on the dark desk the base style's grey could be taken for one in use.
  QPixmap generatedIconPixmap(QIcon::Mode mode, const QPixmap& pixmap,
                              const QStyleOption* option) const override;
};
