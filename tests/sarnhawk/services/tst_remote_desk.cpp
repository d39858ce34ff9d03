// The desk over the web server's meeting place: commands that it runs and what it tells.
#include <QJsonArray>
#include <QPushButton>
#include <QToolButton>
#include <QtTest>

#include "ControlsDesk.h"
#include "KorviaShowEvents.h"
#include "WebDesk.h"
#include "services/RemoteDesk.h"
#include "services/RemotePictures.h"

using korvia::EventFeed;
using korvia::WebCommand;
using korvia::WebDesk;
using korvia::WebVerdict;

namespace {

using Kind = WebCommand::Kind;

/// Reads "/events" as a viewer does.
class Viewer final : public korvia::WebSleeper {
 public:
  explicit Viewer(EventFeed::Levels levels = EventFeed::Levels::Without) {
    place_.levels = levels;
    feed_.open();
    feed_.join(levels);
  }
  ~Viewer() {
    feed_.leave(place_.levels, *this);
    feed_.close();
  }
  void sleep() override {}
  void wake() override {}

  /// Data of the events of that name since the last call, when there is one.
  QList<QJsonObject> waitFor(const QByteArray& name) {
    QList<QJsonObject> found;
    const auto isThere = [&] {
      QByteArray text;
      feed_.next(place_, text, *this);
      unread_ += text;
      found = take(name);
      return !found.isEmpty();
    };
    return QTest::qWaitFor(isThere, 10000) ? found : QList<QJsonObject>();
  }

 private:
  QList<QJsonObject> take(const QByteArray& name) {
    QList<QJsonObject> found;
    QList<QByteArray> others;
    const QByteArray head = "event: " + name + "\ndata: ";
    const QList<QByteArray> lines = unread_.replace("\n\n", "\v").split('\v');
    for (const QByteArray& event : lines) {
      const int at = event.indexOf(head);
      if (at >= 0)
        found << QJsonDocument::fromJson(event.mid(at + head.size())).object();
      else
        others << event;
    }
    unread_ = others.join("\n\n");
    return found;
  }

  EventFeed& feed_ = WebDesk::instance().events();
  EventFeed::Place place_;
  QByteArray unread_;
};

WebVerdict run(Kind kind, int transition = 0, std::optional<int> channel = std::nullopt) {
  return WebDesk::instance().run({kind, transition, channel});
}

}  // namespace

class RemoteDeskTest : public QObject {
  Q_OBJECT

 private slots:
  void commandsNeedAnOpenEngine() {
    QVERIFY(run(Kind::Cut) == WebVerdict::NotReady);
    {
      ConsoleDesk desk;
      desk.create();
      QVERIFY(run(Kind::Cut) == WebVerdict::NotReady);
      QVERIFY(desk.open());
      QVERIFY(run(Kind::Cut) == WebVerdict::Accepted);
    }
    QVERIFY(run(Kind::Cut) == WebVerdict::NotReady);
  }

  void takeGoesThroughTheConsole() {
    ControlsDesk desk;
    desk.config()->channels[1].source.kind = SourceKindMovie;
    desk.config()->channels[1].source.moviePGMAction = PGMActionPlay;
    ScriptedSource* film = desk.show.addSource(1);
    tagKorviaTakeButton& slot = desk.config()->takeButtons[2];
    slot.effect = 41;
    slot.duration = 0.75F;
    slot.easing = 3;
    QVERIFY(run(Kind::Take, 2, MediaChannel + 1) == WebVerdict::Accepted);
    // Nothing happens on the server's thread.
    QVERIFY(film->calls.isEmpty());
    QTRY_COMPARE(film->calls, QStringList("release"));
    desk.settle();
    const auto takes = desk.show.eventsOf(ShowEventTake);
    QCOMPARE(takes.size(), std::size_t{1});
    QCOMPARE(takes[0].args[0].toInt(), MediaChannel + 1);
    QCOMPARE(takes[0].args[1].toInt(), 41);
    QCOMPARE(takes[0].args[2].toFloat(), 0.75F);
    QCOMPARE(takes[0].args[3].toInt(), 3);
    QCOMPARE(desk.config()->lastTakeIndex, 2);
  }

