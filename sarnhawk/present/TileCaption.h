// The caption of a thumbnail tile, which has one line or two by the height of the tile. Console thread.
#pragma once
#include <QLabel>

class TileCaption : public QLabel {
  Q_OBJECT

 public:
  explicit TileCaption(QWidget* parent);

  /// The text in at most `lineCount` lines of `width` pixels. Lines break at spaces and inside words such as
  /// "RandomBars" before a capital; a number behind a dash stays with its dash. A last line that is
  /// too long loses its middle, so that a number at its end stays readable.
  static QStringList linesOf(const QString& text, const QFontMetrics& metrics, int width, int lineCount);

  /// Takes the height of two lines, or of one line when two would take more than a third of the tile.
  void fitTile(int tileHeight);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  int _lineCount = 1;
};
