// "Open Media": the dialog in which the operator says what a channel shows. It edits a private copy of the
// channel's slot; the caller reads the copy when the dialog is accepted. Shown without a parent and modal for
// itself alone, so the desk stays usable. Console thread.
#pragma once
#include <QDialog>
#include <QList>
#include <functional>
#include <memory>
#include <vector>

#include "sources/HistoryList.h"
#include "sources/IGDialogMediaSourceOptionSink.h"
#include "sources/TextPage.h"
#include "tagGDecklinkCardInfo.h"
#include "tagKorviaShowChannelSlot.h"
#include "tagKorviaShowEngineInfo.h"

class GDialogScreenIndicator;
class GWidgetImagePaint;
class PdfPreview;
class QAbstractButton;
class QButtonGroup;
class QComboBox;
class QPushButton;

namespace Ui {
class GDialogMediaSource;
}

class GDialogMediaSource : public QDialog, public IGDialogMediaSourceOptionSink {
  Q_OBJECT

 public:
  GDialogMediaSource(const tagKorviaShowEngineInfo& engineInfo, const tagKorviaShowChannelSlot& slot,
                     QWidget* parent = nullptr);
  ~GDialogMediaSource() override;

  /// The working copy. It is the result once the dialog is accepted.
  const tagKorviaShowChannelSlot& slot() const { return _slot; }

  /// Takes files in as if the operator had picked them: they are appended to the list that is on the screen,
  /// or choose their own page and replace what it had.
  void openFiles(const QStringList& paths);

 signals:
  /// The lists of devices and cards are filled.
  void devicesListed();

 public slots:
  void onClicked_okPushButton();
  void onClicked_cancelPushButton();
  void onClicked_optionsPushButton();
  void onClicked_clearHistoryPushButton() override;
  void onClicked_selectType();
  void onEditTextChanged_videoSizeComboBox(const QString& text);
  void onCurrentChanged_stackedWidget(int page);

  void onClicked_openMoviePushButton();
  void onItemPressed_movieHistoryListWidget(QListWidgetItem* item);
  void onClicked_addMovieListItemPushButton();
  void onClicked_delMovieListItemPushButton();
  void onClicked_clearMovieListItemPushButton();
  void onItemPressed_urlHistoryListWidget(QListWidgetItem* item);
  void onItemPressed_krmpHistoryListWidget(QListWidgetItem* item);
  void onTextChanged_incomePathLineEdit(const QString& text);
  void onClicked_openImagePushButton();
  void onItemPressed_imageHistoryListWidget(QListWidgetItem* item);
  void onClicked_addImageListItemPushButton();
  void onClicked_delImageListItemPushButton();
  void onClicked_clearImageListItemPushButton();
  void onClicked_videoDevPropertiesPushButton();
  void onClicked_audioDevPropertiesPushButton();
  void onCurrentIndexChanged_sdiInputDevListComboBox(int index);
  void onClicked_selectColorPushButton();
  void onClicked_selectDelayCachePathPushButton();
  void onClicked_openFlashPushButton();
  void onItemPressed_flashHistoryListWidget(QListWidgetItem* item);
  void onClicked_openWebPushButton();
  void onItemPressed_webHistoryListWidget(QListWidgetItem* item);
  void onClicked_openPDFPushButton();
  void onClicked_prevPDFPagePushButton();
  void onClicked_nextPDFPagePushButton();
  void onItemPressed_pdfHistoryListWidget(QListWidgetItem* item);
  void onTextChanged_pdfPathLineEdit(const QString& text);
  void onClicked_browsTextFilePushButton();
  void onTextChanged_textUI();
  void onEditTextChanged_textUI(const QString& text);
  void onClicked_textUI();
  void onCurrentIndexChanged_textUI(int index);
  void onClicked_textBeginColorPushButton();
  void onClicked_textEndColorPushButton();
  void onClicked_textOutlineColorPushButton();
  void onClicked_refreshHwndPushButton();
  void onCurrentIndexChanged_screenIndicatorComboBox(int index);
  void onClicked_screenIndicatorPushButton();

 protected:
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  struct History {
    HistoryList list;
    QListWidget* widget;
    void (GDialogMediaSource::*onPressed)(QListWidgetItem*);
    QString tagKorviaShowSourceInfo::*field;
    qint32 kind;
  };
  using ColorDone = std::function<void(const QColor&)>;
  using FilesDone = std::function<void(const QStringList&)>;

  // Life and kinds, GDialogMediaSource.cpp
  void setUpKinds();
  void setUpHistories();
  void setUpScreens();
  void setUpDropping();
  void connectControls();
  void connectTextControls();
  void setKind(qint32 kind);
  QSize typedSize() const;
  QSize outputSize() const;
  void setOutputSize(const QSize& size);
  void showSize(const QSize& size);
  void updateSize();
  void updateTextPreview();

  // Record and form, GDialogMediaSourceRecord.cpp
  void fillLists();
  void fillDevices();
  void showCards(const QList<tagGDecklinkCardInfo>& cards);
  void load();
  bool collect();
  bool collectPath(const QString& text, QString tagKorviaShowSourceInfo::*field);
  bool collectList(const QListWidget* list, QStringList tagKorviaShowSourceInfo::*field);
  bool collectDevice();
  bool collectDelay();
  bool collectWindow();
  void remember();

  // Reactions of the pages, GDialogMediaSourcePages.cpp
  void pickFiles(const QString& caption, const QString& filter, const QString& folder, bool isSingle,
                 const FilesDone& done);
  void pickColor(quint32 tagKorviaShowRenderTextParam::*color, QPushButton* button);
  void probeSize(const QString& path);
  void takePdfSize(const QSize& size);
  void appendFiles(QListWidget* list, const QStringList& paths);
  void askToClear(QListWidget* list, const QString& question);
  void readTextFile(const QString& path);

  std::unique_ptr<Ui::GDialogMediaSource> _ui;
  tagKorviaShowEngineInfo _engineInfo;
  tagKorviaShowChannelSlot _slot;
  QButtonGroup* _kinds;
  TextPage _textPage;
  /// In the order in which they are cleared.
  std::vector<History> _histories;
  QList<GDialogScreenIndicator*> _indicators;
  QList<tagGDecklinkCardInfo> _cards;
  bool _areDevicesListed = false;
  GWidgetImagePaint* _textPaint = nullptr;
  PdfPreview* _pdf = nullptr;
  QString _localAddress;
};
