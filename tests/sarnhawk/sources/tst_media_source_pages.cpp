// The pages of the picker: what each takes from the slot, does, and stores on OK.
#include <QCheckBox>
#include <QColorDialog>
#include <QFileDialog>
#include <QLabel>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QScreen>
#include <QtTest>

#include "KorviaShowPageView.h"
#include "PickerRig.h"
#include "QColEdit.h"
#include "services/GWidgetImagePaint.h"
#include "sources/GDialogMediaSourceOption.h"

namespace {

/// Chooses files in the file dialog that is open over the picker.
bool chooseFiles(GDialogMediaSource& picker, const QStringList& files) {
  auto* dialog = picker.findChild<QFileDialog*>();
  if (!dialog)
    return false;
  emit dialog->filesSelected(files);
  dialog->close();
  QCoreApplication::sendPostedEvents(dialog, QEvent::DeferredDelete);
  return true;
}

}  // namespace

class MediaSourcePagesTest : public QObject {
  Q_OBJECT

 private slots:
  void okOnTheOfficePageDoesNothing() {
    PickerRig rig;
    rig.slot.source.officePath = "/a.ppt";
    GDialogMediaSource& picker = rig.open(13);
    picker.show();
    QVERIFY(!rig.accepts());
    QVERIFY(picker.isVisible());
    picker.onClicked_cancelPushButton();
    QVERIFY(!picker.isVisible());
  }

  void okOnAnEmptyWindowListDoesNothing() {
    PickerRig rig;
    rig.slot.source.windowInfo = {"old", "0x1", "old"};
    rig.open(16);
    QVERIFY(!rig.accepts());
    auto* row = new QListWidgetItem("a [b]", rig.list("_hwndListWidget"));
    row->setData(Qt::UserRole, QVariant::fromValue(tagKorviaWindowHWNDInfo{"a", "0x2", "b"}));
    rig.list("_hwndListWidget")->setCurrentRow(-1);
    QVERIFY(!rig.accepts());
    rig.list("_hwndListWidget")->setCurrentRow(0);
    QVERIFY(rig.accepts());
    QCOMPARE(rig.source().windowInfo.windowId, QString("0x2"));
  }

  void webAddressGetsAScheme_data() {
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("stored");
    QTest::newRow("bare") << "example.org"
                          << "http://example.org";
    QTest::newRow("http") << "http://example.org"
                          << "http://example.org";
    QTest::newRow("https") << "https://example.org"
                           << "https://example.org";
    QTest::newRow("upper case") << "HTTP://example.org"
                                << "http://HTTP://example.org";
    QTest::newRow("other scheme") << "ftp://example.org"
                                  << "http://ftp://example.org";
  }
  void webAddressGetsAScheme() {
    QFETCH(QString, typed);
    QFETCH(QString, stored);
    PickerRig rig;
    rig.open(12);
    rig.edit("_webPathLineEdit")->setText(typed);
    rig.button("_openWebPushButton")->click();
    QCOMPARE(rig.child<KorviaShowPageView>("_webView")->address(), stored);
    QVERIFY(rig.accepts());
    QCOMPARE(rig.source().webUrl, stored);
    QCOMPARE(rig.rows("_webHistoryListWidget"), QStringList{stored});
  }

  void webPreviewHasTheOutputSize() {
    PickerRig rig;
    rig.open(12);
    rig.combo("_videoSizeComboBox")->setEditText("640 X 360");
    QCOMPARE(rig.child<QWidget>("_webPreviewScrollAreaWidgetContents")->minimumSize(), QSize(640, 360));
    QCOMPARE(rig.child<QWidget>("_webPreviewScrollAreaWidgetContents")->maximumSize(), QSize(640, 360));
  }

  void pdfTakesItsPageSize() {
    PickerRig rig;
    const QString path = rig.pdf("two.pdf", {300, 200}, 2);
    rig.open(14);
    QCOMPARE(pageLabel(rig), QString("0 / 0"));
    rig.edit("_pdfPathLineEdit")->setText(path);
    QTRY_COMPARE(rig.outputSize(), QSize(300, 200));
    QCOMPARE(rig.combo("_videoSizeComboBox")->currentText(), QString("300 X 200"));
    QTRY_COMPARE(pageLabel(rig), QString("1 / 2"));
    QCOMPARE(rig.child<QWidget>("_pdfPreviewScrollAreaWidgetContents")->minimumSize(), QSize(300, 200));
    QCOMPARE(pdfPage(rig).pixelColor(150, 100), QColor(Qt::red));
    rig.button("_prevPDFPagePushButton")->click();
    QCOMPARE(pageLabel(rig), QString("1 / 2"));
    for (int n = 0; n < 2; ++n) {
      rig.button("_nextPDFPagePushButton")->click();
      QCOMPARE(pageLabel(rig), QString("2 / 2"));
      QCOMPARE(pdfPage(rig).pixelColor(150, 100), QColor(Qt::blue));
    }
    QVERIFY(rig.accepts());
    QCOMPARE(rig.source().pdfPath, path);
  }

