// The picker: what it shows of a slot, what each kind stores on OK, and what its pages do.
#include <QButtonGroup>
#include <QCheckBox>
#include <QColorDialog>
#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QScreen>
#include <QtTest>

#include "KorviaCommonUtil.h"
#include "PickerRig.h"
#include "QColEdit.h"
#include "services/GWidgetImagePaint.h"
#include "sources/GDialogMediaSourceOption.h"

namespace {

struct Kind {
  qint32 kind;
  const char* label;
  const char* button;
  const char* page;
  bool isVisible;
  bool hasIcon;
};

constexpr Kind kKinds[] = {
    {1, "Movie", "_moviePushButton", "_moviePage", true, true},
    {2, "MovieList", "_movieListPushButton", "_movieListPage", true, true},
    {3, "URL", "_urlPushButton", "_urlPage", true, true},
    {4, "KRMP", "_krmpPushButton", "_krmpPage", false, true},
    {18, "Income", "_incomePushButton", "_incomePage", true, false},
    {5, "Image", "_imagePushButton", "_imagePage", true, true},
    {6, "ImageList", "_imageListPushButton", "_imageListPage", true, true},
    {7, "Device", "_devicePushButton", "_devicePage", true, true},
    {8, "3D Device", "_3ddevicePushButton", "_3ddevicePage", false, false},
    {9, "Color", "_colorPushButton", "_colorPage", true, true},
    {10, "Delay", "_delayPushButton", "_delayPage", false, true},
    {11, "Flash", "_flashPushButton", "_flashPage", false, true},
    {12, "Web", "_webPushButton", "_webPage", true, true},
    {13, "Office", "_officePushButton", "_officePage", false, true},
    {14, "PDF", "_pdfPushButton", "_pdfPage", true, true},
    {15, "Text", "_textPushButton", "_textPage", false, true},
    {16, "Window", "_windowPushButton", "_windowPage", true, true},
    {17, "Screen", "_monitorPushButton", "_monitorPage", true, true},
};

QStringList textsOf(const QComboBox* combo) {
  QStringList texts;
  for (int row = 0; row < combo->count(); ++row)
    texts.append(combo->itemText(row));
  return texts;
}

QSize pairSize(const char* text) {
  return KorviaCommonUtil::splitePairValue(text, "X").toSize();
}

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

class DialogMediaSourceTest : public QObject {
  Q_OBJECT

 private slots:
  void everyKindHasItsButtonAndPage() {
    PickerRig rig;
    for (const Kind& kind : kKinds) {
      GDialogMediaSource& picker = rig.open(kind.kind);
      QCOMPARE(picker.windowTitle(), QString("Open Media"));
      QPushButton* button = rig.button(kind.button);
      QCOMPARE(button->text(), QString(kind.label));
      QCOMPARE(!button->isHidden(), kind.isVisible);
      QCOMPARE(!button->icon().isNull(), kind.hasIcon);
      QVERIFY(button->isChecked());
      QCOMPARE(button->styleSheet(), QString("QPushButton:checked{\n\tbackground-color: rgb(0, 85, 0);\n}"));
      QCOMPARE(rig.page(), QString(kind.page));
      QCOMPARE(rig.source().kind, kind.kind);
    }
  }

  void buttonsChangeThePageAndStayExclusive() {
    PickerRig rig;
    rig.slot.source.moviePath = "/kept.mp4";
    rig.open(1);
    for (const Kind& kind : kKinds) {
      rig.button(kind.button)->click();
      QCOMPARE(rig.page(), QString(kind.page));
      QCOMPARE(rig.source().kind, kind.kind);
      QCOMPARE(rig.picker->findChild<QButtonGroup*>()->checkedButton(), rig.button(kind.button));
    }
    QCOMPARE(rig.source().moviePath, QString("/kept.mp4"));
  }

