// A kind of source that adds nothing to the base: it has record and format, and its buttons do nothing.
#include <QtTest>

#include "engine/source/Source.h"

using namespace korvia;

namespace {

class PlainSource final : public Source {
 public:
  PlainSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
              const tagKorviaFormatInfo& format)
      : Source(context, info, format) {}
  FrameRef pullFrame(int) override { return {}; }
  void close() override {}
};

}  // namespace

class SourceTest : public QObject {
  Q_OBJECT

 private slots:
  void baseHasRecordFormatAndNothingElse() {
    SourceContext context;
    context.id = static_cast<KorviaShowObjectID>(MediaChannel + 2);
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindColor;
    PlainSource source(context, info, tagKorviaFormatInfo());
    QCOMPARE(int(source.getObjectId()), MediaChannel + 2);
    QCOMPARE(*source.getSourceInfo(), int(SourceKindColor));
    QVERIFY(source.getFormat());
    source.play();
    source.pause();
    source.setHold(true);
    source.setPosition(50);
    source.next();
    source.prev();
    source.stop();
    QCOMPARE(source.getPlayState(), int(NothingSpecial));
    QCOMPARE(source.getItemCount(), 1);
    QCOMPARE(source.getItemIndex(), 0);
    tagKorviaSourceLinkState state;
    state.rate = 1;
    source.getState(state);
    QCOMPARE(state.rate, 0.0f);
    qint64 values[4] = {-1, -1, -1, -1};
    source.getDuration(values[0]);
    source.getTime(values[1]);
    source.getFrameCount(values[2]);
    source.getPosition(values[3]);
    for (qint64 value : values)
      QCOMPARE(value, qint64(0));
    QCOMPARE(source.figures().framesDecoded, qint64(0));
  }

  void onlyASourceThatShouldDeliverTellsWhatArrives() {
    for (const KorviaShowPlayState atRest : {Opening, Paused, Stopped})
      QCOMPARE(linkRate(atRest, 0, 25), 25.0F);
    for (const KorviaShowPlayState other : {NothingSpecial, Buffering, Playing, Ended, Error}) {
      QCOMPARE(linkRate(other, 0, 25), 0.0F);
      QCOMPARE(linkRate(other, 12, 25), 12.0F);
    }
  }
};

QTEST_GUILESS_MAIN(SourceTest)
#include "tst_source.moc"
