// The page of the output settings: its controls, what they show of a record, and what is stored of them.
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QSlider>
#include <QSpinBox>
#include <QStackedWidget>
#include <QTabWidget>
#include <QtTest>
#include <memory>

#include "PlainConsole.h"
#include "output/GTabOutputPGM.h"

namespace {

const QString kAnySize("640 X 360|1280 X 720|1920 X 1080|1920 X 1080");

/// A page over a record, with cards of the test's own.
class Page {
 public:
  tagKorviaShowOutputItem& net() { return param.items[OutputSlotStream]; }
  tagKorviaShowOutputItem& record() { return param.items[OutputSlotRecord]; }
  tagKorviaVideoFormat& format(int slot) {
    return console.config.engineInfo.outputFormat[static_cast<std::size_t>(slot)];
  }
  void setSize(int slot, int width, int height) {
    format(slot).width = width;
    format(slot).height = height;
  }
  QSize size(int slot) {
    const qint32 width = format(slot).width;
    const qint32 height = format(slot).height;
    return {width, height};
  }

  void open() {
    // The lister may still run when this page is gone.
    tab = std::make_unique<GTabOutputPGM>(&console, &param, nullptr, [cards = cards] { return cards; });
  }
  bool openWithCards() {
    open();
    return QSignalSpy(tab.get(), &GTabOutputPGM::cardsListed).wait(10'000);
  }

  template <class T>
  T* child(const QString& name) const {
    T* found = tab->findChild<T*>(name);
    if (!found)
      qFatal("no %s on the page", qPrintable(name));
    return found;
  }
  QComboBox* combo(const QString& name) const { return child<QComboBox>(name); }
  QLineEdit* edit(const QString& name) const { return child<QLineEdit>(name); }
  QSlider* slider(const QString& name) const { return child<QSlider>(name); }
  QSpinBox* spin(const QString& name) const { return child<QSpinBox>(name); }
  QCheckBox* check(const QString& name) const { return child<QCheckBox>(name); }
  QString text(const QString& name) const { return child<QLabel>(name)->text(); }
  QStringList entries(const QString& name) const {
    QStringList texts;
    for (int index = 0; index < combo(name)->count(); ++index)
      texts.append(combo(name)->itemText(index));
    return texts;
  }
  QStringList captions() const {
    QStringList texts;
    for (const QLabel* label : tab->findChildren<QLabel*>())
      texts.append(label->text());
    return texts;
  }
  QString shownPage() const {
    return child<QStackedWidget>("_outputTypeStackedWidget")->currentWidget()->objectName();
  }

  const QList<tagGDecklinkCardInfo> twoCards{{0, "Mini Monitor", {"1080p25", "1080i50"}},
                                             {1, "Duo (1)", {"720p50", "2160p25"}}};

  PlainConsole console;
  tagKorviaShowOutputParam param;
  QList<tagGDecklinkCardInfo> cards;
  std::unique_ptr<GTabOutputPGM> tab;
};

}  // namespace

class TabOutputPGMTest : public QObject {
  Q_OBJECT

 private slots:
  void startsOnTheNetPage() {
    Page page;
    page.open();
    QCOMPARE(page.shownPage(), QString("_netstreamPage"));
    QVERIFY(page.child<QPushButton>("_netStreamTypePushButton")->isChecked());
    const auto* tabs = page.child<QTabWidget>("_netOutputTabWidget");
    QCOMPARE(tabs->currentIndex(), 0);
    QStringList titles;
    for (int index = 0; index < tabs->count(); ++index)
      titles.append(tabs->tabText(index));
    QCOMPARE(titles, (QStringList{"RTMP Push - 0", "RTMP Push - 1", "RTMP Local", "HTTP", "UDP", "HLS"}));
  }

