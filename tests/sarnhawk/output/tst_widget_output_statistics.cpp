// The statistics window: which byte of the engine's records is shown where, and the addresses of the targets.
#include <QCloseEvent>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>
#include <QTableWidget>
#include <QtTest>
#include <array>
#include <cstring>

#include "ConsoleDesk.h"
#include "KorviaCommonUtil.h"
#include "PlainConsole.h"
#include "output/GBitratePlotChart.h"
#include "output/GWidgetOutputStatistics.h"
#include "tagKorviaOutputStatistics.h"
#include "tagKorviaShowSourceStatisticsItem.h"

namespace {

constexpr int kBlockStart = 8;
constexpr int kBlockSize = 1712;

template <class T>
void put(tagKorviaOutputStatistics& outputs, int block, int position, T value) {
  auto* bytes = reinterpret_cast<char*>(&outputs);
  std::memcpy(bytes + kBlockStart + block * kBlockSize + position, &value, sizeof value);
}

class Window {
 public:
  Window() {
    console.config.engineInfo.mediaChannelCount = 3;
    window = std::make_unique<GWidgetOutputStatistics>(&console);
  }

  template <class T>
  T* child(const QString& name) const {
    T* found = window->findChild<T*>(name);
    if (!found)
      qFatal("no %s in the window", qPrintable(name));
    return found;
  }
  QString text(const QString& name) const { return child<QLabel>(name)->text(); }
  QString tip(const QString& name) const { return child<QLineEdit>(name)->text(); }
  QTableWidget* table() const { return child<QTableWidget>("_mediaSourceTableWidget"); }
  QStringList row(int index) const {
    QStringList texts;
    for (int column = 0; column < table()->columnCount(); ++column)
      texts.append(table()->item(index, column)->text());
    return texts;
  }
  void update() { window->updateStatistics(outputs, sources.data()); }
  tagKorviaShowOutputItem& net() { return console.config.outputParam.items[OutputSlotStream]; }
  tagKorviaShowOutputItem& record() { return console.config.outputParam.items[OutputSlotRecord]; }

  PlainConsole console;
  tagKorviaOutputStatistics outputs;
  std::array<tagKorviaShowSourceStatisticsItem, kMediaChannelMax> sources;
  std::unique_ptr<GWidgetOutputStatistics> window;
};

/// A desk with an engine that has counted something.
class StatisticsDesk : public ConsoleDesk {
 public:
  StatisticsDesk() {
    isOpen = start();
    window = console->findChild<GWidgetOutputStatistics*>();
    show.outputStatistics.blocks[0].videoBitrate = 4000;
  }
  QString bitrate() const { return window->findChild<QLabel*>("_videoMuxBitrateLabel_0")->text(); }

  bool isOpen = false;
  GWidgetOutputStatistics* window = nullptr;
};

struct TargetLine {
  const char* widget;
  const char* label;
  int block;
  int position;
  quint8 tagKorviaShowOutputItem::*enable;
};
const TargetLine kLines[] = {
    {"_rtmpOutputTipWidget_00", "_rtmpOutputBitrateLabel_00", 0, 1396, &tagKorviaShowOutputItem::rtmp0Enable},
    {"_rtmpOutputTipWidget_01", "_rtmpOutputBitrateLabel_01", 0, 1436, &tagKorviaShowOutputItem::rtmp1Enable},
    {"_rtmpOutputTipWidget_02", "_rtmpOutputBitrateLabel_02", 0, 1476,
     &tagKorviaShowOutputItem::rtmpLocalEnable},
    {"_httpOutputTipWidget_0", "_httpOutputBitrateLabel_0", 0, 212, &tagKorviaShowOutputItem::httpEnable},
    {"_hlsOutputTipWidget_0", "_hlsOutputBitrateLabel_0", 0, 292, &tagKorviaShowOutputItem::hlsEnable},
    {"_udpOutputTipWidget_0", "_udpOutputBitrateLabel_0", 0, 252, &tagKorviaShowOutputItem::udpEnable},
    {"_fileOutputTipWidget_0", "_recordOutputBitrateLabel_0", 1, 172, &tagKorviaShowOutputItem::recordActive},
};

}  // namespace

