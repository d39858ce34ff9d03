// Passes mouse moves over the frame to it, also those over its children. Console thread only.
#pragma once
#include <QObject>

class MainFrame;

class HoverMoveFilter : public QObject {
  Q_OBJECT

 public:
  /// `frame` is not owned and must outlive the filter.
  explicit HoverMoveFilter(MainFrame* frame, QObject* parent = nullptr);

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  MainFrame* _frame;
};