  void typeButtonShowsItsPage_data() {
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");
    QTest::newRow("record") << "_recordTypePushButton"
                            << "Record"
                            << "_recordPage";
    QTest::newRow("sdi") << "_sdiTypePushButton"
                         << "SDI"
                         << "_sdiPage";
    QTest::newRow("ndi") << "_ndiTypePushButton"
                         << "NDI"
                         << "_ndiPage";
    QTest::newRow("camera") << "_virtualCameraTypePushButton"
                            << "Virtual Camera"
                            << "_virtualCameraPage";
    QTest::newRow("net") << "_netStreamTypePushButton"
                         << "Net Stream"
                         << "_netstreamPage";
  }
  void typeButtonShowsItsPage() {
    QFETCH(QString, button);
    QFETCH(QString, text);
    QFETCH(QString, shown);
    Page page;
    page.open();
    auto* pushed = page.child<QPushButton>(button);
    QCOMPARE(pushed->text(), text);
    page.child<QPushButton>("_sdiTypePushButton")->click();
    pushed->click();
    QCOMPARE(page.shownPage(), shown);
    int checked = 0;
    for (const QPushButton* other : page.tab->findChildren<QPushButton*>())
      checked += other->isChecked() ? 1 : 0;
    QCOMPARE(checked, 1);
    QVERIFY(pushed->isChecked());
  }

  void textsAreSpelledAsEver() {
    Page page;
    page.open();
    const QStringList captions = page.captions();
    for (const char* text : {"Video Size:",
                             "Accelerator:",
                             "Video Bitrate:",
                             "kpbs",
                             "Audio Bitrate:",
                             "Cut Duration:",
                             "Port:",
                             "TTL:",
                             "Bind Nic:",
                             "Segment Length:",
                             "Segment Number:",
                             "Protocol Version:",
                             "Decklink Card:",
                             "Output Format:",
                             "Output Signal:",
                             "Path:",
                             "Name Format:",
                             "TimeFormat:",
                             "Escapsulation:",
                             "Push URL:",
                             "Address:",
                             "Temp:",
                             "Name:"})
      QVERIFY2(captions.contains(text), text);
    QCOMPARE(page.check("_hlsSpliteAnywhereCheckBox")->text(), QString("Splite Anywhere"));
    QCOMPARE(page.check("_enableRTMPOutputCheckBox_3")->text(), QString("Enable"));
  }

  void listsHaveTheirEntries() {
    Page page;
    page.open();
    const QStringList accelerators{"Software CPU", "Integrated GPU", "Independent GPU"};
    QCOMPARE(page.entries("_netEncodeAcceleratorComboBox"), accelerators);
    QCOMPARE(page.entries("_recordEncodeAcceleratorComboBox"), accelerators);
    QCOMPARE(page.entries("_recordEscapsulationComboBox"), (QStringList{"ts", "flv", "mp4", "mkv", "mov"}));
    QCOMPARE(page.entries("_httpEscapsulationComboBox"), (QStringList{"TS", "FLV"}));
    const QStringList versions{"Ver 3.0", "Ver 2.0", "Ver 1.0"};
    QCOMPARE(page.entries("__RTMPProtocolVerComboBox"), versions);
    QCOMPARE(page.entries("__RTMPProtocolVerComboBox_2"), versions);
    QCOMPARE(page.entries("_sdkSignalListComboBox"),
             (QStringList{"SVideo", "Composite", "Component", "OpticalSDI", "HDMI", "SDI"}));
    QVERIFY(page.entries("_udpBindAddrComboBox").isEmpty());
    for (const char* name : {"_udpBindAddrComboBox", "_sdkFormatListComboBox", "_sdkSignalListComboBox"})
      QVERIFY2(page.combo(name)->isEditable(), name);
    for (const char* name : {"_netVideoSizeComboBox", "_recordVideoSizeComboBox"})
      QVERIFY2(!page.combo(name)->isEditable(), name);
  }

