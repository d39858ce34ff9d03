// The options of a source: what they offer, and what OK writes.
#include <QComboBox>
#include <QPushButton>
#include <QtTest>

#include "sources/GDialogMediaSourceOption.h"
#include "sources/IGDialogMediaSourceOptionSink.h"
#include "tagKorviaShowEngineInfo.h"
#include "tagKorviaShowSourceInfo.h"

namespace {

class Sink final : public IGDialogMediaSourceOptionSink {
 public:
  void onClicked_clearHistoryPushButton() override { ++cleared; }
  int cleared = 0;
};

/// The options over a source, with three media channels and one stage.
class Options {
 public:
  explicit Options(const tagKorviaShowSourceInfo& source = {}) : info(source) {
    engineInfo.mediaChannelCount = 3;
    engineInfo.stageChannelCount = 1;
    dialog = std::make_unique<GDialogMediaSourceOption>(engineInfo, &info, &sink, nullptr);
  }
  QComboBox* combo(const char* name) const { return dialog->findChild<QComboBox*>(QLatin1String(name)); }

  tagKorviaShowEngineInfo engineInfo;
  tagKorviaShowSourceInfo info;
  Sink sink;
  std::unique_ptr<GDialogMediaSourceOption> dialog;
};

}  // namespace

class DialogMediaSourceOptionTest : public QObject {
  Q_OBJECT

 private slots:
  void offersChannelsByTheirNumbers() {
    const Options options;
    QCOMPARE(options.dialog->windowTitle(), QString("Source Options"));
    const QComboBox* channels = options.combo("_playbackEndSwitchChannelComboBox");
    QCOMPARE(channels->count(), 4);
    QCOMPARE(channels->itemText(2), QString("Media - 2"));
    QCOMPARE(channels->itemData(2).toInt(), 18);
    QCOMPARE(channels->itemText(3), QString("Stage - 0"));
    QCOMPARE(channels->itemData(3).toInt(), 256);
  }

  void showsTheRecord() {
    tagKorviaShowSourceInfo info;
    info.movieEndAction = 2;
    info.movieSwitchChannel = 256;
    info.moviePGMAction = 2;
    info.krmpDecoder = 3;
    const Options options(info);
    QCOMPARE(options.combo("_moviePlaybackModeComboBox")->currentText(), QString("Stop And Switch"));
    QCOMPARE(options.combo("_playbackEndSwitchChannelComboBox")->currentText(), QString("Stage - 0"));
    QCOMPARE(options.combo("_moviePGMInOutActionComboBox")->currentText(), QString("Pause/Resume"));
    QCOMPARE(options.combo("_krmpHWDecodeCheckBox")->currentText(), QString("DXVA2CopyBack"));
  }

  void okMirrorsToListAndIncome() {
    tagKorviaShowSourceInfo info;
    info.listPGMAction = 1;
    Options options(info);
    options.combo("_moviePlaybackModeComboBox")->setCurrentIndex(2);
    options.combo("_playbackEndSwitchChannelComboBox")->setCurrentIndex(1);
    options.combo("_moviePGMInOutActionComboBox")->setCurrentIndex(2);
    options.combo("_krmpHWDecodeCheckBox")->setCurrentIndex(4);
    QCOMPARE(options.info.movieEndAction, 1);
    options.dialog->onClicked_okPushButton();
    QCOMPARE(options.info.movieEndAction, 2);
    QCOMPARE(options.info.listEndAction, 2);
    QCOMPARE(options.info.movieSwitchChannel, 17);
    QCOMPARE(options.info.listSwitchChannel, 17);
    QCOMPARE(options.info.moviePGMAction, 2);
    QCOMPARE(options.info.listPGMAction, 1);
    QCOMPARE(options.info.krmpDecoder, quint8{4});
    QCOMPARE(options.info.incomeDecoder, quint8{4});
    QCOMPARE(options.dialog->result(), int{QDialog::Accepted});
  }

  void cancelWritesNothing() {
    Options options;
    options.combo("_moviePlaybackModeComboBox")->setCurrentIndex(0);
    options.dialog->onClicked_cancelPushButton();
    QVERIFY(options.info == tagKorviaShowSourceInfo());
  }

  void clearHistoryAsksTheSink() {
    const Options options;
    options.dialog->findChild<QPushButton*>("_clearHistoryPushButton")->click();
    QCOMPARE(options.sink.cleared, 1);
  }
};

QTEST_MAIN(DialogMediaSourceOptionTest)
#include "tst_dialog_media_source_option.moc"
