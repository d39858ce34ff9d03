// The caption strip of a thumbnail tile: a text in a narrow place, over two lines where there is room for
// two. Console thread.
#pragma once
#include <QLabel>

class TileCaption : public QLabel {
  Q_OBJECT

 public:
  explicit TileCaption(QWidget* parent);

  /// The text in at most `lineCount` lines of `width` pixels. Lines break at spaces and inside words such as
  /// "RandomBars" before a capital; a number behind a dash stays with its dash. What does not fit loses its
  /// middle, so that a number at the end is still seen.
  static QStringList linesOf(const QString& text, const QFontMetrics& metrics, int width, int lineCount);

  /// Takes two lines of a tile of this height, one when two would leave too little for the thumbnail.
  void fitTile(int tileHeight);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  int _lineCount = 1;
};