  void rangesAndStepsAreGiven() {
    Page page;
    page.open();
    const struct {
      const char* name;
      int minimum;
      int maximum;
    } boxes[] = {{"_recordCutDurationSpinBox", 0, 7200}, {"_httpPortSpinBox", 1, 65535},
                 {"_udpPortSpinBox", 1, 65535},          {"_udpTTLSpinBox", 1, 255},
                 {"_hlsSegLengthSpinBox", 2, 64},        {"_hlsSegNumberSpinBox", 1, 64}};
    for (const auto& box : boxes) {
      QCOMPARE(page.spin(box.name)->minimum(), box.minimum);
      QCOMPARE(page.spin(box.name)->maximum(), box.maximum);
    }
    QCOMPARE(page.spin("_hlsSegLengthSpinBox")->suffix(), QString(" sec"));
    for (const QString& kind : {QString("net"), QString("record")}) {
      const auto* video = page.slider('_' + kind + "CBRBitrateHorizontalSlider");
      QCOMPARE(video->minimum(), 256);
      QCOMPARE(video->maximum(), 25600);
      QCOMPARE(video->singleStep(), 64);
      QCOMPARE(video->pageStep(), 512);
      const auto* audio = page.slider('_' + kind + "AudioBitrateHorizontalSlider");
      QCOMPARE(audio->minimum(), 32);
      QCOMPARE(audio->maximum(), 256);
      QCOMPARE(audio->pageStep(), 4);
    }
  }

  void freshRecordShowsItsDefaults() {
    Page page;
    page.open();
    QCOMPARE(page.edit("_recordPathLineEdit")->text(), QString("d:\\records\\vod\\1\\"));
    QCOMPARE(page.edit("_recordNameFormatLineEdit")->text(), QString("${PROGRAMNAME}_${TIME}"));
    QCOMPARE(page.edit("_recordTimeFormatLineEdit")->text(), QString("yy-MM-dd/hh_mm_ss"));
    QCOMPARE(page.spin("_recordCutDurationSpinBox")->value(), 3600);
    QCOMPARE(page.combo("_recordEscapsulationComboBox")->currentText(), QString("mp4"));
    QCOMPARE(page.spin("_httpPortSpinBox")->value(), 8080);
    QCOMPARE(page.edit("_httpPathLineEdit")->text(), QString("/live/0"));
    QCOMPARE(page.combo("_httpEscapsulationComboBox")->currentText(), QString("TS"));
    QCOMPARE(page.edit("_udpAddressLineEdit")->text(), QString("234.0.0.1"));
    QCOMPARE(page.spin("_udpPortSpinBox")->value(), 8000);
    QCOMPARE(page.spin("_udpTTLSpinBox")->value(), 1);
    QCOMPARE(page.combo("_udpBindAddrComboBox")->currentText(), QString());
    QCOMPARE(page.spin("_hlsSegLengthSpinBox")->value(), 10);
    QCOMPARE(page.spin("_hlsSegNumberSpinBox")->value(), 6);
    QVERIFY(page.check("_hlsSpliteAnywhereCheckBox")->isChecked());
    QCOMPARE(page.edit("_hlsLocalPathLineEdit")->text(), QString("d:\\records\\hls\\0\\"));
    QCOMPARE(page.edit("_hlsPathLineEdit")->text(), QString("/hls/0"));
    QCOMPARE(page.edit("_rtmpPushURLLineEdit")->text(), QString("rtmp://192.168.0.1/live/stream_0"));
    QCOMPARE(page.edit("_rtmpPushURLLineEdit_2")->text(), QString("rtmp://192.168.0.2/live/stream_0"));
    QCOMPARE(page.edit("_rtmpPushURLLineEdit_3")->text(), QString("/output_0"));
    QCOMPARE(page.combo("__RTMPProtocolVerComboBox")->currentText(), QString("Ver 1.0"));
    QCOMPARE(page.edit("_ndiNameLineEdit")->text(), QString("GNDIOutput-0"));
    QCOMPARE(page.combo("_sdkFormatListComboBox")->currentText(), QString("1080p25"));
    QCOMPARE(page.combo("_sdkSignalListComboBox")->currentText(), QString("SDI"));
    for (const QString& kind : {QString("net"), QString("record")}) {
      QCOMPARE(page.slider('_' + kind + "CBRBitrateHorizontalSlider")->value(), 4096);
      QCOMPARE(page.edit('_' + kind + "CBRBitrateLineEdit")->text(), QString("4096"));
      QCOMPARE(page.slider('_' + kind + "AudioBitrateHorizontalSlider")->value(), 128);
      QCOMPARE(page.text('_' + kind + "AudioBitrateLabel"), QString("128 kbps"));
      QCOMPARE(page.combo('_' + kind + "EncodeAcceleratorComboBox")->currentText(),
               QString("Independent GPU"));
    }
    for (const QCheckBox* box : page.tab->findChildren<QCheckBox*>())
      QCOMPARE(box->isChecked(), box->objectName() == "_hlsSpliteAnywhereCheckBox");
  }

