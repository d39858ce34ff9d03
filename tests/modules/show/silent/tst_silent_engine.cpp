// The facade over the silent engine: what it acknowledges, and what lands in the black box.
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QtTest>

#include "KorviaMetaType.h"
#include "KorviaShowEngine.h"
#include "support/RecordingSink.h"
#include "tagKorviaShowEngineInfo.h"
#include "tagKorviaShowOutputParam.h"
#include "tagKorviaWindowInfo.h"
#include "trace/BlackBox.h"

namespace {

QList<QJsonObject> readLines(const QString& fileName) {
  QList<QJsonObject> lines;
  QFile file(fileName);
  if (!file.open(QIODevice::ReadOnly))
    return lines;
  for (const QByteArray& line : file.readAll().split('\n'))
    if (!line.isEmpty())
      lines << QJsonDocument::fromJson(line).object();
  return lines;
}

}  // namespace

class SilentEngineTest : public QObject {
  Q_OBJECT

 private:
  RecordingSink sink_;
  std::unique_ptr<KorviaShowEngine> engine_;

 private slots:
  void init() {
    sink_.clear();
    engine_ = std::make_unique<KorviaShowEngine>();
    engine_->setFps(100);
    engine_->start(&sink_, ShowThreadNormal);
    engine_->postEvent(ShowEventOpen, toVariant(tagKorviaShowEngineInfo()),
                       toVariant(tagKorviaShowWindowPackInfo()));
    QVERIFY(sink_.waitFor(ShowEventOpen));
  }
  void cleanup() {
    engine_->stop();
    engine_.reset();
    korvia::BlackBox::instance().open(QString());
  }

  void aTakeIsDoneAtOnceAndSwapsTheBuses() {
    engine_->postEvent(ShowEventSelectChannel, PVMObject, 0x11);
    engine_->postEvent(ShowEventSelectChannel, PGMObject, 0x10);
    QVERIFY(sink_.waitFor(ShowEventSelectChannel, 2));
    sink_.clear();
    engine_->postEvent(ShowEventTake, 0x11, 22, 1.0F, 0);
    QVERIFY(sink_.waitFor(ShowEventSelectChannel, 2));
    const auto results = sink_.results();
    QCOMPARE(results.size(), size_t(3));
    QCOMPARE(results[0].id, quint64(ShowEventSwitchPosition));
    QCOMPARE(results[0].args[0].toFloat(), 1.0F);
    QCOMPARE(results[1].args[0].toULongLong(), 0x1002ULL);
    QCOMPARE(results[1].args[1].toInt(), 0x11);
    QCOMPARE(results[2].args[0].toULongLong(), 0x1001ULL);
    QCOMPARE(results[2].args[1].toInt(), 0x10);
  }

  void nothingIsTakenFromAnEmptyPreview() {
    engine_->postEvent(ShowEventSelectChannel, PGMObject, 0x10);
    engine_->postEvent(ShowEventSwitchPosition, PGMObject, 1.0F);
    engine_->postEvent(ShowEventAudioMixMode, 1);
    QVERIFY(sink_.waitFor(ShowEventAudioMixMode));
    QCOMPARE(sink_.resultsOf(ShowEventSelectChannel).size(), size_t(1));
  }

  void everythingWaitedForIsAcknowledged() {
    engine_->postEvent(ShowEventSwitchPosition, PGMObject, 0.5F);
    engine_->postEvent(ShowEventStartOutput, 1U, toVariant(tagKorviaShowOutputParam()));
    engine_->postEvent(ShowEventStopOutput, 1U, 2U);
    engine_->postEvent(ShowEventAudioMixMode, 2);
    engine_->postEvent(ShowEventVolume, PGMObject, 0.5);
    engine_->postEvent(ShowEventChannelMix, 0x10, 1);
    for (const quint64 id : {5, 41, 42, 49, 50, 51})
      QVERIFY2(sink_.waitFor(id), qPrintable(QString::number(id)));
    QCOMPARE(sink_.resultsOf(ShowEventSwitchPosition)[0].args[0].toFloat(), 0.5F);
    QCOMPARE(sink_.resultsOf(ShowEventStartOutput)[0].args[0].toUInt(), 1U);
    QCOMPARE(sink_.resultsOf(ShowEventStopOutput)[0].args[1].toUInt(), 2U);
    QCOMPARE(sink_.resultsOf(ShowEventVolume)[0].args[1], QVariant(0.5F));
  }

  void bothFormsOfAChannelGiveTheSameSource() {
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindMovie;
    tagKorviaFormatInfo format;
    QVERIFY(!engine_->getSource(static_cast<KorviaShowObjectID>(3)));
    IKorviaShowSource* source =
        engine_->openSource(static_cast<KorviaShowObjectID>(3), info, format, nullptr);
    QVERIFY(source);
    QCOMPARE(engine_->getSource(static_cast<KorviaShowObjectID>(3)), source);
    QCOMPARE(engine_->getSource(static_cast<KorviaShowObjectID>(0x12)), source);
    QCOMPARE(*source->getSourceInfo(), int(SourceKindMovie));
    engine_->closeSource(static_cast<KorviaShowObjectID>(3));
    QVERIFY(!engine_->getSource(static_cast<KorviaShowObjectID>(0x12)));
    QVERIFY(!engine_->getSource(StageChannel));
  }

  void theBlackBoxHoldsPostsResultsAndCalls() {
    QTemporaryDir folder;
    const QString fileName = folder.filePath("trace.jsonl");
    QVERIFY(korvia::BlackBox::instance().open(fileName));
    engine_->postEvent(ShowEventTake, 16, 22, 1.0F, 0);
    QVERIFY(sink_.waitFor(ShowEventSwitchPosition));
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindUrl;
    info.url = "rtmp://10.0.0.1/live/secretkey";
    tagKorviaFormatInfo format;
    IKorviaShowSource* source = engine_->openSource(SourceObject, info, format, nullptr);
    source->setPosition(40);
    source->setHold(true);
    engine_->closeSource(SourceObject);
    engine_->commitGrabImage(QImage(64, 36, QImage::Format_ARGB32));
    korvia::BlackBox::instance().open(QString());

    const QList<QJsonObject> lines = readLines(fileName);
    const auto find = [&lines](const char* dir, const char* name) {
      for (const QJsonObject& line : lines)
        if (line["dir"] == QLatin1String(dir) && line["name"] == QLatin1String(name))
          return line;
      return QJsonObject();
    };
    const QJsonObject post = find("post", "ShowEventTake");
    QCOMPARE(post["event"].toInt(), 6);
    QCOMPARE(post["args"].toArray(), (QJsonArray{16, 22, 1.0, 0}));
    QVERIFY(post["t"].isDouble());
    QCOMPARE(find("result", "ShowEventSwitchPosition")["args"].toArray(), (QJsonArray{1.0}));
    const QJsonObject open = find("call", "openSource");
    QCOMPARE(open["object"].toInt(), 1);
    QCOMPARE(open["args"].toArray()[0].toObject()["kind"].toInt(), 3);
    QVERIFY(!QJsonDocument(open).toJson().contains("secretkey"));
    QCOMPARE(find("call", "setPosition")["args"].toArray(), (QJsonArray{40}));
    QCOMPARE(find("call", "setHold")["args"].toArray(), (QJsonArray{true}));
    QCOMPARE(find("call", "closeSource")["object"].toInt(), 1);
    QCOMPARE(find("call", "commitGrabImage")["args"].toArray()[0].toObject()["width"].toInt(), 64);
  }
};

QTEST_GUILESS_MAIN(SilentEngineTest)
#include "tst_silent_engine.moc"
