// The paint pad: lets the operator draw over the frozen program picture. Console thread, except
// lockBackground and unlockBackground, which the engine thread calls.
#pragma once
#include <QImage>
#include <QSize>
#include <QString>

class IGWhitePadSink;
class QWidget;

class GWhitePadObject {
 public:
  GWhitePadObject();
  ~GWhitePadObject();
  GWhitePadObject(const GWhitePadObject&) = delete;
  GWhitePadObject& operator=(const GWhitePadObject&) = delete;

  /// Readies the pad. sink must outlive it or the call of destory(). channelCount is the number of channels
  /// that the pad offers, undoDepth the number of steps that can be taken back. False for a null sink, for
  /// counts below 1, and when the pad is already there.
  bool create(IGWhitePadSink* sink, const QString& title, int channelCount, QWidget* parent, int undoDepth);

  /// Sets the size of the drawing in pixels and starts the pad. False before create and for a size that is
  /// empty or larger than 8192 x 8192.
  bool start(const QSize& size);

  /// Shows or hides the pad. keepDrawing leaves the drawing on the program when the pad is hidden. A pad that
  /// cannot be shown tells the sink at once that it is not valid. Nothing happens before start.
  void setVisible(bool visible, bool keepDrawing = false);

  /// The picture that the engine is to fill with the program, owned by the engine until unlockBackground;
  /// null when no background is wanted, which is always so until the pad has a drawing surface.
  QImage lockBackground();
  /// Takes the filled picture back; a null picture is ignored.
  void unlockBackground(const QImage& image);
  /// Brings the newest background on the screen; called once a frame tick.
  void updateBackground();

  /// Ends the pad; nothing of the sink is called afterwards. Harmless when there is no pad.
  void destory();

 private:
  IGWhitePadSink* _sink = nullptr;
  QString _title;
  bool _started = false;
};
