// A label of one line in the row of an item, which scrolls a text that does not fit. Console thread.
#pragma once
#include <QImage>
#include <QStaticText>
#include <QTimer>
#include <QWidget>

class ScrollText : public QWidget {
  Q_OBJECT

 public:
  explicit ScrollText(QWidget* parent = nullptr);

  bool isScrolling() const { return _timer.isActive(); }
  /// Pixels by which the text has moved. A scroll begins below 0, which is a pause.
  int position() const { return _position; }

 public slots:
  QString text() const { return _text; }
  void setText(QString text);
  /// What stands between the end of a scrolling text and its next beginning. Six blanks by default.
  QString separator() const { return _separator; }
  void setSeparator(QString separator);
  void timer_timeout();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  bool fits() const;
  void updateText();
  void makeFade();
  void paintScrolling(QPainter& painter, int y);

  QString _text;
  QString _line;  // the text without its line breaks
  QString _separator;
  QStaticText _staticText;
  QSize _wholeSize;
  int _leftMargin;
  int _position = 0;
  QTimer _timer;
  QImage _picture;
  QImage _fade;
};
