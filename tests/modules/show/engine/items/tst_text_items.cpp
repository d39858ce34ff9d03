// Texts on their way from the events to the buses.
#include <QtTest>
#include <cmath>
#include <limits>

#include "KorviaShowObjectID.h"
#include "engine/items/ItemStage.h"

using namespace korvia;

class TextItemsTest : public QObject {
  Q_OBJECT

  static constexpr FrameSize kSize{640, 360};

  std::unique_ptr<Bus> preview_;
  std::unique_ptr<Bus> program_;
  std::unique_ptr<ItemStage> stage_;

  static tagKorviaShowTextInfo title(const QString& text = QStringLiteral("Title")) {
    tagKorviaShowTextInfo info;
    info.text = text;
    return info;
  }
  TextItems& texts() { return stage_->texts(); }
  /// The layers over a bus at the next frame that are drawn already.
  std::vector<LayerRef> layers(Bus& bus) {
    stage_->beginFrame();
    std::vector<LayerRef> drawn;
    for (const StackedLayer& stacked : bus.layers().layers()) {
      if (stacked.layer)
        drawn.push_back(stacked.layer);
    }
    return drawn;
  }
  bool shows(Bus& bus, std::size_t count) {
    return QTest::qWaitFor([&] { return layers(bus).size() == count; }, 10'000);
  }
  /// The center of the only layer of program.
  QPointF center() {
    const FrameRect rect = layers(*program_).at(0)->rect;
    return {rect.x + rect.width / 2.0, rect.y + rect.height / 2.0};
  }

 private slots:
  void init() {
    preview_ = std::make_unique<Bus>();
    program_ = std::make_unique<Bus>();
    stage_ = std::make_unique<ItemStage>(*preview_, *program_);
    stage_->open({kSize, {}});
  }
  void cleanup() {
    stage_.reset();
    preview_.reset();
    program_.reset();
  }

  void eachBusHasItsOwn() {
    const tagKorviaShowTextInfo first = title();
    const tagKorviaShowTextInfo second = title();
    texts().add(PVMObject, first);
    QVERIFY(shows(*preview_, 1));
    QVERIFY(shows(*program_, 0));
    texts().add(PGMObject, first);
    texts().add(PGMObject, second);
    QVERIFY(shows(*program_, 2));
    QVERIFY(shows(*preview_, 1));
    // It is drawn once for both.
    QCOMPARE(layers(*preview_)[0], layers(*program_)[0]);
    texts().remove(PGMObject, first.id);
    QVERIFY(shows(*program_, 1));
    QVERIFY(shows(*preview_, 1));
    texts().remove(PVMObject, first.id);
    texts().remove(PGMObject, second.id);
    QVERIFY(preview_->layers().layers().empty());
    QVERIFY(program_->layers().layers().empty());
  }

  void positionIsTheCenter() {
    tagKorviaShowTextInfo info = title();
    info.style.shadowDistanceX = info.style.shadowDistanceY = 0;
    texts().add(PGMObject, info);
    QVERIFY(shows(*program_, 1));
    QVERIFY(QLineF(center(), {320, 180}).length() < 8);
    info.x = 0.25;
    info.y = 0.75;
    texts().update(info);
    QTRY_VERIFY(QLineF(center(), {160, 270}).length() < 8);
  }

  void anUpdateShowsEverywhere() {
    tagKorviaShowTextInfo info = title();
    texts().add(PVMObject, info);
    texts().add(PGMObject, info);
    QVERIFY(shows(*program_, 1));
    const LayerRef before = layers(*program_)[0];
    info.text = QStringLiteral("Another title");
    texts().update(info);
    QTRY_VERIFY(layers(*program_).at(0) != before);
    QCOMPARE(layers(*preview_).at(0), layers(*program_).at(0));
  }

  void anUnchangedTextIsNotDrawnAgain() {
    const tagKorviaShowTextInfo info = title();
    texts().add(PGMObject, info);
    QVERIFY(shows(*program_, 1));
    const LayerRef before = layers(*program_)[0];
    texts().update(info);
    texts().add(PVMObject, info);
    for (int frame = 0; frame < 20; ++frame) {
      QTest::qWait(5);
      QCOMPARE(layers(*program_).at(0), before);
    }
  }

  void aClockIsDrawnWhenItsTextChanges() {
    tagKorviaShowTextInfo info = title(QStringLiteral("${Time}"));
    info.timeFormat = QStringLiteral("hh:mm:ss");
    texts().add(PGMObject, info);
    QVERIFY(shows(*program_, 1));
    QSet<quint64> versions;
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < 2100) {
      versions.insert(layers(*program_).at(0)->version);
      QTest::qWait(20);
    }
    QVERIFY2(versions.size() >= 2 && versions.size() <= 4, QByteArray::number(versions.size()));
  }