  void commandWithoutAChannelIsForThePreview() {
    ControlsDesk desk;
    desk.report(ShowEventSelectChannel, PVMObject, MediaChannel + 2);
    QVERIFY(run(Kind::Take, 0) == WebVerdict::Accepted);
    QVERIFY(run(Kind::Cut) == WebVerdict::Accepted);
    QTRY_COMPARE((desk.settle(), desk.show.count(ShowEventTake)), 1);
    QCOMPARE(desk.show.eventsOf(ShowEventTake)[0].args[0].toInt(), MediaChannel + 2);
    QCOMPARE(desk.show.eventsOf(ShowEventSelectChannel)[0].args[0].toInt(), static_cast<int>(PGMObject));
    QCOMPARE(desk.show.eventsOf(ShowEventSelectChannel)[0].args[1].toInt(), MediaChannel + 2);
  }

  void cutFollowsASelectionThatIsNotAnsweredYet() {
    ControlsDesk desk;
    QVERIFY(run(Kind::Select, 0, MediaChannel + 2) == WebVerdict::Accepted);
    QVERIFY(run(Kind::Cut) == WebVerdict::Accepted);
    QTRY_COMPARE((desk.settle(), desk.show.count(ShowEventSelectChannel)), 2);
    const auto selected = desk.show.eventsOf(ShowEventSelectChannel);
    QCOMPARE(selected[1].args[0].toInt(), static_cast<int>(PGMObject));
    QCOMPARE(selected[1].args[1].toInt(), MediaChannel + 2);
    // The engine has answered, so what the operator selects at the desk counts again.
    desk.report(ShowEventSelectChannel, PVMObject, MediaChannel + 1);
    QVERIFY(run(Kind::Cut) == WebVerdict::Accepted);
    QTRY_COMPARE((desk.settle(), desk.show.count(ShowEventSelectChannel)), 3);
    QCOMPARE(desk.show.eventsOf(ShowEventSelectChannel)[2].args[1].toInt(), MediaChannel + 1);
  }

  void cutReleasesAHeldFilm() {
    ControlsDesk desk;
    desk.config()->channels[1].source.kind = SourceKindMovie;
    desk.config()->channels[1].source.moviePGMAction = PGMActionPauseResume;
    ScriptedSource* film = desk.show.addSource(1);
    QVERIFY(run(Kind::Cut, 0, MediaChannel + 1) == WebVerdict::Accepted);
    QTRY_COMPARE((desk.settle(), desk.show.count(ShowEventSelectChannel)), 1);
    QCOMPARE(film->calls.value(0), QString("release"));
  }

  void selectPutsTheChannelOnPreview() {
    ControlsDesk desk;
    QVERIFY(run(Kind::Select, 0, MediaChannel + 1) == WebVerdict::Accepted);
    QTRY_COMPARE((desk.settle(), desk.show.count(ShowEventSelectChannel)), 1);
    const auto selected = desk.show.eventsOf(ShowEventSelectChannel);
    QCOMPARE(selected[0].args[0].toInt(), static_cast<int>(PVMObject));
    QCOMPARE(selected[0].args[1].toInt(), MediaChannel + 1);
  }

  void channelsThatTheDeskDoesNotHaveAreUnknown() {
    ControlsDesk desk;
    for (const int channel : {0, 1, 15, MediaChannel + 8, 255, StageChannel + 4, 9999}) {
      QVERIFY(run(Kind::Take, 0, channel) == WebVerdict::UnknownChannel);
      QVERIFY(run(Kind::Select, 0, channel) == WebVerdict::UnknownChannel);
    }
    QVERIFY(run(Kind::Select, 0, StageChannel) == WebVerdict::Accepted);
  }

  void outputsArePressedAsByHand_data() {
    QTest::addColumn<QString>("button");
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("stop");
    QTest::newRow("record") << "_startRecordPushButton" << static_cast<int>(Kind::StartRecord)
                            << static_cast<int>(Kind::StopRecord);
    QTest::newRow("stream") << "_startStreamPushButton" << static_cast<int>(Kind::StartStream)
                            << static_cast<int>(Kind::StopStream);
  }

