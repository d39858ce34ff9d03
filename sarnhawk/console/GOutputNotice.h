// One line about an output, shown in the title strip of a group box, where it covers no picture and moves no
// control. Console thread.
#pragma once
#include <QPushButton>

class QGroupBox;

class GOutputNotice : public QPushButton {
  Q_OBJECT

 public:
  /// Hidden at first. It follows the size of the box, which owns it.
  explicit GOutputNotice(QGroupBox* box);

  /// Shows the line, cut at its end where the box is too narrow, with `details` as tool tip.
  void present(const QString& line, const QString& details);

 protected:
  bool eventFilter(QObject* box, QEvent* event) override;

 private:
  void place();

  QGroupBox* _box;
  QString _line;
};