  void savingWithoutAnEditChangesOnlyTheFlagOfTheRecording() {
    Page page;
    QVERIFY(page.openWithCards());
    tagKorviaShowOutputParam expected;
    expected.items[OutputSlotRecord].recordActive = 1;
    // There is no card.
    expected.items[OutputSlotStream].sdiDeviceIndex = -1;
    page.tab->save();
    QVERIFY(page.param == expected);
    QCOMPARE(page.size(OutputSlotStream), QSize(1920, 1080));
    QCOMPARE(page.size(OutputSlotRecord), QSize(1920, 1080));
  }

  void everyEditIsStoredInItsPlace() {
    Page page;
    page.cards = page.twoCards;
    QVERIFY(page.openWithCards());
    for (QCheckBox* box : page.tab->findChildren<QCheckBox*>())
      box->setChecked(!box->isChecked());
    for (QLineEdit* edit : page.tab->findChildren<QLineEdit*>()) {
      if (edit->objectName().endsWith("PathLineEdit") || edit->objectName().contains("rtmp") ||
          edit->objectName().contains("Format") || edit->objectName().startsWith("_ndi") ||
          edit->objectName().startsWith("_udp"))
        edit->setText(edit->objectName());
    }
    page.spin("_recordCutDurationSpinBox")->setValue(0);
    page.spin("_httpPortSpinBox")->setValue(65535);
    page.spin("_udpPortSpinBox")->setValue(1234);
    page.spin("_udpTTLSpinBox")->setValue(255);
    page.spin("_hlsSegLengthSpinBox")->setValue(4);
    page.spin("_hlsSegNumberSpinBox")->setValue(9);
    page.combo("_recordEscapsulationComboBox")->setCurrentText("mov");
    page.combo("_httpEscapsulationComboBox")->setCurrentText("FLV");
    page.combo("__RTMPProtocolVerComboBox")->setCurrentText("Ver 3.0");
    page.combo("__RTMPProtocolVerComboBox_2")->setCurrentText("Ver 2.0");
    page.combo("_udpBindAddrComboBox")->setEditText("eth0");
    page.combo("_sdiOutputDevListComboBox")->setCurrentIndex(1);
    page.combo("_sdkFormatListComboBox")->setEditText("2160p25");
    page.combo("_sdkSignalListComboBox")->setEditText("HDMI");
    page.combo("_netEncodeAcceleratorComboBox")->setCurrentText("Software CPU");
    page.combo("_recordEncodeAcceleratorComboBox")->setCurrentText("Integrated GPU");
    page.slider("_netCBRBitrateHorizontalSlider")->setValue(2560);
    page.slider("_recordCBRBitrateHorizontalSlider")->setValue(8192);
    page.slider("_netAudioBitrateHorizontalSlider")->setValue(96);
    page.slider("_recordAudioBitrateHorizontalSlider")->setValue(256);
    page.combo("_netVideoSizeComboBox")->setCurrentIndex(0);
    page.combo("_recordVideoSizeComboBox")->setCurrentIndex(1);
    page.tab->save();

    tagKorviaShowOutputParam expected;
    tagKorviaShowOutputItem& record = expected.items[OutputSlotRecord];
    record.recordActive = 1;
    record.recordPath = "_recordPathLineEdit";
    record.recordNameFormat = "_recordNameFormatLineEdit";
    record.recordTimeFormat = "_recordTimeFormatLineEdit";
    record.cutDuration = 0;
    record.recordEncapsulation = EncapsulationMov;
    tagKorviaShowOutputItem& net = expected.items[OutputSlotStream];
    net.httpEnable = net.udpEnable = net.hlsEnable = 1;
    net.rtmp0Enable = net.rtmp1Enable = net.rtmpLocalEnable = 1;
    net.virtualCameraEnable = net.sdiEnable = net.ndiEnable = 1;
    net.hlsSplitAnywhere = 0;
    net.httpPort = 65535;
    net.httpPath = "_httpPathLineEdit";
    net.httpEncapsulation = EncapsulationFlv;
    net.udpAddress = "_udpAddressLineEdit";
    net.udpPort = 1234;
    net.udpTtl = 255;
    net.udpBindInterface = "eth0";
    net.hlsSegmentLength = 4;
    net.hlsSegmentNumber = 9;
    net.hlsTemporaryFolder = "_hlsLocalPathLineEdit";
    net.hlsPath = "_hlsPathLineEdit";
    net.rtmp0Url = "_rtmpPushURLLineEdit";
    net.rtmp1Url = "_rtmpPushURLLineEdit_2";
    net.rtmpLocalPath = "_rtmpPushURLLineEdit_3";
    net.rtmp0ProtocolVersion = 0;
    net.rtmp1ProtocolVersion = 1;
    net.sdiDeviceIndex = 1;
    net.sdiFormat = "2160p25";
    net.sdiSignal = "HDMI";
    net.ndiName = "_ndiNameLineEdit";
    expected.encode[OutputSlotStream].accelerator = EncodeAcceleratorSoftware;
    expected.encode[OutputSlotStream].videoBitrate = 2560;
    expected.encode[OutputSlotStream].audioBitrate = 96;
    expected.encode[OutputSlotRecord].accelerator = EncodeAcceleratorIntegratedGpu;
    expected.encode[OutputSlotRecord].videoBitrate = 8192;
    expected.encode[OutputSlotRecord].audioBitrate = 256;
    QVERIFY(page.param.active == expected.active);
    QVERIFY(page.param.encode == expected.encode);
    QVERIFY(page.param.items[OutputSlotRecord] == record);
    QVERIFY(page.param.items[OutputSlotStream] == net);
    QVERIFY(page.param == expected);
    QCOMPARE(page.size(OutputSlotStream), QSize(640, 360));
    QCOMPARE(page.size(OutputSlotRecord), QSize(1280, 720));
    // What was stored is shown again.
    const tagKorviaShowOutputParam stored = page.param;
    QVERIFY(page.openWithCards());
    page.tab->save();
    QVERIFY(page.param == stored);
  }