  void unknownKindOpensAsMovie() {
    PickerRig rig;
    for (const qint32 kind : {0, -1, 19}) {
      rig.open(kind);
      QCOMPARE(rig.source().kind, 1);
      QCOMPARE(rig.page(), QString("_moviePage"));
    }
  }

  void keepsWhoTheSlotIs() {
    PickerRig rig;
    rig.slot.id = QUuid::createUuid();
    rig.slot.name = "name";
    rig.slot.source.moviePath = "/a.mp4";
    rig.open(1);
    QVERIFY(rig.accepts());
    QCOMPARE(rig.picker->slot().id, rig.slot.id);
    QCOMPARE(rig.picker->slot().name, QString("name"));
  }

  void listsOfValues() {
    PickerRig rig;
    rig.open(1);
    const QStringList sizes = textsOf(rig.combo("_videoSizeComboBox"));
    QCOMPARE(sizes.size(), 32);
    QCOMPARE(sizes.first(), QString("640  X 480"));
    QVERIFY(sizes.contains("1300 X 768"));
    QVERIFY(sizes.contains("1336 X 768"));
    QCOMPARE(sizes.last(), QString("7680 X 4320"));
    QCOMPARE(textsOf(rig.combo("_videoDevFpsComboBox")),
             (QStringList{"1  / 1", "5  / 1", "10 / 1", "15 / 1", "20 / 1", "25 / 1", "30 / 1", "50 / 1",
                          "60 / 1"}));
    QCOMPARE(textsOf(rig.combo("_audioDevRateComboBox")),
             (QStringList{"8000", "16000", "22050", "44100", "48000"}));
    QCOMPARE(textsOf(rig.combo("_videoDevphysConnTypeComboBox")),
             (QStringList{"Default", "Tuner", "Composite", "SVideo", "SDI", "Component", "HDMI"}));
    QCOMPARE(textsOf(rig.combo("_audioProcessFilterComboBox")),
             (QStringList{"None", "Left Channel To Steteo", "Right Channel To Steteo", "Swap Channel"}));
    QCOMPARE(textsOf(rig.combo("_sdiVideoSignalListComboBox")),
             (QStringList{"SDI", "HDMI", "OpticalSDI", "Component", "Composite", "SVideo"}));
    QCOMPARE(textsOf(rig.combo("_sdiAudioSignalListComboBox")),
             (QStringList{"embedded", "aesebu", "analog"}));
    QCOMPARE(textsOf(rig.combo("_urlComboBox")),
             (QStringList{"http://127.0.0.1:8080/live/0", "udp://@234.0.0.1:7000",
                          "rtmp://127.0.0.1:1935/live/0", "rtsp://127.0.0.1:554/live/0"}));
    QCOMPARE(textsOf(rig.combo("_urlCacheComboBox")),
             (QStringList{"0", "200", "500", "800", "1000", "1500", "2000"}));
    QCOMPARE(textsOf(rig.combo("_krmpComboBox")), (QStringList{"krmp://"}));
    QCOMPARE(textsOf(rig.combo("_incomeHWDecodeCheckBox")),
             (QStringList{"Software", "CUDA", "QuickSync", "DXVA2CopyBack", "DXVA2Native"}));
    QCOMPARE(textsOf(rig.combo("_delayChannelComboBox")).first(), QString("Media - 0"));
    QCOMPARE(textsOf(rig.combo("_delayChannelComboBox")).last(), QString("Media - 7"));
    QCOMPARE(textsOf(rig.combo("_delayCacheComboBox")),
             (QStringList{"5000", "10000", "15000", "20000", "25000", "30000", "35000", "40000"}));
    QCOMPARE(textsOf(rig.combo("_textFontSizeComboBox")),
             (QStringList{"14", "24", "32", "40", "56", "64", "76", "128", "256", "512", "1024"}));
    QCOMPARE(textsOf(rig.combo("_textOutlineSizeComboBox")),
             (QStringList{"0", "1", "2", "3", "4", "5", "6", "7"}));
    QCOMPARE(textsOf(rig.combo("_textGradientDirComboBox")),
             (QStringList{"0", "45", "90", "135", "180", "215"}));
    QCOMPARE(textsOf(rig.combo("_screenIndicatorComboBox")),
             (QStringList{"0", "1", "2", "3", "4", "5", "6"}));
    for (const char* typed : {"_videoSizeComboBox", "_videoDevFpsComboBox", "_audioDevRateComboBox",
                              "_videoDevphysConnTypeComboBox", "_urlComboBox", "_urlCacheComboBox",
                              "_krmpComboBox", "_delayCacheComboBox", "_textFontSizeComboBox"})
      QVERIFY2(rig.combo(typed)->isEditable(), typed);
    QVERIFY(!rig.combo("_audioProcessFilterComboBox")->isEditable());
  }