  void outputsArePressedAsByHand() {
    QFETCH(QString, button);
    QFETCH(int, start);
    QFETCH(int, stop);
    ControlsDesk desk;
    auto* pressed = desk.button(qPrintable(button));
    // Stopping what does not run is nothing.
    run(static_cast<Kind>(stop));
    desk.settle();
    QVERIFY(!pressed->isChecked() && pressed->isEnabled());
    run(static_cast<Kind>(start));
    QTRY_VERIFY(pressed->isChecked());
    // The engine has not answered yet.
    QVERIFY(!pressed->isEnabled());
    run(static_cast<Kind>(stop));
    run(static_cast<Kind>(start));
    desk.settle();
    QCOMPARE(desk.show.count(ShowEventStartOutput), 1);
    QCOMPARE(desk.show.count(ShowEventStopOutput), 0);
    pressed->setEnabled(true);
    run(static_cast<Kind>(start));
    run(static_cast<Kind>(stop));
    QTRY_COMPARE((desk.settle(), desk.show.count(ShowEventStopOutput)), 1);
    QCOMPARE(desk.show.count(ShowEventStartOutput), 1);
    QVERIFY(!pressed->isChecked());
  }

  void onlySoManyCommandsWait() {
    ControlsDesk desk;
    for (int n = 0; n < RemoteDesk::kWaitingMax; ++n)
      QVERIFY(run(Kind::Select, 0, MediaChannel) == WebVerdict::Accepted);
    QVERIFY(run(Kind::Select, 0, MediaChannel) == WebVerdict::NotReady);
    desk.settle();
    QCOMPARE(desk.show.count(ShowEventSelectChannel), RemoteDesk::kWaitingMax);
    QVERIFY(run(Kind::Select, 0, MediaChannel) == WebVerdict::Accepted);
  }

  void tallyTellsTheDesk() {
    ControlsDesk desk;
    desk.config()->channels[0].source.moviePath = "/films/first.mp4";
    Viewer viewer;
    const QJsonObject tally = viewer.waitFor("tally").value(0);
    QCOMPARE(tally["program"].toInt(), desk.config()->pgmChannel);
    QCOMPARE(tally["preview"].toInt(), desk.config()->pvmChannel);
    QCOMPARE(tally["takes"].toArray().size(), 4);
    const QString text = desk.child<QToolButton>("_takeTransitionToolButton_0")->text();
    QCOMPARE(tally["takes"].toArray()[0].toObject()["name"].toString(), QString(text).replace('\n', ' '));
    const QJsonArray channels = tally["channels"].toArray();
    QCOMPARE(channels.size(), 4);
    QCOMPARE(channels[0].toObject()["id"].toInt(), static_cast<int>(MediaChannel));
    QCOMPARE(channels[0].toObject()["name"].toString(), QString("Media-0"));
    QCOMPARE(channels[0].toObject()["label"].toString(), QString("first.mp4"));
    QVERIFY(channels[0].toObject()["inUse"].toBool());
    QVERIFY(!channels[1].toObject()["inUse"].toBool());
    QCOMPARE(channels[3].toObject()["id"].toInt(), static_cast<int>(StageChannel));
    QCOMPARE(channels[3].toObject()["name"].toString(), QString("Stage-0"));
  }

  // A tally light must not stay dark while its picture is on air.
  void bothChannelsOfATakeAreOnProgram() {
    ControlsDesk desk;
    desk.report(ShowEventSelectChannel, PGMObject, MediaChannel);
    Viewer viewer;
    const auto onProgram = [&viewer] {
      QStringList names;
      const QList<QJsonObject> tallies = viewer.waitFor("tally");
      if (tallies.isEmpty())
        return names;
      const QJsonArray channels = tallies.constLast()["channels"].toArray();
      for (const auto& channel : channels) {
        if (channel.toObject()["onProgram"].toBool())
          names << channel.toObject()["name"].toString();
      }
      return names;
    };
    QCOMPARE(onProgram(), QStringList("Media-0"));
    desk.console->takeChannel(MediaChannel + 2, 0);
    desk.report(ShowEventSwitchPosition, 0.5F);
    QCOMPARE(onProgram(), (QStringList{"Media-0", "Media-2"}));
    desk.report(ShowEventSwitchPosition, 1.0F);
    QCOMPARE(onProgram(), QStringList("Media-0"));
  }

