// The audio controls of the desk: the buttons of the mix mode and the volume sliders of the two buses.
// Console thread.
#pragma once

class IKorviaSarnhawkPriv;
class QObject;

namespace Ui {
class KorviaSarnhawk;
}

class AudioMixerPanel {
 public:
  /// Both must outlive the panel.
  AudioMixerPanel(IKorviaSarnhawkPriv* priv, Ui::KorviaSarnhawk& ui) : _priv(priv), _ui(ui) {}

  /// Stores and posts the mode of the button. Any other object leaves the mode as it is and posts it again.
  void chooseMixMode(const QObject* button);
  /// Store and post a volume, 0 to 100 percent.
  void setProgramVolume(int percent);
  void setPreviewVolume(int percent);
  /// Between hold and release the operator has the slider.
  void holdProgramVolume() { _pgmVolumeHeld = true; }
  void releaseProgramVolume() { _pgmVolumeHeld = false; }
  void holdPreviewVolume() { _pvmVolumeHeld = true; }
  void releasePreviewVolume() { _pvmVolumeHeld = false; }

  /// Show what the engine reports, without posting it again. `objectId` is that of a bus, and other ids move
  /// nothing; volume 1.0 is 100 percent.
  void showMixMode(int mode);
  void showVolume(int objectId, float volume);

 private:
  void setVolume(int objectId, double& volume, int percent);

  IKorviaSarnhawkPriv* _priv;
  Ui::KorviaSarnhawk& _ui;
  bool _pgmVolumeHeld = false;
  bool _pvmVolumeHeld = false;
};