  void hugePdfPageSizeIsStoredAsItIs() {
    PickerRig rig;
    rig.open(14);
    rig.edit("_pdfPathLineEdit")->setText(rig.pdf("wide.pdf", {9000, 90}, 1));
    QTRY_COMPARE(rig.outputSize(), QSize(9000, 90));
    QCOMPARE(rig.combo("_videoSizeComboBox")->currentText(), QString("9000 X 90"));
    QVERIFY(rig.accepts());
    QCOMPARE(rig.outputSize(), QSize(8192, 90));
  }

  void samePdfPathDoesNothingAndASizeReloads() {
    PickerRig rig;
    const QString path = rig.pdf("two.pdf", {300, 200}, 2);
    rig.open(14);
    rig.edit("_pdfPathLineEdit")->setText(path);
    QTRY_COMPARE(pageLabel(rig), QString("1 / 2"));
    rig.button("_nextPDFPagePushButton")->click();
    rig.picker->onTextChanged_pdfPathLineEdit(path);
    QCOMPARE(pageLabel(rig), QString("2 / 2"));
    rig.combo("_videoSizeComboBox")->setEditText("150 X 100");
    QCOMPARE(pageLabel(rig), QString("0 / 0"));
    QTRY_COMPARE(pageLabel(rig), QString("1 / 2"));
    QCOMPARE(pdfPage(rig).size(), QSize(150, 100));
    QCOMPARE(rig.outputSize(), QSize(150, 100));
  }

  void brokenPdfLeavesThePreviewBlank() {
    PickerRig rig;
    rig.open(14);
    rig.edit("_pdfPathLineEdit")->setText(rig.file("no.pdf", "%PDF-1.4 nothing"));
    QCOMPARE(pageLabel(rig), QString("0 / 0"));
    QVERIFY(pdfPage(rig).isNull());
    QCOMPARE(rig.outputSize(), QSize(1920, 1080));
    rig.button("_nextPDFPagePushButton")->click();
    rig.button("_prevPDFPagePushButton")->click();
    QCOMPARE(pageLabel(rig), QString("0 / 0"));
  }

  void pickerMayEndWhilePagesAreDrawn() {
    PickerRig rig;
    const QString path = rig.pdf("many.pdf", {300, 200}, 200);
    rig.open(14);
    rig.edit("_pdfPathLineEdit")->setText(path);
    rig.picker.reset();
    QCoreApplication::processEvents();
    rig.open(14);
    rig.edit("_pdfPathLineEdit")->setText(path);
    QTRY_COMPARE(rig.outputSize(), QSize(300, 200));
    rig.picker.reset();
    QCoreApplication::processEvents();
  }

  void anotherDocumentReplacesTheOneThatOpens() {
    PickerRig rig;
    const QString wide = rig.pdf("wide.pdf", {300, 200}, 1);
    const QString high = rig.pdf("high.pdf", {100, 200}, 2);
    rig.open(14);
    rig.edit("_pdfPathLineEdit")->setText(wide);
    rig.edit("_pdfPathLineEdit")->setText(high);
    QTRY_COMPARE(pageLabel(rig), QString("1 / 2"));
    QCOMPARE(rig.outputSize(), QSize(100, 200));
    QCOMPARE(pdfPage(rig).size(), QSize(100, 200));
  }

  void incomePathOfLettersHasNoSlash() {
    PickerRig rig;
    rig.slot.source.incomePath = "/income/0";
    rig.open(18);
    QVERIFY(rig.edit("_incomeRTMPURLLineEdit")->isReadOnly());
    QCOMPARE(rig.edit("_incomeRTMPURLLineEdit")->text(), QString("rtmp://127.0.0.1:1935/income/0"));
    rig.edit("_incomePathLineEdit")->setText("camera");
    QCOMPARE(rig.edit("_incomeRTMPURLLineEdit")->text(), QString("rtmp://127.0.0.1:1935camera"));
  }

