// The editor of a subtitle: what it shows of a record, and what each edit makes of it.
#include <QFileDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTabWidget>
#include <QtTest>

#include "Controls.h"
#include "ItemConsole.h"
#include "Tiles.h"
#include "present/GWidgetSubtitleConfig.h"
#include "present/GWidgetTextStyle.h"
#include "present/IGWidgetSubtitleConfigSink.h"

namespace {

class Sink final : public IGWidgetSubtitleConfigSink {
 public:
  void onConfigChanged(const tagKorviaSubtitleParam& param) override { params.append(param); }
  const tagKorviaShowTextInfo& last() const { return params.last().info; }

  QList<tagKorviaSubtitleParam> params;
};

/// The editor with a record loaded.
class Popup : public Controls<Popup> {
 public:
  explicit Popup(const tagKorviaSubtitleParam& param = {}) : widget(&console, &sink) {
    widget.setObjectParam(0x1000, param);
    loadCalls = sink.params.size();
    sink.params.clear();
    widget.show();
  }

  void click(const char* name) const { child<QPushButton>(name)->click(); }
  const QListWidget* list(const char* name) const { return child<QListWidget>(name); }

  ItemConsole console;
  Sink sink;
  GWidgetSubtitleConfig widget;
  int loadCalls = 0;
};

/// A drag of the handle from one value to another.
void drag(QSlider* slider, int value) {
  slider->setSliderDown(true);
  slider->setSliderPosition((slider->value() + value) / 2);
  slider->setSliderPosition(value);
  slider->setSliderDown(false);
}

tagKorviaSubtitleParam fullRecord() {
  tagKorviaSubtitleParam param;
  param.info.text = "${Time} o'clock";
  param.info.timeFormat = "hh:mm";
  param.info.x = 0.29;
  param.info.y = -1;
  param.info.width = 0.55;
  param.info.height = 1;
  param.info.hAlign = 2;
  param.info.vAlign = 0x20;
  param.info.scrollEndX = 1.5;
  param.info.scrollTime = 2.5F;
  param.info.enter.effect = 14;
  param.info.exit.effect = 28;
  return param;
}

}  // namespace

class WidgetSubtitleConfigTest : public QObject {
  Q_OBJECT

 private slots:
  void comesUpOnTheFirstOfThreePages() {
    const Popup popup;
    QCOMPARE(popup.widget.windowType(), Qt::Popup);
    QVERIFY(!popup.widget.parentWidget());
    const auto* tabs = popup.child<QTabWidget>("_tabWidget");
    QCOMPARE(tabs->currentIndex(), 0);
    QCOMPARE(tabs->count(), 3);
    QCOMPARE(tabs->tabText(0), QString("Text"));
    QCOMPARE(tabs->tabText(1), QString("Style"));
    QCOMPARE(tabs->tabText(2), QString("Animation"));
    QCOMPARE(tabs->widget(0)->objectName(), QString("_textTab"));
    QCOMPARE(tabs->widget(1)->objectName(), QString("_styleTab"));
    QCOMPARE(tabs->widget(2)->objectName(), QString("_aniTab"));
    QVERIFY(popup.child<QWidget>("_textStyleWidget")->findChild<GWidgetTextStyle*>());
  }

  void labelsReadZeroUntilTheFirstLoad() {
    ItemConsole console;
    Sink sink;
    const GWidgetSubtitleConfig widget(&console, &sink);
    for (const char* name :
         {"_xPosLabel", "_yPosLabel", "_widthLabel", "_heightLabel", "_scrollEndXPosLabel"})
      QCOMPARE(widget.findChild<QLabel*>(name)->text(), QString("00%"));
    QCOMPARE(widget.findChild<QSlider*>("_xPosHorizontalSlider")->value(), 50);
    QCOMPARE(widget.findChild<QSlider*>("_yPosHorizontalSlider")->value(), 50);
  }

  void rangesAndItems_data() {
    QTest::addColumn<int>("least");
    QTest::addColumn<int>("most");
    QTest::newRow("_xPosHorizontalSlider") << -100 << 200;
    QTest::newRow("_yPosHorizontalSlider") << -100 << 200;
    QTest::newRow("_widthHorizontalSlider") << 0 << 100;
    QTest::newRow("_heightHorizontalSlider") << 0 << 100;
    QTest::newRow("_scrollEndXPosHorizontalSlider") << -100 << 150;
  }
  void rangesAndItems() {
    QFETCH(int, least);
    QFETCH(int, most);
    const Popup popup;
    QCOMPARE(popup.slider(QTest::currentDataTag())->minimum(), least);
    QCOMPARE(popup.slider(QTest::currentDataTag())->maximum(), most);
  }

