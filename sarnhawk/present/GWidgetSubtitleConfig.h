// Popup editor of a subtitle: its text and place, its style, its animations. Each edit goes to the sink at
// once; there is nothing to apply or to undo. Console thread.
#pragma once
#include <QPointer>
#include <QWidget>
#include <memory>

#include "console/tagKorviaSubtitleParam.h"
#include "present/IGListWidgetItemEventSink.h"
#include "present/IGWidgetTextStyleSink.h"

class GWidgetTextStyle;
class IGWidgetSubtitleConfigSink;
class IKorviaSarnhawkPriv;
class QFileDialog;
class QLabel;
class QSlider;

namespace Ui {
class GWidgetSubtitleConfig;
}

class GWidgetSubtitleConfig : public QWidget, public IGListWidgetItemEventSink, public IGWidgetTextStyleSink {
  Q_OBJECT

 public:
  /// The console interface and the sink must outlive the popup.
  GWidgetSubtitleConfig(IKorviaSarnhawkPriv* priv, IGWidgetSubtitleConfigSink* sink);
  ~GWidgetSubtitleConfig() override;

  /// Loads a subtitle. The sink is called only when the style makes another texture current, and before the
  /// style's sliders have their new values.
  void setObjectParam(int objectId, const tagKorviaSubtitleParam& param);
  int objectId() const { return _objectId; }

  void onListWidgetItemClicked(QListWidget* listWidget, GListWidgetItem* item, qint32 id) override;
  void onTextStyleChanged(const tagKorviaShowTextStyle& style) override;

 public slots:
  void onEditTextChanged_subtitleUi();
  void onSliderReleased_subtitleUi();
  void onValueChanged_subtitleUi(int value);
  void onClicked_subtitleUi();
  void onClicked_openTXTPushButton();
  void onClicked_subScrollTimePushButton();
  void onClicked_addScrollTimePushButton();

 private:
  /// A slider for a field that is a fraction of the picture.
  struct Fraction {
    QSlider* slider;
    QLabel* label;
    double tagKorviaShowTextInfo::*field;
  };
  static constexpr int kFractions = 5;

  void connectControls();
  void showAlignment();
  /// The one routine that moves the form into the record and sends it.
  void collectAndNotify();
  void collectAlignment();
  void showLabels();
  void markTiles(const QList<GListWidgetItem*>& tiles, qint32 effect);
  void readText(const QString& path);
  void stepScrollTime(int stepMs);

  std::unique_ptr<Ui::GWidgetSubtitleConfig> _ui;
  IGWidgetSubtitleConfigSink* _sink;
  GWidgetTextStyle* _textStyle;
  std::array<Fraction, kFractions> _fractions;
  int _objectId = 0;
  tagKorviaSubtitleParam _param;
  QList<GListWidgetItem*> _enterTiles;
  QList<GListWidgetItem*> _exitTiles;
  QPointer<QFileDialog> _fileDialog;
};