  void showsTheDefaults() {
    PickerRig rig;
    rig.open(7);
    QCOMPARE(rig.combo("_videoSizeComboBox")->currentText(), QString("1920 X 1080"));
    QCOMPARE(rig.combo("_videoDevFpsComboBox")->currentText(), QString("25 / 1"));
    QCOMPARE(rig.combo("_audioDevRateComboBox")->currentText(), QString("48000"));
    QCOMPARE(rig.combo("_urlCacheComboBox")->currentText(), QString("1000"));
    QCOMPARE(rig.combo("_urlComboBox")->currentText(), QString());
    QCOMPARE(rig.combo("_sdiFormatListComboBox")->currentText(), QString("1080p25"));
    QCOMPARE(rig.combo("_sdiVideoSignalListComboBox")->currentText(), QString("SDI"));
    QCOMPARE(rig.combo("_sdiAudioSignalListComboBox")->currentText(), QString("embedded"));
    QCOMPARE(rig.combo("_delayCacheComboBox")->currentText(), QString("30000"));
    QVERIFY(rig.child<QCheckBox>("_videoDevDeinterlaceCheckBox")->isChecked());
    QVERIFY(rig.child<QRadioButton>("_pureColorRadioButton")->isChecked());
    QCOMPARE(rig.button("_selectColorPushButton")->text(), QString("#FFFFFFFF"));
    QCOMPARE(rig.list("_hwndListWidget")->count(), 0);
    QVERIFY(rig.child<QWidget>("widget_income")->isHidden());
    for (const char* box : {"_incomeSyncPlaybackCheckBox", "_incomeRealtimePlaybackCheckBox",
                            "_krmpSyncPlaybackCheckBox", "_krmpRealtimePlaybackCheckBox"})
      QVERIFY2(rig.child<QWidget>(box)->isHidden(), box);
  }

  void pathKindsStoreAndRemember_data() {
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("key");
    QTest::newRow("movie") << 1 << "_moviePathLineEdit"
                           << "Kvmix_movieHistory";
    QTest::newRow("url") << 3 << "_urlComboBox"
                         << "Kvmix_urlHistory";
    QTest::newRow("krmp") << 4 << "_krmpComboBox"
                          << "Kvmix_krmpHistory";
    QTest::newRow("image") << 5 << "_imagePathLineEdit"
                           << "Kvmix_imageHistory";
    QTest::newRow("flash") << 11 << "_flashPathLineEdit"
                           << "Kvmix_flashHistory";
    QTest::newRow("web") << 12 << "_webPathLineEdit"
                         << "Kvmix_webHistory";
    QTest::newRow("pdf") << 14 << "_pdfPathLineEdit"
                         << "Kvmix_pdfHistory";
    QTest::newRow("income") << 18 << "_incomePathLineEdit" << QString();
  }
  void pathKindsStoreAndRemember() {
    QFETCH(int, kind);
    QFETCH(QString, field);
    QFETCH(QString, key);
    PickerRig rig;
    rig.open(kind);
    const auto type = [&rig, &field](const QString& text) {
      if (auto* combo = rig.picker->findChild<QComboBox*>(field))
        combo->setEditText(text);
      else
        rig.picker->findChild<QLineEdit*>(field)->setText(text);
    };
    type(QString());
    QVERIFY(!rig.accepts());
    type("http:x");
    QVERIFY(rig.accepts());
    const tagKorviaShowSourceInfo& info = rig.source();
    const QMap<int, QString> stored{{1, info.moviePath}, {3, info.url},        {4, info.krmpUrl},
                                    {5, info.imagePath}, {11, info.flashPath}, {12, info.webUrl},
                                    {14, info.pdfPath},  {18, info.incomePath}};
    QCOMPARE(stored.value(kind), QString("http:x"));
    QCOMPARE(info.krmpRealtime, quint8(kind == 4));
    QCOMPARE(info.incomeRealtime, quint8(kind == 18));
    if (!key.isEmpty())
      QCOMPARE(PickerRig::stored(qPrintable(key)), QStringList{"http:x"});
    QCOMPARE(QSettings("KorviaMix", QString()).allKeys().size(), key.isEmpty() ? 0 : 1);
  }

