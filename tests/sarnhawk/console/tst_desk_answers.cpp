// What the engine's answers and questions do to the controls of the desk.
#include <QPushButton>
#include <QSlider>
#include <QtTest>
#include <thread>

#include "ControlsDesk.h"
#include "KorviaMetaType.h"
#include "KorviaShowEvents.h"
#include "console/SwitchLever.h"
#include "tagKorviaShowPresentPlacement.h"

class DeskAnswersTest : public QObject {
  Q_OBJECT

 private slots:
  void leverStandsWhereTheEngineSays() {
    ControlsDesk desk;
    desk.report(ShowEventSwitchPosition, 0.25F);
    QCOMPARE(desk.lever()->value(), 2500);
    QCOMPARE(desk.lever()->toolTip(), QString("25%"));
    desk.report(ShowEventSwitchPosition, 0.12345F);
    QCOMPARE(desk.lever()->value(), 1234);
    QCOMPARE(desk.lever()->toolTip(), QString("12.345%"));
    desk.report(ShowEventSwitchPosition, 0.0F);
    QCOMPARE(desk.lever()->value(), 0);
    desk.settle();
    QCOMPARE(desk.show.count(ShowEventSwitchPosition), 0);
  }

  void finishedSwitchParksTheLeverWithoutPosting() {
    ControlsDesk desk;
    desk.lever()->setValue(9000);
    desk.lever()->setSliderDown(true);
    desk.settle();
    desk.show.clearEvents();
    desk.report(ShowEventSwitchPosition, 1.0F);
    desk.settle();
    QCOMPARE(desk.lever()->value(), 0);
    QCOMPARE(desk.lever()->toolTip(), QString("0%"));
    QVERIFY(desk.lever()->isVisible());
    QCOMPARE(desk.show.count(ShowEventSwitchPosition), 0);
  }

  void almostFinishedSwitchLeavesTheLever() {
    ControlsDesk desk;
    desk.report(ShowEventSwitchPosition, 0.9999F);
    QCOMPARE(desk.lever()->value(), 9999);
  }

  void answerToTheLeverIsTruncatedLikeAnyOther_data() {
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("answered");
    // 0.0007 as a float times 10000 is a little less than 7.
    QTest::newRow("comes back one lower") << 7 << 6;
    QTest::newRow("comes back as it was") << 2500 << 2500;
  }
  void answerToTheLeverIsTruncatedLikeAnyOther() {
    QFETCH(int, value);
    QFETCH(int, answered);
    ControlsDesk desk;
    desk.show.answer(ShowEventSwitchPosition, [](const ScriptedShow::Event& event) {
      return std::pair<QVariant, QVariant>(event.args[1], {});
    });
    desk.lever()->setValue(value);
    desk.settle();
    QCOMPARE(desk.lever()->value(), answered);
  }

  void reportedPositionIsTruncatedNeverRounded() {
    ControlsDesk desk;
    int lower = 0;
    for (int value = 1; value < SwitchLever::kRange; ++value) {
      const float position = static_cast<float>(value / 10000.0);
      desk.console->slot_PostEventResult(ShowEventSwitchPosition, 0, position, {}, {}, {});
      const int shown = desk.lever()->value();
      QVERIFY2(shown == value || shown == value - 1, qPrintable(QString::number(value)));
      lower += shown < value ? 1 : 0;
    }
    QVERIFY(lower > 0);
  }

  void answerEnablesTheButtonAndKeepsItsState() {
    ControlsDesk desk;
    QPushButton* record = desk.button("_startRecordPushButton");
    QPushButton* stream = desk.button("_startStreamPushButton");
    record->click();
    stream->click();
    desk.settle();
    desk.report(ShowEventStartOutput, 1U, desk.show.eventsOf(ShowEventStartOutput)[0].args[1]);
    QVERIFY(record->isEnabled());
    QVERIFY(record->isChecked());
    QVERIFY(!stream->isEnabled());
    desk.report(ShowEventStartOutput, 0U, desk.show.eventsOf(ShowEventStartOutput)[1].args[1]);
    QVERIFY(stream->isEnabled());

    record->click();
    QVERIFY(!record->isEnabled());
    stream->click();
    desk.settle();
    const auto posted = desk.show.eventsOf(ShowEventStopOutput);
    QCOMPARE(posted.size(), std::size_t{2});
    QCOMPARE(posted[0].args[0].toInt(), 1);
    QCOMPARE(posted[0].args[1].toInt(), 2);
    QCOMPARE(posted[1].args[0].toInt(), 0);
    QCOMPARE(posted[1].args[1].toInt(), 3);
    desk.report(ShowEventStopOutput, 0U, 3U);
    QVERIFY(stream->isEnabled());
    QVERIFY(!record->isEnabled());
    desk.report(ShowEventStopOutput, 1U, 2U);
    QVERIFY(record->isEnabled());
    QVERIFY(!record->isChecked());
  }

  void answerForAnUnknownSlotIsIgnored() {
    ControlsDesk desk;
    desk.button("_startRecordPushButton")->click();
    desk.report(ShowEventStartOutput, 12U, toVariant(tagKorviaShowOutputParam()));
    desk.report(ShowEventStartOutput, 4000000000U, {});
    QVERIFY(!desk.button("_startRecordPushButton")->isEnabled());
  }