  void encapsulationsHaveTheirValues_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("value");
    QTest::newRow("ts") << "ts" << 0;
    QTest::newRow("flv") << "flv" << 1;
    QTest::newRow("mp4") << "mp4" << 2;
    QTest::newRow("mkv") << "mkv" << 4;
    QTest::newRow("mov") << "mov" << 5;
  }
  void encapsulationsHaveTheirValues() {
    QFETCH(QString, text);
    QFETCH(int, value);
    Page page;
    page.record().recordEncapsulation = value;
    page.open();
    QCOMPARE(page.combo("_recordEscapsulationComboBox")->currentText(), text);
    page.record().recordEncapsulation = 77;
    page.tab->save();
    QCOMPARE(page.record().recordEncapsulation, value);
  }

  void unknownValueShowsTheFirstEntry() {
    Page page;
    page.record().recordEncapsulation = 3;
    page.net().httpEncapsulation = 9;
    page.net().rtmp0ProtocolVersion = -1;
    page.param.encode[OutputSlotRecord].accelerator = 17;
    page.open();
    QCOMPARE(page.combo("_recordEscapsulationComboBox")->currentText(), QString("ts"));
    QCOMPARE(page.combo("_httpEscapsulationComboBox")->currentText(), QString("TS"));
    QCOMPARE(page.combo("__RTMPProtocolVerComboBox")->currentText(), QString("Ver 3.0"));
    QCOMPARE(page.combo("_recordEncodeAcceleratorComboBox")->currentText(), QString("Software CPU"));
  }