  void takeIsTold() {
    ControlsDesk desk;
    Viewer viewer;
    desk.report(ShowEventSelectChannel, PGMObject, MediaChannel);
    QVERIFY(!viewer.waitFor("tally").isEmpty());
    desk.report(ShowEventSelectChannel, PGMObject, MediaChannel + 1);
    const QList<QJsonObject> takes = viewer.waitFor("take");
    QCOMPARE(takes.size(), 1);
    QCOMPARE(takes[0]["from"].toInt(), static_cast<int>(MediaChannel));
    QCOMPARE(takes[0]["to"].toInt(), MediaChannel + 1);
    QVERIFY(QDateTime::fromString(takes[0]["time"].toString(), Qt::ISODateWithMs).isValid());
    const QList<QJsonObject> tallies = viewer.waitFor("tally");
    QVERIFY(!tallies.isEmpty());
    QCOMPARE(tallies.constLast()["program"].toInt(), MediaChannel + 1);
  }

  void outputsAreTold() {
    ControlsDesk desk;
    Viewer viewer;
    QJsonObject record = viewer.waitFor("outputs").value(0)["record"].toObject();
    QCOMPARE(record["state"].toString(), QString("Idle"));
    QVERIFY(!record["on"].toBool() && !record["waiting"].toBool());
    desk.button("_startRecordPushButton")->click();
    record = viewer.waitFor("outputs").value(0)["record"].toObject();
    QVERIFY(record["on"].toBool() && record["waiting"].toBool());
    desk.show.figures.outputs[OutputSlotRecord].state = KorviaShowOutputState::Running;
    desk.console->onWorkTimer();
    record = viewer.waitFor("outputs").value(0)["record"].toObject();
    QCOMPARE(record["state"].toString(), QString("Running"));
  }

  void levelsAreInDecibels() {
    ControlsDesk desk;
    desk.show.levels.setPgm({100, 0});
    desk.show.levels.setPvm({50, 90});
    desk.show.levels.setChannel(1, {0, 100});
    desk.show.figures.loudness.momentaryLufs = -23.04;
    desk.console->onWorkTimer();
    Viewer viewer(EventFeed::Levels::With);
    const QJsonObject levels = viewer.waitFor("levels").value(0);
    QCOMPARE(levels["pgm"].toArray(), (QJsonArray{0.0, -60.0}));
    QCOMPARE(levels["pvm"].toArray(), (QJsonArray{-30.0, -6.0}));
    QCOMPARE(levels["channels"].toObject()["17"].toArray(), (QJsonArray{-60.0, 0.0}));
    QCOMPARE(levels["momentaryLufs"].toDouble(), -23.0);
    QVERIFY(levels["integratedLufs"].isNull());
  }

  void picturesAreEncodedForTheirBoard() {
    RemotePictures pictures;
    QImage image(64, 36, QImage::Format_RGB32);
    image.fill(Qt::red);
    pictures.onPicture(KorviaShowPicture::Channels, image);
    WebDesk& desk = WebDesk::instance();
    QVERIFY(desk.channels().isFresh());
    QVERIFY(!desk.program().isFresh());
    QVERIFY(!pictures.isWanted(KorviaShowPicture::Channels));
    struct Nobody final : korvia::WebSleeper {
      void sleep() override {}
      void wake() override {}
    } nobody;
    korvia::PictureBoard::Picture picture;
    QVERIFY(desk.channels().next(0, korvia::PictureBoard::Wait::Over, nobody, picture) ==
            korvia::PictureBoard::Next::Picture);
    QVERIFY(pictures.isWanted(KorviaShowPicture::Channels));
    QVERIFY(!pictures.isWanted(KorviaShowPicture::Program));
    const QImage shown = QImage::fromData(picture.jpeg, "JPG");
    QCOMPARE(shown.size(), image.size());
    QVERIFY(qRed(shown.pixel(30, 20)) > 240 && qBlue(shown.pixel(30, 20)) < 20);
    desk.channels().clear();
  }
};

QTEST_MAIN(RemoteDeskTest)
#include "tst_remote_desk.moc"