  void mixModeResultChecksTheButtonSilently() {
    ControlsDesk desk;
    desk.report(ShowEventAudioMixMode, 2);
    QVERIFY(desk.button("_manulMixModePushButton")->isChecked());
    QVERIFY(!desk.button("_autoMixModePushButton")->isChecked());
    desk.report(ShowEventAudioMixMode, 3);
    QVERIFY(desk.button("_manulMixModePushButton")->isChecked());
    desk.settle();
    QCOMPARE(desk.show.count(ShowEventAudioMixMode), 0);
  }

  void volumeResultsMoveTheSlidersSilently() {
    ControlsDesk desk;
    desk.report(ShowEventVolume, 0x1002, 0.559F);
    QCOMPARE(desk.slider("_pgmVolumeVerticalSlider")->value(), 55);
    desk.report(ShowEventVolume, 0x1001, 0.25F);
    QCOMPARE(desk.slider("_pvmVolumeVerticalSlider")->value(), 25);
    desk.report(ShowEventVolume, 0x10, 0.1F);
    desk.settle();
    QCOMPARE(desk.show.count(ShowEventVolume), 0);
  }

  void answerToAVolumeIsTruncatedLikeAnyOther() {
    ControlsDesk desk;
    QSlider* slider = desk.slider("_pgmVolumeVerticalSlider");
    QList<int> lower;
    for (int percent = 0; percent <= 100; ++percent) {
      slider->setValue(percent);
      const QVariant sent = desk.config()->audioMixer.pgmVolume;
      desk.console->slot_PostEventResult(ShowEventVolume, 0, 0x1002, sent, {}, {});
      if (slider->value() != percent)
        lower.append(slider->value());
    }
    // 0.53 and 0.59 as floats times 100 are a little less than 53 and 59.
    QCOMPARE(lower, (QList<int>{52, 58}));
  }

  void heldProgramSliderStopsBothReports() {
    ControlsDesk desk;
    QSlider* pgm = desk.slider("_pgmVolumeVerticalSlider");
    QSlider* pvm = desk.slider("_pvmVolumeVerticalSlider");
    pgm->setSliderDown(true);
    desk.report(ShowEventVolume, 0x1002, 0.2F);
    desk.report(ShowEventVolume, 0x1001, 0.2F);
    QCOMPARE(pgm->value(), 100);
    QCOMPARE(pvm->value(), 100);
    pgm->setSliderDown(false);
    pvm->setSliderDown(true);
    desk.report(ShowEventVolume, 0x1001, 0.2F);
    QCOMPARE(pvm->value(), 20);
  }

  void filmThatEndsOnPreviewTakesItsSuccessor() {
    ControlsDesk desk;
    IKorviaShowEngineSink* sink = desk.show.engineSink();
    QVERIFY(sink);
    std::thread source([sink] {
      sink->onSourceNotify(MediaChannel, 2, 0x11);
      sink->onSourceNotify(MediaChannel, 1, 0x11);
      sink->onSourceNotify(static_cast<KorviaShowObjectID>(0x12), 2, 0x11);
    });
    source.join();
    desk.settle();
    const auto posted = desk.show.eventsOf(ShowEventTake);
    QCOMPARE(posted.size(), std::size_t{1});
    QCOMPARE(posted[0].args[0].toInt(), 0x11);
    QCOMPARE(posted[0].args[1].toInt(), 22);
    QCOMPARE(posted[0].args[2].toFloat(), 0.5F);
    QCOMPARE(posted[0].args[3].toInt(), 0);
  }

  void filmThatEndsAsksForTheSelectionOfThatMoment() {
    ControlsDesk desk;
    IKorviaShowEngineSink* sink = desk.show.engineSink();
    desk.report(ShowEventSelectChannel, qulonglong{0x1001}, 0x12);
    desk.report(ShowEventSelectChannel, qulonglong{0x1002}, 0x10);
    std::thread source([sink] {
      sink->onSourceNotify(MediaChannel, 2, 0x10);
      sink->onSourceNotify(static_cast<KorviaShowObjectID>(0x12), 2, 0x11);
    });
    source.join();
    desk.settle();
    const auto posted = desk.show.eventsOf(ShowEventTake);
    QCOMPARE(posted.size(), std::size_t{1});
    QCOMPARE(posted[0].args[0].toInt(), 0x11);
  }

  void draggedItemGoesBackToTheEngine() {
    ControlsDesk desk;
    tagKorviaShowPresentPlacement placement;
    placement.kind = 9;
    placement.key = "{item}";
    desk.report(ShowEventPlacementChanged, toVariant(placement));
    desk.settle();
    const auto posted = desk.show.eventsOf(ShowEventPlacementCommit);
    QCOMPARE(posted.size(), std::size_t{1});
    QCOMPARE(fromVariant<tagKorviaShowPresentPlacement>(posted[0].args[0]), placement);
  }

  void otherResultsAreDropped() {
    ControlsDesk desk;
    for (const quint64 id : {1, 2, 3, 4, 6, 8, 20, 43, 52, 1000})
      desk.report(id, 0x1001, 0x12);
    desk.report(ShowEventSelectChannel, qulonglong{0x1000}, 0x12);
    QCOMPARE(desk.config()->pvmChannel, 0x10);
    QCOMPARE(desk.config()->pgmChannel, 0x10);
  }

  void backgroundIsLentForProgramAlone() {
    ControlsDesk desk;
    IKorviaShowEngineSink* sink = desk.show.engineSink();
    QVERIFY(sink->lockBackground(PVMObject).isNull());
    QImage image;
    sink->unlockBackground(PVMObject, image);
    sink->onAudioData(KaraokeObject, nullptr, 0, 0, 0, nullptr, 0);
  }
};

QTEST_MAIN(DeskAnswersTest)
#include "tst_desk_answers.moc"