  void laterTextsLieAboveAndKeepTheirPlace() {
    const tagKorviaShowTextInfo lower = title();
    tagKorviaShowTextInfo upper = title(QStringLiteral("Upper"));
    texts().add(PGMObject, lower);
    texts().add(PGMObject, upper);
    QVERIFY(shows(*program_, 2));
    const LayerRef before = layers(*program_)[0];
    upper.text = QStringLiteral("Changed");
    texts().update(upper);
    texts().add(PGMObject, lower);
    QTest::qWait(50);
    QCOMPARE(layers(*program_).at(0), before);
    // What is shown anew comes on top.
    texts().remove(PGMObject, lower.id);
    texts().add(PGMObject, lower);
    QVERIFY(shows(*program_, 2));
    QVERIFY(layers(*program_).at(1)->rect == before->rect);
  }

  void strangeRecordsShowNothing_data() {
    QTest::addColumn<double>("x");
    QTest::addColumn<QString>("text");
    QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN() << "text";
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << "text";
    QTest::newRow("minus infinite") << -std::numeric_limits<double>::infinity() << "text";
    QTest::newRow("far away") << 1e300 << "text";
    QTest::newRow("no text") << 0.5 << "";
  }
  void strangeRecordsShowNothing() {
    QFETCH(double, x);
    QFETCH(QString, text);
    tagKorviaShowTextInfo info = title(text);
    info.x = x;
    texts().add(PGMObject, info);
    const tagKorviaShowTextInfo good = title();
    texts().add(PGMObject, good);
    QVERIFY(shows(*program_, 1));
    info.x = 0.5;
    info.text = QStringLiteral("good");
    texts().update(info);
    QVERIFY(shows(*program_, 2));
  }

  void whatIsUnknownIsLeftAlone() {
    texts().update(title());
    texts().remove(PGMObject, QStringLiteral("nobody"));
    texts().add(MediaChannel, title());
    texts().add(0, title());
    stage_->beginFrame();
    QVERIFY(program_->layers().layers().empty());
    QVERIFY(preview_->layers().layers().empty());
  }

  void aHundredTexts() {
    QStringList ids;
    for (int i = 0; i < 100; ++i) {
      const tagKorviaShowTextInfo info = title(QString::number(i));
      ids << info.id;
      texts().add(PVMObject, info);
      texts().add(PGMObject, info);
    }
    QVERIFY(shows(*program_, 100));
    for (const QString& id : ids) {
      texts().remove(PVMObject, id);
      texts().remove(PGMObject, id);
    }
    QVERIFY(shows(*program_, 0));
  }

  void anotherRenderSizeDrawsAnew() {
    texts().add(PGMObject, title());
    QVERIFY(shows(*program_, 1));
    stage_->open({{1280, 720}, {}});
    QTRY_VERIFY((layers(*program_).at(0)->busSize == FrameSize{1280, 720}));
  }
};

QTEST_MAIN(TextItemsTest)
#include "tst_text_items.moc"
