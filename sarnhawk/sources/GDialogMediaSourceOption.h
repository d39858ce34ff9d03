// The options of a source: what a film does at its end and when it goes on air, and who decodes a stream.
// Console thread.
#pragma once
#include <QDialog>
#include <memory>

class IGDialogMediaSourceOptionSink;
struct tagKorviaShowEngineInfo;
struct tagKorviaShowSourceInfo;

namespace Ui {
class GDialogMediaSourceOption;
}

class GDialogMediaSourceOption : public QDialog {
  Q_OBJECT

 public:
  /// Writes to `info` on OK. `info` and `sink` are not owned and must outlive the dialog.
  GDialogMediaSourceOption(const tagKorviaShowEngineInfo& engineInfo, tagKorviaShowSourceInfo* info,
                           IGDialogMediaSourceOptionSink* sink, QWidget* parent);
  ~GDialogMediaSourceOption() override;

  /// The names of the decoders, in the order of their numbers.
  static QStringList decoders();

 public slots:
  void onClicked_okPushButton();
  void onClicked_cancelPushButton();
  void onClicked_clearHistoryPushButton();

 private:
  std::unique_ptr<Ui::GDialogMediaSourceOption> _ui;
  tagKorviaShowSourceInfo* _info;
  IGDialogMediaSourceOptionSink* _sink;
};
