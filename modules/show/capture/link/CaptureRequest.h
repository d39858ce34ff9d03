// What the capture program is to show. It travels to the program as the first message, because an address or
// a title on a command line could be read by every user of the machine. A plain value, any thread.
#pragma once
#include <QByteArray>
#include <QString>
#include <optional>

namespace korvia {

enum class CaptureKind { Page, Window, Screen };

struct CaptureRequest {
  CaptureKind kind = CaptureKind::Screen;
  /// Pictures a second, as a fraction.
  qint64 rateNumerator = 25;
  qint64 rateDenominator = 1;
  /// Of a page: its address and the size in which it is drawn, in pixels.
  QString address;
  int width = 1280;
  int height = 720;
  /// Of a window: its number in the form "0x1a00004", its title and its class.
  QString windowId;
  QString windowTitle;
  QString windowProgram;
  /// Of a screen: 0 is the primary one.
  int screenIndex = 0;
  /// The program ends with its child processes when together they use more memory.
  qint64 mostMemoryBytes = 512LL * 1024 * 1024;

  QByteArray toBytes() const;
  /// Nothing for bytes that are no request or one with numbers out of range.
  static std::optional<CaptureRequest> fromBytes(const QByteArray& bytes);

  /// The name of the kind, the only argument of the program: "page", "window" or "screen".
  static QString nameOf(CaptureKind kind);
  static std::optional<CaptureKind> kindNamed(const QString& name);
};

/// Why a capture ends when its window is gone. The number of a window that was closed is given to another
/// one, so it may not be asked for again.
inline constexpr const char* kWindowWasClosed = "window was closed";
inline constexpr const char* kWindowIsNotOpen = "window is not open";

/// The longest side of a page, in pixels.
inline constexpr int kPageSideMax = 4096;

}  // namespace korvia
