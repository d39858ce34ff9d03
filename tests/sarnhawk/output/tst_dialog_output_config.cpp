// The output dialog: what it edits, and what the console does when it is accepted.
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QtTest>

#include "ConsoleDesk.h"
#include "KorviaMetaType.h"
#include "KorviaShowEvents.h"
#include "PlainConsole.h"
#include "output/GDialogOutputConfig.h"

namespace {

/// A desk whose output dialog is open.
class DialogDesk : public ConsoleDesk {
 public:
  DialogDesk() {
    isOpen = start();
    show.clearEvents();
    console->savedChanges.clear();
    console->showOutputConfig();
    dialog = dialogs().value(0);
  }

  static QList<GDialogOutputConfig*> dialogs() {
    QList<GDialogOutputConfig*> found;
    for (QWidget* window : QApplication::topLevelWidgets()) {
      if (auto* dialog = qobject_cast<GDialogOutputConfig*>(window))
        found.append(dialog);
    }
    return found;
  }
  template <class T>
  T* field(const char* name) const {
    return dialog->findChild<T*>(name);
  }
  void press(const char* button) {
    field<QPushButton>(button)->click();
    settle();
  }
  tagKorviaShowOutputParam& param() const { return console->getConfig()->outputParam; }

  bool isOpen = false;
  QPointer<GDialogOutputConfig> dialog;
};

}  // namespace

class DialogOutputConfigTest : public QObject {
  Q_OBJECT