  void combosOfferTheirItems() {
    const Popup popup;
    const auto items = [&popup](const char* name) {
      QStringList texts;
      for (int i = 0; i < popup.combo(name)->count(); ++i)
        texts.append(popup.combo(name)->itemText(i));
      return texts;
    };
    QCOMPARE(items("_textContentComboBox"), QStringList({"Time:${Time}", "${Time}", "Text"}));
    QCOMPARE(items("_timeFormatComboBox"),
             QStringList({"hh/mm/ss", "hh:mm:ss", "yyyy-MM-dd", "yyyy-MM-dd hh:mm:ss"}));
    QCOMPARE(items("_scrollTimeComboBox"),
             QStringList({"10000", "9000", "8000", "7000", "6000", "5000", "4000", "3000", "2500", "2000",
                          "1500", "1000", "500"}));
    // A fresh record has a blank that the item does not have.
    QCOMPARE(popup.combo("_textContentComboBox")->currentText(), QString("Time: ${Time}"));
  }

  void showsARecordAndSendsNothing() {
    const Popup popup(fullRecord());
    QCOMPARE(popup.loadCalls, 0);
    QCOMPARE(popup.widget.objectId(), 0x1000);
    QCOMPARE(popup.combo("_textContentComboBox")->currentText(), QString("${Time} o'clock"));
    QCOMPARE(popup.combo("_timeFormatComboBox")->currentText(), QString("hh:mm"));
    QCOMPARE(popup.combo("_scrollTimeComboBox")->currentText(), QString("2500"));
    QCOMPARE(popup.slider("_xPosHorizontalSlider")->value(), 29);
    QCOMPARE(popup.slider("_yPosHorizontalSlider")->value(), -100);
    QCOMPARE(popup.slider("_widthHorizontalSlider")->value(), 55);
    QCOMPARE(popup.slider("_heightHorizontalSlider")->value(), 100);
    QCOMPARE(popup.slider("_scrollEndXPosHorizontalSlider")->value(), 150);
    QCOMPARE(popup.label("_xPosLabel"), QString("29%"));
    QCOMPARE(popup.label("_yPosLabel"), QString("-100%"));
    QCOMPARE(popup.label("_scrollEndXPosLabel"), QString("150%"));
    QVERIFY(popup.child<QPushButton>("_rightAlignPushButton")->isChecked());
    QVERIFY(popup.child<QPushButton>("_topAlignPushButton")->isChecked());
    QCOMPARE(markedOf(popup.list("_enterAniListWidget")), QList<qint32>{14});
    QCOMPARE(markedOf(popup.list("_exitAniListWidget")), QList<qint32>{28});
  }

  void typingFiveCharactersSendsFiveUpdates() {
    Popup popup;
    popup.combo("_textContentComboBox")->setEditText(QString());
    popup.sink.params.clear();
    QTest::keyClicks(popup.combo("_textContentComboBox")->lineEdit(), "Title");
    QCOMPARE(popup.sink.params.size(), 5);
    QCOMPARE(popup.sink.params.at(0).info.text, QString("T"));
    QCOMPARE(popup.sink.last().text, QString("Title"));
    popup.combo("_timeFormatComboBox")->setEditText("ss");
    QCOMPARE(popup.sink.last().timeFormat, QString("ss"));
    QCOMPARE(popup.sink.params.size(), 6);
  }

  void aSliderSendsOnceWhenItIsReleased() {
    Popup popup;
    drag(popup.slider("_xPosHorizontalSlider"), 55);
    QCOMPARE(popup.sink.params.size(), 1);
    QCOMPARE(popup.sink.last().x, static_cast<double>(55 / 100.0F));
    QCOMPARE(popup.label("_xPosLabel"), QString("55%"));
    drag(popup.slider("_yPosHorizontalSlider"), 90);
    drag(popup.slider("_widthHorizontalSlider"), 80);
    drag(popup.slider("_heightHorizontalSlider"), 30);
    drag(popup.slider("_scrollEndXPosHorizontalSlider"), -100);
    QCOMPARE(popup.sink.params.size(), 5);
    const double y = static_cast<double>(90 / 100.0F);
    QCOMPARE(popup.sink.last().y, y);
    QCOMPARE(popup.sink.last().width, static_cast<double>(80 / 100.0F));
    QCOMPARE(popup.sink.last().height, static_cast<double>(30 / 100.0F));
    QCOMPARE(popup.sink.last().scrollEndX, -1.0);
    // A scroll stays on its line.
    QCOMPARE(popup.sink.last().scrollEndY, y);
  }