  void incomeDecoderOfThePageOverridesTheOptions() {
    PickerRig rig;
    rig.slot.source.incomePath = "/a";
    rig.slot.source.incomeDecoder = 2;
    GDialogMediaSource& picker = rig.open(18);
    picker.onClicked_optionsPushButton();
    auto* options = picker.findChild<GDialogMediaSourceOption*>();
    QVERIFY(options);
    options->findChild<QComboBox*>("_krmpHWDecodeCheckBox")->setCurrentIndex(4);
    options->onClicked_okPushButton();
    QCOMPARE(rig.source().incomeDecoder, quint8{4});
    QVERIFY(rig.accepts());
    QCOMPARE(rig.source().incomeDecoder, quint8{2});
    QCOMPARE(rig.source().krmpDecoder, quint8{4});
  }

  void deviceIsAcceptedWithoutADevice() {
    PickerRig rig;
    rig.slot.source.videoDevName = "gone";
    rig.slot.source.videoDevId = "v4l2:gone";
    rig.open(7);
    QVERIFY(rig.waitForDevices());
    rig.combo("_videoDeviceComboBox")->clear();
    rig.combo("_audioDeviceComboBox")->clear();
    rig.combo("_videoDevFpsComboBox")->setEditText("30000 / 1001");
    rig.combo("_videoDevphysConnTypeComboBox")->setEditText("HDMI");
    rig.combo("_videoSizeComboBox")->setEditText("1280 X 9999");
    rig.combo("_audioDevRateComboBox")->setEditText("44100");
    rig.child<QCheckBox>("_videoDevDeinterlaceCheckBox")->setChecked(false);
    rig.combo("_audioProcessFilterComboBox")->setCurrentIndex(3);
    QVERIFY(rig.accepts());
    const tagKorviaFormatInfo format = rig.picker->slot().format;
    QCOMPARE(int{format.video.fpsNumerator}, 30000);
    QCOMPARE(int{format.video.fpsDenominator}, 1001);
    QCOMPARE(int{format.video.width}, 1280);
    QCOMPARE(int{format.video.height}, 8192);
    QCOMPARE(int{format.video.secondEnable}, 0);
    QCOMPARE(int{format.audio.sampleRate}, 44100);
    QCOMPARE(rig.source().videoDevConnType, QString("HDMI"));
    QCOMPARE(rig.source().videoDevName, QString());
    QCOMPARE(rig.source().videoDevId, QString());
    QCOMPARE(rig.source().audioProcessFilter, 3);
    QCOMPARE(rig.outputSize(), QSize(1280, 8192));
  }

  void deviceOfTheChosenRowIsStored() {
    PickerRig rig;
    rig.open(7);
    QVERIFY(rig.waitForDevices());
    rig.combo("_videoDeviceComboBox")->addItem("Camera", "v4l2:by-id/x");
    rig.combo("_videoDeviceComboBox")->setCurrentIndex(rig.combo("_videoDeviceComboBox")->count() - 1);
    rig.combo("_audioDeviceComboBox")->addItem("Line in", "alsa:x");
    rig.combo("_audioDeviceComboBox")->setCurrentIndex(rig.combo("_audioDeviceComboBox")->count() - 1);
    QVERIFY(rig.accepts());
    QCOMPARE(rig.source().videoDevName, QString("Camera"));
    QCOMPARE(rig.source().videoDevId, QString("v4l2:by-id/x"));
    QCOMPARE(rig.source().audioDevName, QString("Line in"));
    QCOMPARE(rig.source().audioDevId, QString("alsa:x"));
  }

  // The system may take seconds to tell its devices, and the operator may be quicker.
  void devicesOfTheRecordStandUntilTheSystemAnswers() {
    PickerRig rig;
    rig.slot.source.videoDevName = "A camera that is not here";
    rig.slot.source.videoDevId = "v4l2:x";
    rig.slot.source.sdiCardIndex = 3;
    rig.open(7);
    QCOMPARE(rig.combo("_videoDeviceComboBox")->currentText(), QString("A camera that is not here"));
    QVERIFY(rig.accepts());
    QCOMPARE(rig.source().videoDevName, QString("A camera that is not here"));
    QCOMPARE(rig.source().videoDevId, QString("v4l2:x"));
    QCOMPARE(rig.source().sdiCardIndex, 3);
    QVERIFY(rig.waitForDevices());
    QCOMPARE(rig.combo("_videoDeviceComboBox")->findText("A camera that is not here"), -1);
  }