  void listsReplaceWhatWasThere_data() {
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("list");
    QTest::newRow("movies") << 2 << "_movieListListWidget";
    QTest::newRow("images") << 6 << "_imageListListWidget";
  }
  void listsReplaceWhatWasThere() {
    QFETCH(int, kind);
    QFETCH(QString, list);
    PickerRig rig;
    (kind == 2 ? rig.slot.source.movieList : rig.slot.source.imageList) = QStringList{"/a", "/b", "/c"};
    rig.open(kind);
    auto* widget = rig.picker->findChild<QListWidget*>(list);
    QCOMPARE(widget->dragDropMode(), QAbstractItemView::InternalMove);
    // As a drag of the last row to the top does.
    widget->insertItem(0, widget->takeItem(2));
    QVERIFY(rig.accepts());
    QCOMPARE(kind == 2 ? rig.source().movieList : rig.source().imageList, (QStringList{"/c", "/a", "/b"}));
    rig.open(kind);
    rig.picker->findChild<QListWidget*>(list)->clear();
    QVERIFY(!rig.accepts());
  }

  void removeTakesTheCurrentRowOut() {
    PickerRig rig;
    rig.slot.source.movieList = QStringList{"/a", "/b", "/c"};
    rig.open(2);
    rig.list("_movieListListWidget")->setCurrentRow(-1);
    rig.button("_delMovieListItemPushButton")->click();
    QCOMPARE(rig.rows("_movieListListWidget").size(), 3);
    rig.list("_movieListListWidget")->setCurrentRow(1);
    rig.button("_delMovieListItemPushButton")->click();
    QCOMPARE(rig.rows("_movieListListWidget"), (QStringList{"/a", "/c"}));
  }

  void clearOfAListAsks_data() {
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("question");
    QTest::newRow("movies") << 2 << "_clearMovieListItemPushButton"
                            << "Are you sure to clear the movie list ?";
    QTest::newRow("images") << 6 << "_clearImageListItemPushButton"
                            << "Are you sure to clear the image list ?";
  }
  void clearOfAListAsks() {
    QFETCH(int, kind);
    QFETCH(QString, button);
    QFETCH(QString, question);
    PickerRig rig;
    rig.slot.source.movieList = rig.slot.source.imageList = QStringList{"/a", "/b"};
    rig.open(kind);
    const char* list = kind == 2 ? "_movieListListWidget" : "_imageListListWidget";
    for (const auto answer : {QMessageBox::No, QMessageBox::Yes}) {
      rig.picker->findChild<QPushButton*>(button)->click();
      auto* box = rig.picker->findChild<QMessageBox*>();
      QVERIFY(box);
      QCOMPARE(box->windowTitle(), QString("Message"));
      QCOMPARE(box->text(), question);
      QCOMPARE(box->standardButtons(), QMessageBox::Yes | QMessageBox::No);
      box->button(answer)->click();
      QTRY_VERIFY(!rig.picker->findChild<QMessageBox*>());
      QCOMPARE(rig.list(list)->count(), answer == QMessageBox::Yes ? 0 : 2);
    }
  }

