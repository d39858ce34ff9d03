// The page of the output dialog: stream, recording, SDI, NDI and virtual camera. Shows a record and stores
// the form in it. Console thread.
#pragma once
#include <QList>
#include <QWidget>
#include <functional>
#include <memory>

#include "tagGDecklinkCardInfo.h"

class IKorviaSarnhawkPriv;
struct tagKorviaShowOutputParam;

namespace Ui {
class GTabOutputPGM;
}

class GTabOutputPGM : public QWidget {
  Q_OBJECT

 public:
  /// Lists the cards that can play out; called on a thread of its own, since it may block for seconds.
  using CardLister = std::function<QList<tagGDecklinkCardInfo>()>;

  /// Neither `priv` nor `param` is owned; both must outlive the page.
  GTabOutputPGM(IKorviaSarnhawkPriv* priv, tagKorviaShowOutputParam* param, QWidget* parent = nullptr,
                CardLister listCards = systemCards);
  ~GTabOutputPGM() override;

  /// Stores the form in the record, and the sizes of recording and stream in the console's. Nothing that was
  /// typed is refused or corrected.
  void save();

  /// The cards of this machine.
  static QList<tagGDecklinkCardInfo> systemCards();

 signals:
  /// The list of cards is filled.
  void cardsListed();

 public slots:
  void onClicked_selectType();
  void onValueChanged_netCBRBitrateHorizontalSlider(int value);
  void onTextChanged_netCBRBitrateLineEdit(const QString& text);
  void onValueChanged_netAudioBitrateHorizontalSlider(int value);
  void onValueChanged_recordCBRBitrateHorizontalSlider(int value);
  void onTextChanged_recordCBRBitrateLineEdit(const QString& text);
  void onValueChanged_recordAudioBitrateHorizontalSlider(int value);
  void onCurrentIndexChanged_sdiOutputDevListComboBox(int index);

 private:
  void fillLists();
  void connectControls();
  void load();
  void loadEncoder(int slot);
  void saveEncoder(int slot);
  void saveSize(int slot);
  void showCards(const QList<tagGDecklinkCardInfo>& cards);

  std::unique_ptr<Ui::GTabOutputPGM> _ui;
  IKorviaSarnhawkPriv* _priv;
  tagKorviaShowOutputParam* _param;
  QList<tagGDecklinkCardInfo> _cards;
  bool _areCardsListed = false;
};
