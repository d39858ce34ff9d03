// The colour editor of the console: a field of hues and saturations, brightness, numbers, the hexadecimal
// text, an eyedropper and the colours that were used last. Console thread.
#pragma once
#include <QColor>
#include <QDialog>
#include <memory>

namespace Ui {
class QColEdit;
}

class QColEdit : public QDialog {
  Q_OBJECT

 public:
  explicit QColEdit(QWidget* parent = nullptr, Qt::WindowFlags flags = Qt::WindowFlags());
  ~QColEdit() override;

  /// The colour that is edited, with its alpha.
  void setColor(const QColor& color);
  QColor color() const { return _color; }

  /// Keeps the colour among those used last.
  void accept() override;

 signals:
  void colorChanged(const QColor& color);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void change(const QColor& color);
  void showColor(const QColor& color);
  void loadRecent();
  void saveRecent() const;
  void startDropper();
  void stopDropper();

  std::unique_ptr<Ui::QColEdit> _ui;
  QColor _color = Qt::black;
  /// The eyedropper waits for a click anywhere on the screen.
  bool _isDropping = false;
};