 private slots:
  void looksLikeItself() {
    PlainConsole console;
    const GDialogOutputConfig dialog(&console);
    QCOMPARE(dialog.windowTitle(), QString("Output Config"));
    QCOMPARE(dialog.size(), QSize(702, 280));
    QVERIFY(dialog.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    const auto* tabs = dialog.findChild<QTabWidget*>("_outputTabWidget");
    QCOMPARE(tabs->count(), 1);
    QCOMPARE(tabs->tabText(0), QString("Output - PGM"));
    QCOMPARE(dialog.findChild<QPushButton*>("_okPushButton")->text(), QString("OK"));
    QCOMPARE(dialog.findChild<QPushButton*>("_cancelPushButton")->text(), QString("Cancel"));
  }

  void allPagesFitTheSize() {
    DialogDesk desk;
    QVERIFY(QTest::qWaitForWindowExposed(desk.dialog));
    auto* tabs = desk.field<QTabWidget>("_netOutputTabWidget");
    // A page asks for its room when it is shown first.
    for (int tab = 0; tab < tabs->count(); ++tab) {
      tabs->setCurrentIndex(tab);
      desk.settle();
      QCOMPARE(desk.dialog->size(), QSize(702, 280));
    }
    for (auto* button : desk.field<QFrame>("_typeFrame")->findChildren<QPushButton*>()) {
      button->click();
      desk.settle();
      QCOMPARE(desk.dialog->size(), QSize(702, 280));
    }
  }

  void editsACopy() {
    PlainConsole console;
    console.config.outputParam.items[OutputSlotStream].ndiName = "studio";
    const tagKorviaShowOutputParam before = console.config.outputParam;
    GDialogOutputConfig dialog(&console);
    QVERIFY(dialog.param() == before);
    dialog.findChild<QLineEdit*>("_ndiNameLineEdit")->setText("stage");
    dialog.onClicked_okPushButton();
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(dialog.param().items[OutputSlotStream].ndiName, QString("stage"));
    QVERIFY(console.config.outputParam == before);
  }

  void acceptedSettingsAreTakenOverAndTold() {
    DialogDesk desk;
    desk.field<QCheckBox>("_enableNDIOutputCheckBox")->setChecked(true);
    desk.field<QLineEdit>("_recordPathLineEdit")->setText("d:\\shows\\");
    desk.press("_okPushButton");
    QCOMPARE(desk.param().items[OutputSlotStream].ndiEnable, quint8{1});
    QCOMPARE(desk.param().items[OutputSlotRecord].recordPath, QString("d:\\shows\\"));
    QCOMPARE(desk.param().items[OutputSlotRecord].recordActive, quint8{1});
    QCOMPARE(desk.console->savedChanges, (SavedChanges{{0x20, -1}}));
    QTRY_VERIFY(!desk.dialog);
  }

  void directOutputsFollowTheirBoxesAtOnce() {
    DialogDesk desk;
    desk.field<QCheckBox>("_enableVirtualCameraCheckBox")->setChecked(true);
    desk.field<QCheckBox>("_enableSDIOutputCheckBox")->setChecked(true);
    desk.field<QLineEdit>("_ndiNameLineEdit")->setText("stage");
    desk.press("_okPushButton");
    QCOMPARE(desk.show.eventIds(),
             (QList<quint64>{ShowEventStartVirtualCamera, ShowEventStopNDI, ShowEventStartSDI}));
    const auto started = desk.show.eventsOf(ShowEventStartSDI);
    QCOMPARE(started[0].args[0].toInt(), 0);
    const auto sent = fromVariant<tagKorviaShowOutputParam>(started[0].args[1]);
    QVERIFY(sent == desk.param());
    QCOMPARE(sent.items[OutputSlotStream].ndiName, QString("stage"));
  }

  void okWithoutAnEditTellsTheDirectOutputsAgain() {
    DialogDesk desk;
    desk.press("_okPushButton");
    QCOMPARE(desk.show.eventIds(),
             (QList<quint64>{ShowEventStopVirtualCamera, ShowEventStopNDI, ShowEventStopSDI}));
  }

  void cancelLeavesEverything() {
    DialogDesk desk;
    const tagKorviaShowOutputParam before = desk.param();
    desk.field<QLineEdit>("_recordPathLineEdit")->setText("d:\\shows\\");
    desk.field<QComboBox>("_recordVideoSizeComboBox")->setCurrentIndex(0);
    desk.press("_cancelPushButton");
    QVERIFY(desk.param() == before);
    const qint32 width = desk.console->getConfig()->engineInfo.outputFormat[OutputSlotRecord].width;
    QCOMPARE(width, 1920);
    QVERIFY(desk.show.events().empty());
    QVERIFY(desk.console->savedChanges.isEmpty());
    QTRY_VERIFY(!desk.dialog);
  }

  void sizeIsStoredBeforeTheDialogIsAccepted() {
    PlainConsole console;
    GDialogOutputConfig dialog(&console);
    dialog.findChild<QComboBox*>("_recordVideoSizeComboBox")->setCurrentIndex(0);
    qint32 width = 0;
    bool isParamOld = false;
    connect(&dialog, &QDialog::accepted, &dialog, [&] {
      width = console.config.engineInfo.outputFormat[OutputSlotRecord].width;
      isParamOld = console.config.outputParam.items[OutputSlotRecord].recordActive == 0;
    });
    dialog.onClicked_okPushButton();
    QCOMPARE(width, 640);
    QVERIFY(isParamOld);
  }

  void deskStaysUsableAndTheSecondClickRaises() {
    DialogDesk desk;
    QVERIFY(desk.dialog->isVisible());
    QVERIFY(!desk.dialog->parent());
    QCOMPARE(desk.dialog->windowModality(), Qt::WindowModal);
    desk.console->showOutputConfig();
    QCOMPARE(DialogDesk::dialogs().size(), 1);
    QTest::mouseClick(desk.child<QPushButton>("_startRecordPushButton"), Qt::LeftButton);
    desk.settle();
    QCOMPARE(desk.show.count(ShowEventStartOutput), 1);
  }

  void closingTheFrameClosesTheDialog() {
    DialogDesk desk;
    desk.console->hideAll();
    QTRY_VERIFY(!desk.dialog);
    QVERIFY(desk.show.events().empty());
  }

  void consoleEndsWhileTheDialogIsOpen() {
    QPointer<GDialogOutputConfig> dialog;
    {
      const DialogDesk desk;
      dialog = desk.dialog;
      QVERIFY(dialog);
    }
    QVERIFY(!dialog);
  }
};

QTEST_MAIN(DialogOutputConfigTest)
#include "tst_dialog_output_config.moc"
