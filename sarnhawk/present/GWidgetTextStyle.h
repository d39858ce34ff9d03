// Editor of the look of a text: presets, font, fill, shadow and outline. Embedded in another editor it has
// all rows; without a parent it is a popup without the rows of the font. Each change goes to the sink.
// Console thread.
#pragma once
#include <QPointer>
#include <QWidget>
#include <memory>

#include "present/IGListWidgetItemEventSink.h"
#include "tagKorviaShowTextStyle.h"

class IGWidgetTextStyleSink;
class IKorviaSarnhawkPriv;
class QColEdit;
class QPushButton;

namespace Ui {
class GWidgetTextStyle;
}

class GWidgetTextStyle : public QWidget, public IGListWidgetItemEventSink {
  Q_OBJECT

 public:
  /// The console interface and the sink must outlive the editor.
  GWidgetTextStyle(IKorviaSarnhawkPriv* priv, IGWidgetTextStyleSink* sink, QWidget* parent);
  ~GWidgetTextStyle() override;

  /// Loads the style of an object, which only its owner uses. The sink is called only when another texture
  /// becomes current, and before the sliders have their new values.
  void setObjectParam(int objectId, const tagKorviaShowTextStyle& style);
  int objectId() const { return _objectId; }
  /// The style as it was loaded or sent last.
  const tagKorviaShowTextStyle& style() const { return _style; }

  void onListWidgetItemClicked(QListWidget* listWidget, GListWidgetItem* item, qint32 id) override;

 public slots:
  void onEditTextChanged_textStyleUi();
  void onClicked_textStyleUi();
  void onCurrentIndexChanged_textStyleUi();
  void onSliderReleased_textStyleUi();
  void onClicked_prevFontNamePushButton();
  void onClicked_nextFontNamePushButton();
  void onClicked_subFontSizePushButton();
  void onClicked_addFontSizePushButton();

 private:
  using Color = quint32 tagKorviaShowTextStyle::*;

  void fillLists();
  void connectControls();
  void connectColor(QPushButton* button, Color color);
  void editColor(QPushButton* button, Color color);
  /// Makes the item with the texture of the style current. Its signals are not blocked.
  void selectTexture();
  void markPreset();
  void stepFontSize(int step);
  /// The one routine that moves the form into the style and sends it.
  void collectAndNotify();
  void showSliders();
  void showLabels();

  std::unique_ptr<Ui::GWidgetTextStyle> _ui;
  IKorviaSarnhawkPriv* _priv;
  IGWidgetTextStyleSink* _sink;
  int _objectId = 0;
  tagKorviaShowTextStyle _style;
  /// Ends with a separator.
  QString _textureFolder;
  QList<GListWidgetItem*> _presetTiles;
  QPointer<QColEdit> _colorEditor;
};