  void storedSizeIsAppendedEvenWhenItIsListed() {
    Page page;
    page.setSize(OutputSlotStream, 1024, 576);
    page.open();
    QCOMPARE(page.entries("_recordVideoSizeComboBox").join('|'), kAnySize);
    QCOMPARE(page.combo("_recordVideoSizeComboBox")->currentIndex(), 3);
    QCOMPARE(page.entries("_netVideoSizeComboBox").constLast(), QString("1024 X 576"));
    QCOMPARE(page.combo("_netVideoSizeComboBox")->currentIndex(), 3);
  }

  void sizesAreCapped() {
    Page page;
    page.setSize(OutputSlotRecord, 9000, 100);
    page.setSize(OutputSlotStream, 8192, 8193);
    page.open();
    page.tab->save();
    QCOMPARE(page.size(OutputSlotRecord), QSize(8192, 100));
    QCOMPARE(page.size(OutputSlotStream), QSize(8192, 8192));
  }

  void bitrateSliderWritesTheText_data() { bothEncoders(); }
  void bitrateSliderWritesTheText() {
    QFETCH(QString, kind);
    Page page;
    page.open();
    page.slider('_' + kind + "CBRBitrateHorizontalSlider")->setValue(5000);
    QCOMPARE(page.edit('_' + kind + "CBRBitrateLineEdit")->text(), QString("5000"));
    page.slider('_' + kind + "AudioBitrateHorizontalSlider")->setValue(64);
    QCOMPARE(page.text('_' + kind + "AudioBitrateLabel"), QString("64 kbps"));
    // The other encoder's stay.
    const QString other = kind == "net" ? "_record" : "_net";
    QCOMPARE(page.edit(other + "CBRBitrateLineEdit")->text(), QString("4096"));
    QCOMPARE(page.text(other + "AudioBitrateLabel"), QString("128 kbps"));
  }

  void typedBitrateMovesTheSliderAndStaysAsTyped_data() {
    QTest::addColumn<QString>("typed");
    QTest::addColumn<int>("slider");
    QTest::addColumn<int>("stored");
    QTest::newRow("in the range") << "6000" << 6000 << 6000;
    QTest::newRow("zero") << "0" << 256 << 0;
    QTest::newRow("above the range") << "30000" << 25600 << 30000;
    QTest::newRow("no number") << "fast" << 256 << 0;
    QTest::newRow("empty") << "" << 256 << 0;
    QTest::newRow("negative") << "-5" << 256 << -5;
  }
  void typedBitrateMovesTheSliderAndStaysAsTyped() {
    QFETCH(QString, typed);
    QFETCH(int, slider);
    QFETCH(int, stored);
    Page page;
    page.open();
    for (const QString& kind : {QString("_net"), QString("_record")}) {
      page.edit(kind + "CBRBitrateLineEdit")->setText(typed);
      QCOMPARE(page.slider(kind + "CBRBitrateHorizontalSlider")->value(), slider);
      QCOMPARE(page.edit(kind + "CBRBitrateLineEdit")->text(), typed);
    }
    page.tab->save();
    QCOMPARE(page.param.encode[OutputSlotStream].videoBitrate, stored);
    QCOMPARE(page.param.encode[OutputSlotRecord].videoBitrate, stored);
    page.open();
    QCOMPARE(page.edit("_netCBRBitrateLineEdit")->text(), QString::number(stored));
    QCOMPARE(page.slider("_netCBRBitrateHorizontalSlider")->value(), slider);
  }

