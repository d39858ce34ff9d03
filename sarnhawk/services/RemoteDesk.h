// The desk as the viewers of the web server see and use it: tells them tally, takes, states of the outputs
// and levels, and runs their commands as if the operator had given them here. Console thread.
#pragma once
#include <QElapsedTimer>
#include <QJsonObject>
#include <QObject>
#include <atomic>
#include <optional>

#include "WebCommand.h"
#include "console/ConsolePage.h"
#include "services/RemotePictures.h"

class IKorviaSarnhawkPriv;
class OutputSwitches;
class StatisticsFetch;
class StripArea;
class TakePanel;

class RemoteDesk : public QObject, public ConsolePage {
 public:
  struct Parts {
    IKorviaSarnhawkPriv* priv;
    const StripArea* strips;
    const TakePanel* takes;
    OutputSwitches* outputs;
    const StatisticsFetch* statistics;
  };

  /// Commands that wait for the console; more are refused.
  static constexpr int kWaitingMax = 16;

  /// None of the parts is owned; all must outlive the object.
  explicit RemoteDesk(const Parts& parts) : _parts(parts) {}
  ~RemoteDesk() override;

  /// The engine has opened: commands are taken and pictures are made from now on.
  void open();
  /// Before the engine is closed. Commands that still wait are dropped.
  void close();
  /// As the engine reports it, 0 to 1; 1 ends the take.
  void setSwitchPosition(float position);
  /// A take of the channel was posted.
  void setTaken(int channelId) { _taken = channelId; }
  /// The engine has put a channel on preview.
  void onPreviewSelected(int channelId);

  /// Tells what has changed, when there are viewers.
  void onFrameTick() override;

 private:
  korvia::WebVerdict accept(const korvia::WebCommand& command);
  void run(const korvia::WebCommand& command);
  /// The channel on preview, also when the engine has not answered to the selection yet.
  int previewChannel() const;
  void cutTo(int channelId);
  void select(int channelId);

  void tellTake();
  QJsonObject tally() const;
  QJsonObject outputStates() const;
  QJsonObject outputState(int slot) const;
  QJsonObject levels() const;

  const Parts _parts;
  RemotePictures _pictures;
  bool _isOpen = false;
  std::atomic<int> _waiting{0};
  std::optional<int> _selecting;  // posted by select(), until the engine answers
  QElapsedTimer _sinceSelecting;
  quint64 _ticks = 0;
  float _switchPosition = 0;
  std::optional<int> _taken;  // while its take may run
  int _toldProgram = 0;       // id of the channel; 0 before the first
};