  void oversizedSizeIsCapped() {
    PickerRig rig;
    rig.open(9);
    rig.combo("_videoSizeComboBox")->setEditText("9000 X 720");
    QCOMPARE(rig.outputSize(), QSize(8192, 720));
    rig.combo("_videoSizeComboBox")->setEditText("1280 X 9000");
    QVERIFY(rig.accepts());
    QCOMPARE(rig.outputSize(), QSize(1280, 8192));
  }

  void sizeWithoutAnXIsThatOfThePair() {
    PickerRig rig;
    rig.open(9);
    rig.combo("_videoSizeComboBox")->setEditText("1280");
    QCOMPARE(rig.outputSize(), pairSize("1280"));
    QVERIFY(rig.accepts());
    QCOMPARE(rig.outputSize(), pairSize("1280"));
  }

  void knownMovieKeepsItsRow() {
    PickerRig rig;
    PickerRig::store("Kvmix_movieHistory", {"/a.mp4", "/b.mp4"});
    rig.open(1);
    rig.edit("_moviePathLineEdit")->setText("/b.mp4");
    QVERIFY(rig.accepts());
    QCOMPARE(rig.rows("_movieHistoryListWidget"), (QStringList{"/a.mp4", "/b.mp4"}));
    QCOMPARE(PickerRig::stored("Kvmix_movieHistory"), (QStringList{"/a.mp4", "/b.mp4"}));
  }

  void clearedHistoriesHoldWhatTheRecordHolds() {
    PickerRig rig;
    PickerRig::store("Kvmix_movieHistory", {"/a.mp4", "/b.mp4"});
    rig.slot.source.webUrl = "http://a";
    rig.open(1);
    rig.picker->onClicked_clearHistoryPushButton();
    const QStringList keys{"movie", "url", "krmp", "image", "flash", "web", "pdf"};
    for (const QString& key : keys) {
      const QString expected = key == "web" ? "http://a" : "";
      QCOMPARE(rig.rows(qPrintable(QString("_%1HistoryListWidget").arg(key))), QStringList{expected});
      QCOMPARE(PickerRig::stored(qPrintable(QString("Kvmix_%1History").arg(key))), QStringList{expected});
    }
  }

  void pressOnAHistoryRowFillsTheField_data() {
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("list");
    QTest::addColumn<QString>("field");
    for (const char* kind : {"movie", "image", "flash", "web", "pdf"})
      QTest::newRow(kind) << QString("Kvmix_%1History").arg(kind) << QString("_%1HistoryListWidget").arg(kind)
                          << QString("_%1PathLineEdit").arg(kind);
    for (const char* kind : {"url", "krmp"})
      QTest::newRow(kind) << QString("Kvmix_%1History").arg(kind) << QString("_%1HistoryListWidget").arg(kind)
                          << QString("_%1ComboBox").arg(kind);
  }
  void pressOnAHistoryRowFillsTheField() {
    QFETCH(QString, key);
    QFETCH(QString, list);
    QFETCH(QString, field);
    PickerRig rig;
    PickerRig::store(qPrintable(key), {"one", "two"});
    rig.open(1);
    auto* widget = rig.picker->findChild<QListWidget*>(list);
    emit widget->itemPressed(widget->item(1));
    const auto* combo = rig.picker->findChild<QComboBox*>(field);
    QCOMPARE(combo ? combo->currentText() : rig.picker->findChild<QLineEdit*>(field)->text(), QString("two"));
  }