  void cardsAreListedWithoutFormatsForTheFirst() {
    Page page;
    page.cards = page.twoCards;
    page.net().sdiFormat = "1080i59.94";
    QVERIFY(page.openWithCards());
    QCOMPARE(page.entries("_sdiOutputDevListComboBox"), (QStringList{"Mini Monitor", "Duo (1)"}));
    QCOMPARE(page.combo("_sdiOutputDevListComboBox")->currentIndex(), 0);
    QVERIFY(page.entries("_sdkFormatListComboBox").isEmpty());
    QCOMPARE(page.combo("_sdkFormatListComboBox")->currentText(), QString("1080i59.94"));
  }

  void chosenCardGivesItsFormats() {
    Page page;
    page.cards = page.twoCards;
    QVERIFY(page.openWithCards());
    page.combo("_sdiOutputDevListComboBox")->setCurrentIndex(1);
    QCOMPARE(page.entries("_sdkFormatListComboBox"), (QStringList{"720p50", "2160p25"}));
    page.combo("_sdiOutputDevListComboBox")->setCurrentIndex(0);
    QCOMPARE(page.entries("_sdkFormatListComboBox"), (QStringList{"1080p25", "1080i50"}));
    page.combo("_sdiOutputDevListComboBox")->setCurrentIndex(-1);
    QVERIFY(page.entries("_sdkFormatListComboBox").isEmpty());
  }

  void storedCardIsSelectedAndItsFormatKept() {
    Page page;
    page.cards = page.twoCards;
    page.net().sdiDeviceIndex = 1;
    page.net().sdiFormat = "1080p30";
    QVERIFY(page.openWithCards());
    QCOMPARE(page.combo("_sdiOutputDevListComboBox")->currentIndex(), 1);
    QCOMPARE(page.entries("_sdkFormatListComboBox"), (QStringList{"720p50", "2160p25"}));
    QCOMPARE(page.combo("_sdkFormatListComboBox")->currentText(), QString("1080p30"));
  }

  void cardPastTheEndBecomesTheFirst_data() {
    QTest::addColumn<int>("stored");
    QTest::newRow("at the end") << 2;
    QTest::newRow("past the end") << 99;
    QTest::newRow("none") << -1;
  }
  void cardPastTheEndBecomesTheFirst() {
    QFETCH(int, stored);
    Page page;
    page.cards = page.twoCards;
    page.net().sdiDeviceIndex = stored;
    QVERIFY(page.openWithCards());
    QCOMPARE(page.combo("_sdiOutputDevListComboBox")->currentIndex(), 0);
    page.tab->save();
    QCOMPARE(page.net().sdiDeviceIndex, 0);
  }

  void withoutCardsTheIndexIsMinusOne() {
    Page page;
    page.net().sdiDeviceIndex = 1;
    QVERIFY(page.openWithCards());
    QCOMPARE(page.combo("_sdiOutputDevListComboBox")->count(), 0);
    page.tab->save();
    QCOMPARE(page.net().sdiDeviceIndex, -1);
  }

  void cardsThatAreNotListedYetKeepTheirIndex() {
    Page page;
    page.net().sdiDeviceIndex = 1;
    page.open();
    page.tab->save();
    QCOMPARE(page.net().sdiDeviceIndex, 1);
  }

 private:
  static void bothEncoders() {
    QTest::addColumn<QString>("kind");
    QTest::newRow("net") << "net";
    QTest::newRow("record") << "record";
  }
};

QTEST_MAIN(TabOutputPGMTest)
#include "tst_tab_output_pgm.moc"
