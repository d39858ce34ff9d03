// An X server of its own for tests that use the program as an operator does: Xvfb on a free display, its
// picture, and a hand on its mouse. Without a window manager. Test thread.
#pragma once
#include <QImage>
#include <QProcess>
#include <QVector>
#include <optional>

namespace korvia::test {

class VirtualDisplay {
 public:
  VirtualDisplay() = default;
  VirtualDisplay(const VirtualDisplay&) = delete;
  VirtualDisplay& operator=(const VirtualDisplay&) = delete;
  ~VirtualDisplay();

  /// Starts the server, with these further arguments. False, after ten seconds at most, when there is none.
  bool start(const QSize& screen, const QStringList& arguments = {});
  /// What DISPLAY is to be, e.g. ":7".
  QString name() const { return name_; }

  /// What the screen shows in a window; null when there is no such window on it.
  QImage grabWindow(quint64 window) const;

  /// Positions in pixels of the screen.
  bool click(const QPoint& position, int button = 1) const;
  /// Presses at the first stop, moves over the others with 100 ms for each, releases at the last.
  bool drag(const QVector<QPoint>& stops) const;
  /// A click in the middle of a window.
  bool clickWindow(quint64 window, int button = 1) const;

  /// A window on the screen by its exact title, waited for; nothing when it does not come.
  std::optional<quint64> findWindow(const QString& title, int timeoutMs = 5000) const;
  /// Place on the screen; an empty rectangle when there is no such window.
  QRect geometryOf(quint64 window) const;

  /// What xdotool prints, or nothing when it fails.
  std::optional<QByteArray> xdotool(const QStringList& arguments) const;

 private:
  std::optional<QByteArray> run(const QString& program, const QStringList& arguments) const;

  QProcess server_;
  QString name_;
};

}  // namespace korvia::test