  void doubleClickOnAHistoryRowAccepts() {
    PickerRig rig;
    PickerRig::store("Kvmix_movieHistory", {"/a.mp4", "/b.mp4"});
    GDialogMediaSource& picker = rig.open(1);
    picker.show();
    QListWidget* list = rig.list("_movieHistoryListWidget");
    const QPoint row = list->visualItemRect(list->item(1)).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::NoModifier, row);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, Qt::NoModifier, row);
    QCOMPARE(picker.result(), int{QDialog::Accepted});
    QCOMPARE(rig.source().moviePath, QString("/b.mp4"));
  }

  void enterAcceptsAndEscapeCancels() {
    PickerRig rig;
    rig.slot.source.movieList = QStringList{"/a"};
    for (const char* name : {"_movieListListWidget", "_videoSizeComboBox", "_addMovieListItemPushButton"}) {
      GDialogMediaSource& picker = rig.open(2);
      picker.show();
      auto* widget = rig.child<QWidget>(name);
      widget->setFocus();
      QTest::keyClick(widget, Qt::Key_Return);
      QVERIFY2(picker.result() == QDialog::Accepted && !picker.findChild<QFileDialog*>(), name);
    }
    GDialogMediaSource& picker = rig.open(2);
    picker.show();
    QTest::keyClick(rig.list("_movieListListWidget"), Qt::Key_Escape);
    QVERIFY(!picker.isVisible());
    QCOMPARE(picker.result(), int{QDialog::Rejected});
  }

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
    QCOMPARE(rig.child<QLabel>("_webView")->text(), stored);
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

  void sdiTextsAreStoredAsTheyStand() {
    PickerRig rig;
    rig.slot.source.sdiFormat = "2160p50";
    rig.open(8);
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

  void droppedFilesChooseTheirPage() {
    PickerRig rig;
    GDialogMediaSource& picker = rig.open(9);
    const QString picture = rig.picture("a.png", {320, 180});
    picker.openFiles({picture});
    QCOMPARE(rig.page(), QString("_imagePage"));
    QCOMPARE(rig.edit("_imagePathLineEdit")->text(), picture);
    picker.openFiles({"/a.mp4", "/b.mkv"});
    QCOMPARE(rig.page(), QString("_movieListPage"));
    picker.openFiles({"/c.mp4"});
    QCOMPARE(rig.rows("_movieListListWidget"), (QStringList{"/a.mp4", "/b.mkv", "/c.mp4"}));
    picker.openFiles({rig.file("a.txt", "dropped")});
    QCOMPARE(rig.page(), QString("_textPage"));
    QCOMPARE(rig.source().textParam.text, QString("dropped"));
    picker.openFiles({});
    QCOMPARE(rig.page(), QString("_textPage"));
  }

  void dropOnAFieldReachesThePicker() {
    PickerRig rig;
    GDialogMediaSource& picker = rig.open(1);
    picker.show();
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(rig.file("a.mp4", "x"))});
    for (const auto* field : picker.findChildren<QLineEdit*>())
      QVERIFY2(!field->acceptDrops(), qPrintable(field->objectName()));
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&picker, &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&picker, &drop);
    QCOMPARE(rig.edit("_moviePathLineEdit")->text(), rig.folder.filePath("a.mp4"));
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

  void staysOnTopAndBlocksNothing() {
    PickerRig rig;
    GDialogMediaSource& picker = rig.open(1);
    QVERIFY(picker.windowFlags() & Qt::WindowStaysOnTopHint);
    QCOMPARE(picker.windowModality(), Qt::WindowModal);
  }

 private:
  static QString pageLabel(const PickerRig& rig) { return rig.child<QLabel>("_pdfPageInfoLabel")->text(); }
  static QImage pdfPage(const PickerRig& rig) {
    return rig.child<QWidget>("_pdfPreviewScrollAreaWidgetContents")
        ->findChild<GWidgetImagePaint*>()
        ->image();
  }
};

QTEST_MAIN(DialogMediaSourceTest)
#include "tst_dialog_media_source.moc"