class WidgetOutputStatisticsTest : public QObject {
  Q_OBJECT

 private slots:
  void looksLikeItself() {
    const Window window;
    QCOMPARE(window.window->windowTitle(), QString("Stream Statistics"));
    QVERIFY(window.window->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    const auto* tabs = window.child<QTabWidget>("_statisticsTabWidget");
    QCOMPARE(tabs->currentIndex(), 0);
    QStringList titles;
    for (int index = 0; index < tabs->count(); ++index)
      titles.append(tabs->tabText(index));
    QCOMPARE(titles, (QStringList{"Source", "Encode", "Mux", "Output"}));
    QCOMPARE(tabs->widget(0)->objectName(), QString("_mediaSourceTab"));
    QCOMPARE(tabs->widget(1)->objectName(), QString("_bitrateStatisticsTab"));
    QCOMPARE(tabs->widget(3)->objectName(), QString("_statisticsCodecTab_0"));
    QVERIFY(tabs->widget(1)->findChild<GBitratePlotChart*>());
    QStringList groups;
    for (const QGroupBox* group : tabs->widget(2)->findChildren<QGroupBox*>())
      groups.append(group->title());
    QCOMPARE(groups, (QStringList{"Net Stream", "Record"}));
  }

  void captionsAreSpelledAsEver() {
    const Window window;
    QStringList texts;
    for (const QLabel* label : window.window->findChildren<QLabel*>())
      texts.append(label->text());
    for (const char* text : {"Video Fps:", "Audio Rate:", "Video Bitrate:", "Audio Bitrate:",
                             "V-A TimeStamp:", "Encode Delay:", "Frame Type:"})
      QCOMPARE(texts.count(text), 2);
    for (const char* text : {"RTMP - 0:", "RTMP - 1:", "RTMP - Local:", "HTTP:", " HLS:", " UDP:", "Record:"})
      QCOMPARE(texts.count(text), 1);
    for (const TargetLine& line : kLines)
      QCOMPARE(window.text(line.label), QString("0 kpbs"));
  }

  void tableHasARowForEachChannel() {
    const Window window;
    QCOMPARE(window.table()->rowCount(), 3);
    QStringList titles;
    for (int column = 0; column < window.table()->columnCount(); ++column)
      titles.append(window.table()->horizontalHeaderItem(column)->text());
    QCOMPARE(titles, (QStringList{"Index", "Video Size", "Video Fps", "Audio Rate", "V-A Drift", "Source"}));
    QCOMPARE(window.table()->horizontalHeader()->sectionResizeMode(5), QHeaderView::Stretch);
    QCOMPARE(window.row(2), (QStringList{"2", "0 X 0", "0", "0", "0", ""}));
  }

  void rowsShowTheSources() {
    Window window;
    auto* bytes = reinterpret_cast<char*>(&window.sources[1]);
    const float fps = 0.025F;
    const float samples = 44.1F;
    const qint64 drift = -12;
    std::memcpy(bytes + 16, &fps, sizeof fps);
    std::memcpy(bytes + 20, &samples, sizeof samples);
    std::memcpy(bytes + 24, &drift, sizeof drift);
    window.sources[1].description = "h264 1280x720";
    window.console.config.channels[1].format.video.secondWidth = 1280;
    window.console.config.channels[1].format.video.secondHeight = 720;
    window.sources[0].videoRate = 0.0599401F;
    window.update();
    QCOMPARE(window.row(1), (QStringList{"1", "1280 X 720", "25", "44100", "-12", "h264 1280x720"}));
    QCOMPARE(window.row(0), (QStringList{"0", "1920 X 1080", "59.9401", "0", "0", ""}));
  }

  void muxLabelsShowTheirBytes_data() {
    QTest::addColumn<int>("block");
    QTest::newRow("stream") << 0;
    QTest::newRow("record") << 1;
  }
  void muxLabelsShowTheirBytes() {
    QFETCH(int, block);
    Window window;
    put(window.outputs, block, 0, 24.5F);
    put(window.outputs, block, 4, 4096.5F);
    put(window.outputs, block, 8, 48000.0F);
    put(window.outputs, block, 12, 128.25F);
    put(window.outputs, block, 16, qint64{5'000'000'000});
    put(window.outputs, block, 24, qint64{-7});
    put(window.outputs, block, 32, std::array<char, 10>{"IPPPPPPPP"});
    window.update();
    const QString suffix = QString("_%1").arg(block);
    QCOMPARE(window.text("_videoMuxFpsLabel" + suffix), QString("24.5 fps"));
    QCOMPARE(window.text("_videoMuxBitrateLabel" + suffix), QString("4096.5 kpbs"));
    QCOMPARE(window.text("_audioMuxSampleRateLabel" + suffix), QString("48000 s"));
    QCOMPARE(window.text("_audioMuxBitrateLabel" + suffix), QString("128.25 kpbs"));
    QCOMPARE(window.text("_vDelayDriftLabel" + suffix), QString("5000000000 ms"));
    QCOMPARE(window.text("_VAMuxDriftLabel" + suffix), QString("-7 ms"));
    QCOMPARE(window.text("_videoFrameTypeLabel" + suffix), QString("IPPPPPPPP"));
    const QString other = QString("_%1").arg(1 - block);
    QCOMPARE(window.text("_videoMuxFpsLabel" + other), QString("0 fps"));
    QCOMPARE(window.text("_videoFrameTypeLabel" + other), QString());
  }

  void frameTypeEndsAfterNinetyCharacters() {
    Window window;
    std::array<char, 140> full;
    full.fill('B');
    put(window.outputs, 0, 32, full);
    window.update();
    QCOMPARE(window.text("_videoFrameTypeLabel_0"), QString(90, 'B'));
  }

  void targetLabelsShowTheirBytes() {
    Window window;
    for (std::size_t index = 0; index < std::size(kLines); ++index)
      put(window.outputs, kLines[index].block, kLines[index].position, 100.5F + static_cast<float>(index));
    window.update();
    for (std::size_t index = 0; index < std::size(kLines); ++index)
      QCOMPARE(window.text(kLines[index].label), QString("%1.5 kpbs").arg(100 + index));
  }

  void bigNumbersAreWrittenShort() {
    Window window;
    put(window.outputs, 0, 4, 12345678.0F);
    window.update();
    QCOMPARE(window.text("_videoMuxBitrateLabel_0"), QString("1.23457e+07 kpbs"));
  }

  void tipsShowTheAddresses() {
    Window window;
    window.net().rtmp0Url = "rtmp://one/live/a%1b";
    window.net().rtmp1Url = "rtmp://two/live/c";
    window.net().rtmpLocalPath = "/local%2";
    window.net().httpPort = 8081;
    window.net().httpPath = "/tv";
    window.net().hlsPath = "/hls/evening";
    window.net().udpAddress = "239.1.2.3";
    window.net().udpPort = 5004;
    window.record().recordPath = "d:\\shows\\";
    window.console.config.httpPort = 8811;
    window.window->refreshTips();
    const QString ip = KorviaCommonUtil::getIp();
    QCOMPARE(window.tip("_rtmpOutputTipLineEdit_00"), QString("rtmp://one/live/a%1b"));
    QCOMPARE(window.tip("_rtmpOutputTipLineEdit_01"), QString("rtmp://two/live/c"));
    QCOMPARE(window.tip("_rtmpOutputTipLineEdit_02"), "rtmp://" + ip + ":1935/live/local%2");
    QCOMPARE(window.tip("_httpOutputTipLineEdit_0"), "http://" + ip + ":8081/tv");
    QCOMPARE(window.tip("_hlsOutputTipLineEdit_0"), "http://" + ip + ":8811/hls/evening/index.m3u8");
    QCOMPARE(window.tip("_udpOutputTipLineEdit_0"), QString("udp://@239.1.2.3:5004"));
    QCOMPARE(window.tip("_recordOutputTipLineEdit_0"), QString("d:\\shows\\"));
    for (const QLineEdit* edit : window.window->findChildren<QLineEdit*>())
      QVERIFY(edit->isReadOnly());
  }

  void onlyConfiguredTargetsAreEnabled() {
    for (const TargetLine& on : kLines) {
      Window window;
      (on.block == 0 ? window.net() : window.record()).*on.enable = 1;
      window.window->refreshTips();
      for (const TargetLine& line : kLines)
        QCOMPARE(window.child<QWidget>(line.widget)->isEnabledTo(window.window.get()),
                 line.widget == on.widget);
    }
  }

  void bitratesAreTruncatedForTheChart() {
    Window window;
    put(window.outputs, 0, 4, 4096.9F);
    put(window.outputs, 0, 12, 128.9F);
    put(window.outputs, 1, 4, 8192.9F);
    put(window.outputs, 1, 12, 192.9F);
    window.update();
    QStringList titles;
    const auto* chart = window.window->findChild<GBitratePlotChart*>();
    for (const QwtPlotItem* item : chart->itemList(QwtPlotItem::Rtti_PlotCurve))
      titles.append(item->title().text());
    QCOMPARE(titles, (QStringList{"Video-Net Stream 4096 kbp/s", "Audio-Net Stream 128 kbp/s",
                                  "Video-Record 8192 kbp/s", "Audio-Record 192 kbp/s"}));
  }

  void closingHides() {
    Window window;
    window.window->show();
    QCloseEvent event;
    QApplication::sendEvent(window.window.get(), &event);
    QVERIFY(!event.isAccepted());
    QVERIFY(!window.window->isVisible());
  }

  void hiddenWindowIsNotFed() {
    StatisticsDesk desk;
    QVERIFY(desk.window);
    desk.console->onWorkTimer();
    QCOMPARE(desk.bitrate(), QString("0 kpbs"));
    desk.console->showOutputStatistics();
    QVERIFY(desk.window->isVisible());
    desk.console->onWorkTimer();
    QCOMPARE(desk.bitrate(), QString("4000 kpbs"));
    desk.window->close();
    desk.show.outputStatistics.blocks[0].videoBitrate = 5000;
    desk.console->onWorkTimer();
    QCOMPARE(desk.bitrate(), QString("4000 kpbs"));
  }

  void tipsFollowOnlyWhenTheWindowIsShownAnew() {
    StatisticsDesk desk;
    desk.console->showOutputStatistics();
    const auto* tip = desk.window->findChild<QLineEdit*>("_recordOutputTipLineEdit_0");
    QCOMPARE(tip->text(), QString("d:\\records\\vod\\0\\"));
    desk.console->getConfig()->outputParam.items[OutputSlotRecord].recordPath = "d:\\shows\\";
    desk.console->onWorkTimer();
    QCOMPARE(tip->text(), QString("d:\\records\\vod\\0\\"));
    desk.console->showOutputStatistics();
    QCOMPARE(tip->text(), QString("d:\\shows\\"));
  }

  void labelsKeepTheirTextWithoutAnEngine() {
    ConsoleDesk desk;
    QVERIFY(desk.create());
    auto* window = desk.console->findChild<GWidgetOutputStatistics*>();
    window->findChild<QLabel*>("_videoMuxFpsLabel_0")->setText("as before");
    desk.console->showOutputStatistics();
    desk.console->onWorkTimer();
    QCOMPARE(window->findChild<QLabel*>("_videoMuxFpsLabel_0")->text(), QString("as before"));
  }

  void closingTheFrameHidesTheWindow() {
    StatisticsDesk desk;
    desk.console->showOutputStatistics();
    desk.console->hideAll();
    QVERIFY(!desk.window->isVisible());
  }
};

QTEST_MAIN(WidgetOutputStatisticsTest)
#include "tst_widget_output_statistics.moc"
