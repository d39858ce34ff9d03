// The picker: its kinds and lists, what it shows of a slot and stores on OK, sizes, histories, dropped files.
#include <QButtonGroup>
#include <QCheckBox>
#include <QFileDialog>
#include <QMessageBox>
#include <QMimeData>
#include <QRadioButton>
#include <QtTest>

#include "KorviaCommonUtil.h"
#include "PickerRig.h"

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

  void droppedFilmsReplaceAListThatIsNotOnTheScreen() {
    PickerRig rig;
    rig.slot.source.movieList = QStringList{"/old.mp4"};
    GDialogMediaSource& picker = rig.open(1);
    picker.openFiles({"/a.mp4", "/b.mkv"});
    QCOMPARE(rig.rows("_movieListListWidget"), (QStringList{"/a.mp4", "/b.mkv"}));
    picker.openFiles({"/c.mp4"});
    QCOMPARE(rig.rows("_movieListListWidget"), (QStringList{"/a.mp4", "/b.mkv", "/c.mp4"}));
  }

  void typedTextIsNotCompleted_data() {
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("combo");
    QTest::addColumn<QString>("typed");
    QTest::newRow("font size") << 15 << "_textFontSizeComboBox"
                               << "1";
    QTest::newRow("cache") << 3 << "_urlCacheComboBox"
                           << "100";
    QTest::newRow("delay") << 10 << "_delayCacheComboBox"
                           << "3000";
    QTest::newRow("address") << 3 << "_urlComboBox"
                             << "rtmp://127.0.0.1:1935/live";
  }
  void typedTextIsNotCompleted() {
    QFETCH(int, kind);
    QFETCH(QString, combo);
    QFETCH(QString, typed);
    PickerRig rig;
    rig.open(kind).show();
    QVERIFY(QTest::qWaitForWindowActive(rig.picker.get()));
    QComboBox* box = rig.combo(qPrintable(combo));
    box->setFocus();
    box->clearEditText();
    QTest::keyClicks(box->lineEdit(), typed);
    QCOMPARE(box->currentText(), typed);
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

  void staysOnTopAndBlocksNothing() {
    PickerRig rig;
    GDialogMediaSource& picker = rig.open(1);
    QVERIFY(picker.windowFlags() & Qt::WindowStaysOnTopHint);
    QCOMPARE(picker.windowModality(), Qt::WindowModal);
  }
};

QTEST_MAIN(DialogMediaSourceTest)
#include "tst_dialog_media_source.moc"