  void scrollTimeButtons_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("adds");
    QTest::addColumn<QString>("next");
    QTest::newRow("add") << "2500" << true << "3500";
    QTest::newRow("add up to the most") << "11500" << true << "12000";
    QTest::newRow("add at the most") << "12000" << true << "12000";
    QTest::newRow("sub") << "2500" << false << "1500";
    QTest::newRow("sub down to nothing") << "500" << false << "0";
    QTest::newRow("no number counts as 0") << "soon" << true << "1000";
    QTest::newRow("add to the largest number") << "2147483647" << true << "12000";
    QTest::newRow("sub from the smallest number") << "-2147483648" << false << "0";
  }
  void scrollTimeButtons() {
    QFETCH(QString, text);
    QFETCH(bool, adds);
    QFETCH(QString, next);
    Popup popup;
    popup.combo("_scrollTimeComboBox")->setEditText(text);
    popup.click(adds ? "_addScrollTimePushButton" : "_subScrollTimePushButton");
    QCOMPARE(popup.combo("_scrollTimeComboBox")->currentText(), next);
    QCOMPARE(popup.sink.last().scrollTime, next.toFloat() / 1000.0F);
  }

  void aScrollTimeThatIsNoNumberIsNoScroll() {
    Popup popup(fullRecord());
    popup.combo("_scrollTimeComboBox")->setEditText("soon");
    QCOMPARE(popup.sink.last().scrollTime, 0.0F);
  }

  void theVerticalChoiceOverwritesTheHorizontalOne() {
    tagKorviaSubtitleParam param;
    param.info.vAlign = 0x20;
    Popup popup(param);
    popup.click("_rightAlignPushButton");
    QCOMPARE(popup.sink.last().hAlign, 0x20);
    popup.click("_bottomAlignPushButton");
    QCOMPARE(popup.sink.last().hAlign, 0x40);
    QCOMPARE(popup.sink.last().vAlign, 0x20);
    popup.click("_middleAlignPushButton");
    QCOMPARE(popup.sink.last().hAlign, 0x84);
    QCOMPARE(popup.sink.last().vAlign, 0x20);
    QVERIFY(popup.child<QPushButton>("_rightAlignPushButton")->isChecked());
    QVERIFY(!popup.child<QPushButton>("_bottomAlignPushButton")->isChecked());
  }

  void theHorizontalChoiceIsWrittenWithoutAVerticalOne() {
    tagKorviaSubtitleParam param;
    param.info.vAlign = 0;
    Popup popup(param);
    popup.click("_centerAlignPushButton");
    QCOMPARE(popup.sink.last().hAlign, 0x84);
    popup.click("_rightAlignPushButton");
    QCOMPARE(popup.sink.last().hAlign, 2);
    popup.click("_leftAlignPushButton");
    QCOMPARE(popup.sink.last().hAlign, 1);
  }

  void aLoadSetsTheButtonsThatMatchAndUnsetsNone() {
    tagKorviaSubtitleParam param;
    param.info.hAlign = 1;
    Popup popup(param);
    QVERIFY(popup.child<QPushButton>("_leftAlignPushButton")->isChecked());
    QVERIFY(popup.child<QPushButton>("_middleAlignPushButton")->isChecked());
    // What the popup itself writes matches no horizontal button.
    param.info.hAlign = 0x40;
    popup.widget.setObjectParam(0x1000, param);
    QVERIFY(popup.child<QPushButton>("_leftAlignPushButton")->isChecked());
    QVERIFY(popup.child<QPushButton>("_middleAlignPushButton")->isChecked());
  }

  void animationListsOfferSeventeenEffectsEach() {
    Popup popup;
    QCOMPARE(tilesOf(popup.list("_enterAniListWidget")).size(), 17);
    QCOMPARE(tilesOf(popup.list("_exitAniListWidget")).size(), 17);
    for (qint32 id = 17; id <= 25; ++id) {
      QVERIFY(!tileOf(popup.list("_enterAniListWidget"), id));
      QVERIFY(!tileOf(popup.list("_exitAniListWidget"), id + 26));
    }
    QCOMPARE(tileOf(popup.list("_exitAniListWidget"), 42)->info().name, QString("Descend"));
    QCOMPARE(tileOf(popup.list("_enterAniListWidget"), 0)->size(), QSize(60, 60));
  }

  void aTileChoosesItsEffect() {
    Popup popup;
    QTest::mouseClick(tileOf(popup.list("_enterAniListWidget"), 9), Qt::LeftButton);
    QCOMPARE(popup.sink.params.size(), 1);
    QCOMPARE(popup.sink.last().enter.effect, 9);
    QCOMPARE(popup.sink.last().exit.effect, 26);
    QCOMPARE(markedOf(popup.list("_enterAniListWidget")), QList<qint32>{9});
    QCOMPARE(markedOf(popup.list("_exitAniListWidget")), QList<qint32>{26});
    QTest::mouseClick(tileOf(popup.list("_exitAniListWidget"), 33), Qt::LeftButton);
    QCOMPARE(popup.sink.last().exit.effect, 33);
    QCOMPARE(popup.sink.last().enter.effect, 9);
    QCOMPARE(markedOf(popup.list("_exitAniListWidget")), QList<qint32>{33});
    // A list of somebody else.
    QListWidget other;
    popup.widget.onListWidgetItemClicked(&other, nullptr, 5);
    QCOMPARE(popup.sink.params.size(), 2);
  }

  void aStyleChangeIsSentWithTheRecord() {
    Popup popup(fullRecord());
    popup.child<QComboBox>("_fontSizeComboBox")->setEditText("85");
    QCOMPARE(popup.sink.params.size(), 1);
    QCOMPARE(popup.sink.last().style.fontSize, 85);
    QCOMPARE(popup.sink.last().text, QString("${Time} o'clock"));
    QCOMPARE(popup.sink.last().enter.effect, 14);
  }

  void aLoadWithAnotherTextureSendsOnceInTheMiddle() {
    Popup popup;
    tagKorviaSubtitleParam param = fullRecord();
    param.info.style.outlineSize = 17;
    const int current = popup.combo("_textureComboBox")->currentIndex();
    param.info.style.texturePath = popup.console.folder.path() + "\\Common\\TextTexture\\" +
                                   popup.combo("_textureComboBox")->itemText(1 - current) + ".tga";
    const int sliderBefore = popup.slider("_outlineSizeHorizontalSlider")->value();
    QVERIFY(sliderBefore != 17);
    popup.widget.setObjectParam(0x1000, param);
    QCOMPARE(popup.sink.params.size(), 1);
    // The page of the text is loaded, the sliders of the style are not.
    QCOMPARE(popup.sink.last().text, QString("${Time} o'clock"));
    QCOMPARE(popup.sink.last().style.texturePath, param.info.style.texturePath);
    QCOMPARE(popup.sink.last().style.outlineSize, sliderBefore);
    QCOMPARE(popup.slider("_outlineSizeHorizontalSlider")->value(), 17);
    // The next edit sends what the editor shows.
    drag(popup.slider("_xPosHorizontalSlider"), 10);
    QCOMPARE(popup.sink.last().style.outlineSize, 17);
  }

  void opensATextFile() {
    Popup popup;
    QFile file(popup.console.folder.filePath("text.txt"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("first\nsecond");
    file.close();
    const QString before = QDir::currentPath();
    chooseFile(popup, file.fileName());
    QCOMPARE(popup.sink.last().text, QString("first\nsecond"));
    QCOMPARE(QDir::currentPath(), QDir(popup.console.folder.path()).canonicalPath());
    QVERIFY(popup.widget.isVisible());
    const int sent = popup.sink.params.size();
    popup.click("_openTXTPushButton");
    auto* dialog = fileDialog();
    QVERIFY(dialog);
    QCOMPARE(dialog->windowTitle(), QString("Open Text File"));
    QCOMPARE(dialog->nameFilters(), QStringList({"Text files (*.txt)", "Any files (*)"}));
    dialog->reject();
    QVERIFY(popup.widget.isVisible());
    QCOMPARE(popup.sink.params.size(), sent);
    QDir::setCurrent(before);
  }

  void aFileThatCannotBeReadLeavesNoText_data() {
    QTest::addColumn<qint64>("bytes");
    QTest::newRow("larger than can be read") << qint64{64} * 1024 * 1024 + 1;
    QTest::newRow("gone") << qint64{-1};
  }
  void aFileThatCannotBeReadLeavesNoText() {
    QFETCH(qint64, bytes);
    Popup popup;
    QFile file(popup.console.folder.filePath("chosen.txt"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.resize(std::max<qint64>(bytes, 0)));
    file.close();
    const QString before = QDir::currentPath();
    chooseFile(popup, file.fileName(), [&] { return bytes >= 0 || file.remove(); });
    QCOMPARE(popup.sink.last().text, QString());
    QDir::setCurrent(before);
  }

 private:
  static QFileDialog* fileDialog() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
      auto* dialog = qobject_cast<QFileDialog*>(window);
      if (dialog && dialog->isVisible())
        return dialog;
    }
    return nullptr;
  }
  static void chooseFile(
      const Popup& popup, const QString& path,
      const std::function<bool()>& beforeOpen = [] { return true; }) {
    popup.click("_openTXTPushButton");
    QFileDialog* dialog = fileDialog();
    QVERIFY(dialog);
    dialog->selectFile(path);
    QVERIFY(beforeOpen());
    static_cast<QDialog*>(dialog)->done(QDialog::Accepted);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
};

QTEST_MAIN(WidgetSubtitleConfigTest)
#include "tst_widget_subtitle_config.moc"