  void sdiTextsAreStoredAsTheyStand() {
    PickerRig rig;
    rig.slot.source.sdiFormat = "2160p50";
    rig.open(8);
    QCOMPARE(rig.combo("_sdiFormatListComboBox")->currentText(), QString("2160p50"));
    QVERIFY(rig.waitForDevices());
    QCOMPARE(rig.combo("_sdiFormatListComboBox")->currentText(), QString("2160p50"));
    rig.combo("_sdiVideoSignalListComboBox")->setEditText("HDMI");
    QVERIFY(rig.accepts());
    QCOMPARE(rig.source().sdiFormat, QString("2160p50"));
    QCOMPARE(rig.source().sdiVideoSignal, QString("HDMI"));
    QCOMPARE(rig.source().sdiAudioSignal, QString("embedded"));
    QCOMPARE(rig.source().sdiCardIndex, rig.combo("_sdiInputDevListComboBox")->currentIndex());
  }

  void colorOrBars() {
    PickerRig rig;
    rig.slot.source.color = 0x80102030;
    GDialogMediaSource& picker = rig.open(9);
    QCOMPARE(rig.button("_selectColorPushButton")->text(), QString("#10203080"));
    picker.onClicked_selectColorPushButton();
    auto* dialog = picker.findChild<QColorDialog*>();
    QVERIFY(dialog);
    QVERIFY(dialog->windowFlags() & Qt::WindowStaysOnTopHint);
    QCOMPARE(dialog->currentColor().rgba(), QRgb{0x80102030});
    dialog->setCurrentColor(QColor(1, 2, 3));
    dialog->accept();
    QCOMPARE(rig.source().color, quint32{0xFF010203});
    rig.child<QRadioButton>("_colorBarRadioButton")->click();
    QVERIFY(!rig.child<QRadioButton>("_pureColorRadioButton")->isChecked());
    QVERIFY(rig.accepts());
    QCOMPARE(rig.source().colorBar, quint8{1});
  }

  void delayNeedsItsFolder() {
    PickerRig rig;
    rig.open(10);
    QCOMPARE(rig.combo("_delayChannelComboBox")->currentIndex(), -1);
    rig.edit("_delayPathLineEdit")->setText(rig.file("in the way", "x") + "/cache");
    QVERIFY(!rig.accepts());
    QCOMPARE(rig.edit("_delayPathLineEdit")->selectedText(), rig.edit("_delayPathLineEdit")->text());
    rig.edit("_delayPathLineEdit")->setText(rig.folder.filePath("new/cache"));
    QVERIFY(rig.accepts());
    QVERIFY(QDir(rig.folder.filePath("new/cache")).exists());
    // No channel was selected.
    QCOMPARE(rig.source().delayChannel, 15);
    QCOMPARE(rig.source().delayTime, 30000);
    rig.combo("_delayChannelComboBox")->setCurrentIndex(2);
    QVERIFY(rig.accepts());
    QCOMPARE(rig.source().delayChannel, 18);
  }

  void textPageFillsTheRecord() {
    PickerRig rig;
    rig.slot.source.textParam.alignment = TextAlignRight | TextAlignMiddle;
    rig.open(15);
    QCOMPARE(rig.combo("_textHorizontalAlignComboBox")->currentText(), QString("Right"));
    QCOMPARE(rig.combo("_textVerticalAlignComboBox")->currentText(), QString("Middle"));
    QCOMPARE(rig.child<QPlainTextEdit>("_textContentPlainTextEdit")->toPlainText(), QString("Sample Text"));
    rig.combo("_textHorizontalAlignComboBox")->setCurrentIndex(1);
    rig.combo("_textVerticalAlignComboBox")->setCurrentIndex(2);
    rig.combo("_textFontSizeComboBox")->setEditText("33");
    rig.combo("_textGradientDirComboBox")->setEditText("215");
    rig.combo("_textOutlineSizeComboBox")->setEditText("5");
    for (const char* flag : {"_textBoldCheckBox", "_textWrapCheckBox", "_textOutlineCheckBox"})
      rig.child<QCheckBox>(flag)->click();
    rig.child<QPlainTextEdit>("_textContentPlainTextEdit")->setPlainText("News");
    QVERIFY(rig.accepts());
    const tagKorviaShowRenderTextParam& param = rig.source().textParam;
    QCOMPARE(param.alignment, qint32{TextAlignCenter | TextAlignBottom});
    QCOMPARE(param.fontSize, 33);
    QCOMPARE(param.fontName, QString("Arial"));
    QCOMPARE(param.gradientAngle, 215);
    QCOMPARE(param.outlineSize, 5);
    QVERIFY(param.bold && param.wrap && param.outline && !param.italic && !param.underline &&
            !param.vertical);
    QCOMPARE(param.text, QString("News"));
    rig.child<QPlainTextEdit>("_textContentPlainTextEdit")->clear();
    QVERIFY(!rig.accepts());
  }

  void textPreviewHasTheOutputSize() {
    PickerRig rig;
    rig.open(15);
    rig.combo("_videoSizeComboBox")->setEditText("320 X 200");
    auto* contents = rig.child<QWidget>("_textPreviewScrollAreaWidgetContents");
    QCOMPARE(contents->minimumSize(), QSize(320, 200));
    const auto* paint = contents->findChild<GWidgetImagePaint*>();
    QCOMPARE(paint->image().size(), QSize(320, 200));
    const QImage before = paint->image();
    rig.child<QPlainTextEdit>("_textContentPlainTextEdit")->setPlainText("Other");
    QVERIFY(paint->image() != before);
    rig.combo("_videoSizeComboBox")->setEditText("x");
    QVERIFY(paint->image().isNull());
  }

  void textColorIsPickedInTheEditor() {
    PickerRig rig;
    GDialogMediaSource& picker = rig.open(15);
    picker.onClicked_textOutlineColorPushButton();
    auto* editor = picker.findChild<QColEdit*>();
    QVERIFY(editor);
    QCOMPARE(editor->color().rgba(), QRgb{0xFF000000});
    editor->setColor(QColor(1, 2, 3, 4));
    editor->accept();
    QCOMPARE(rig.source().textParam.outlineColor, quint32{0x04010203});
    QCOMPARE(rig.button("_textOutlineColorPushButton")->text(), QString("#01020304"));
  }

  void textFileReplacesTheContent() {
    PickerRig rig;
    GDialogMediaSource& picker = rig.open(15);
    QVERIFY(rig.edit("_textPathLineEdit")->isReadOnly());
    const QString path = rig.file("a.txt", "from the file");
    picker.onClicked_browsTextFilePushButton();
    QVERIFY(chooseFiles(picker, {path}));
    QCOMPARE(rig.edit("_textPathLineEdit")->text(), path);
    QCOMPARE(rig.source().textParam.text, QString("from the file"));
    picker.onClicked_browsTextFilePushButton();
    QVERIFY(chooseFiles(picker, {rig.folder.filePath("missing.txt")}));
    QCOMPARE(rig.child<QPlainTextEdit>("_textContentPlainTextEdit")->toPlainText(), QString());
    QVERIFY(!rig.accepts());
  }

  void pickedFilesAreProbed() {
    PickerRig rig;
    const QString first = rig.picture("a.png", {320, 180});
    const QString second = rig.picture("b.png", {640, 480});
    GDialogMediaSource& picker = rig.open(5);
    picker.onClicked_openImagePushButton();
    QVERIFY(chooseFiles(picker, {first}));
    QCOMPARE(rig.edit("_imagePathLineEdit")->text(), first);
    QCOMPARE(rig.combo("_videoSizeComboBox")->currentText(), QString("320 X 180"));
    QCOMPARE(rig.outputSize(), QSize(320, 180));
    QCOMPARE(QDir::current(), QDir(rig.folder.path()));
    picker.onClicked_addMovieListItemPushButton();
    QVERIFY(chooseFiles(picker, {second, first}));
    QCOMPARE(rig.rows("_movieListListWidget"), (QStringList{second, first}));
    QCOMPARE(rig.outputSize(), QSize(640, 480));
    picker.onClicked_openMoviePushButton();
    QVERIFY(chooseFiles(picker, {rig.file("no.mp4", "nothing")}));
    QCOMPARE(rig.outputSize(), QSize(640, 480));
  }

  void screenGivesItsSize() {
    PickerRig rig;
    rig.open(17);
    rig.combo("_screenIndicatorComboBox")->setCurrentIndex(3);
    QCOMPARE(rig.outputSize(), QSize(1920, 1080));
    rig.combo("_screenIndicatorComboBox")->setCurrentIndex(0);
    QCOMPARE(rig.outputSize(), QGuiApplication::primaryScreen()->geometry().size());
    rig.combo("_screenIndicatorComboBox")->setCurrentIndex(6);
    QVERIFY(rig.accepts());
    QCOMPARE(rig.source().screenIndex, 6);
  }

 private:
  static QString pageLabel(const PickerRig& rig) { return rig.child<QLabel>("_pdfPageInfoLabel")->text(); }
  static QImage pdfPage(const PickerRig& rig) {
    return rig.child<QWidget>("_pdfPreviewScrollAreaWidgetContents")
        ->findChild<GWidgetImagePaint*>()
        ->image();
  }
};

QTEST_MAIN(MediaSourcePagesTest)
#include "tst_media_source_pages.moc"
