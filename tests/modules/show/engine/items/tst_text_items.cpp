// Texts on their way from the events to the buses.
#include <QtTest>
#include <cmath>
#include <limits>
#include <optional>

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

  /// Whether what is seen of the crawl on program is drawn.
  bool isCovered() {
    const StackedLayer& stacked = program_->layers().layers().at(0);
    if (!stacked.layer)
      return false;
    const QRectF& content = stacked.layer->content;
    const double left = content.left() + stacked.pose.moveX;
    const double begin = std::clamp(-left, 0.0, content.width());
    const double end = std::clamp(kSize.width - left, 0.0, content.width());
    return begin >= end || (stacked.layer->part.begin <= begin && stacked.layer->part.end >= end);
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
    stage_->beginFrame();
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
    QVERIFY(shows(*program_, 1));
    texts().add(PGMObject, lower);
    QVERIFY(shows(*program_, 2));
    QVERIFY(layers(*program_).at(1)->rect == before->rect);
  }

  /// The pose of the only layer of program at the next frame; none when there is none.
  std::optional<LayerPose> nextPose() {
    stage_->beginFrame();
    const std::vector<StackedLayer>& stacked = program_->layers().layers();
    return stacked.empty() || !stacked[0].layer ? std::nullopt : std::optional(stacked[0].pose);
  }
  std::optional<LayerPose> firstPose() {
    std::optional<LayerPose> pose;
    return QTest::qWaitFor([&] { return (pose = nextPose()).has_value(); }, 10'000) ? pose : std::nullopt;
  }

  void anEntranceTakesItsTimeAndAnExitToo() {
    tagKorviaShowTextInfo info = title();
    info.enter.effect = 3;  // from the left
    info.enter.duration = 400;
    info.enter.curve = 0;
    info.exit = {.effect = 30, .start = 0, .duration = 200, .curve = 0};  // to the right
    texts().add(PGMObject, info);
    LayerPose pose = firstPose().value();
    QVERIFY(pose.moveX < -200);
    double before = pose.moveX;
    for (int frame = 2; frame < 10; ++frame) {
      pose = nextPose().value();
      QVERIFY(pose.moveX > before);
      before = pose.moveX;
    }
    QVERIFY(nextPose().value().isPlain());  // the tenth frame of 40 ms
    texts().remove(PGMObject, info.id);
    for (int frame = 1; frame < 5; ++frame)
      QVERIFY(nextPose().value().moveX > 0);
    QVERIFY(!nextPose());
  }

  void showingDuringAnExitTurnsBack() {
    tagKorviaShowTextInfo info = title();
    info.exit = {.effect = 31, .start = 0, .duration = 400, .curve = 0};
    texts().add(PGMObject, info);
    QVERIFY(firstPose().value().isPlain());
    texts().remove(PGMObject, info.id);
    QVector<double> out;
    for (int frame = 0; frame < 4; ++frame)
      out << nextPose().value().moveX;
    texts().add(PGMObject, info);
    for (int frame = 2; frame >= 0; --frame)
      QVERIFY(std::abs(nextPose().value().moveX - out[frame]) < 1e-6);
    QVERIFY(nextPose().value().isPlain());
  }

  void anUpdateDuringAnEntranceKeepsTheClock() {
    tagKorviaShowTextInfo info = title();
    info.enter = {.effect = 1, .start = 0, .duration = 400, .curve = 0};
    texts().add(PGMObject, info);
    QVERIFY(firstPose());
    for (int frame = 2; frame < 6; ++frame)
      nextPose();
    info.style.solidColor = 0xffff0000;
    texts().update(info);
    for (int frame = 6; frame < 10; ++frame)
      QVERIFY(!nextPose().value().isPlain());
    QVERIFY(nextPose().value().isPlain());
  }

  void aTextThatIsHiddenBeforeItIsDrawnIsGone() {
    const tagKorviaShowTextInfo info = title();
    texts().add(PGMObject, info);
    texts().remove(PGMObject, info.id);
    stage_->beginFrame();
    QVERIFY(program_->layers().layers().empty());
  }

  void aCrawlMovesEvenly_data() {
    QTest::addColumn<double>("x");
    QTest::addColumn<double>("endX");
    QTest::newRow("to the left") << 1.0 << 0.0;
    QTest::newRow("to the right") << 0.0 << 1.0;
  }
  void aCrawlMovesEvenly() {
    QFETCH(double, x);
    QFETCH(double, endX);
    tagKorviaShowTextInfo info = title();
    info.x = x;
    info.scrollEndX = endX;
    info.scrollTime = 1;
    texts().add(PGMObject, info);
    QVERIFY(firstPose());
    const QRectF content = layers(*program_).at(0)->content;
    const double sign = endX < x ? -1 : 1;
    // The whole way is the picture and the text itself.
    const double step = sign * (kSize.width + content.width()) / 25;
    double before = nextPose().value().moveX;
    int turns = 0;
    for (int frame = 0; frame < 60; ++frame) {
      const double now = nextPose().value().moveX;
      const bool isTurn = (now - before) * sign < 0;
      turns += isTurn ? 1 : 0;
      QVERIFY2(isTurn || std::abs(now - before - step) < 1e-6, QByteArray::number(now - before - step));
      const double left = content.left() + now;
      QVERIFY(left <= kSize.width + 1e-6 && left + content.width() >= -1e-6);
      before = now;
    }
    QVERIFY(turns == 2 || turns == 3);
  }

  void aLongCrawlIsDrawnInParts_data() {
    QTest::addColumn<double>("x");
    QTest::addColumn<double>("endX");
    QTest::newRow("to the left") << 1.0 << 0.0;
    QTest::newRow("to the right") << 0.0 << 1.0;
  }
  void aLongCrawlIsDrawnInParts() {
    QFETCH(double, x);
    QFETCH(double, endX);
    tagKorviaShowTextInfo info = title(QString(10'000, QLatin1Char('w')));
    info.x = x;
    info.scrollEndX = endX;
    info.scrollTime = 60;
    info.enter.duration = 0;
    texts().add(PGMObject, info);
    QVERIFY(firstPose());
    QSet<quint64> versions;
    int turns = 0;
    double before = 0;
    // The worker gets as long as it takes for every part.
    for (int frame = 0; frame < 700; ++frame) {
      stage_->beginFrame(3);
      const double move = program_->layers().layers().at(0).pose.moveX;
      turns += frame > 0 && (move - before) * (endX - x) < 0 ? 1 : 0;
      before = move;
      QTRY_VERIFY_WITH_TIMEOUT((stage_->beginFrame(0), isCovered()), 20'000);
      const LayerRef layer = program_->layers().layers().at(0).layer;
      versions.insert(layer->version);
      QVERIFY(layer->picture->size().width <= 16384 + 64);
    }
    QCOMPARE(turns, 1);
    QVERIFY2(versions.size() > 5 && versions.size() < 100, QByteArray::number(versions.size()));
  }

  void aCrawlThatChangesShowsItsNewText() {
    tagKorviaShowTextInfo info = title(QString(300, QLatin1Char('w')));
    info.x = 0.9;
    info.scrollTime = 100;
    texts().add(PGMObject, info);
    QVERIFY(firstPose());
    const double width = program_->layers().layers().at(0).layer->content.width();
    info.text = QString(200, QLatin1Char('w'));
    texts().update(info);
    QTRY_VERIFY(
        (stage_->beginFrame(), program_->layers().layers().at(0).layer->content.width() < 0.7 * width));
    // It stops, and the text stands as it was drawn.
    info.scrollTime = 0;
    texts().update(info);
    QTRY_VERIFY((stage_->beginFrame(), program_->layers().layers().at(0).pose.moveX == 0));
    QVERIFY(program_->layers().layers().at(0).layer);
    // And crawls again.
    info.scrollTime = 100;
    texts().update(info);
    QTRY_VERIFY((stage_->beginFrame(), program_->layers().layers().at(0).layer->part.end > 0 && isCovered()));
  }

  void aCrawlThatBecomesShorterGoesOn_data() {
    QTest::addColumn<double>("x");
    QTest::addColumn<double>("endX");
    QTest::addColumn<int>("frames");
    QTest::addColumn<bool>("isBlankMeanwhile");
    QTest::newRow("to the left") << 0.9 << 0.1 << 600 << false;
    QTest::newRow("to the right") << 0.1 << 0.9 << 200 << false;
    QTest::newRow("to the left, blank meanwhile") << 0.9 << 0.1 << 600 << true;
    QTest::newRow("to the right, blank meanwhile") << 0.1 << 0.9 << 200 << true;
  }
  /// The part that is drawn of the old text lies beyond the end of the new one.
  void aCrawlThatBecomesShorterGoesOn() {
    QFETCH(double, x);
    QFETCH(double, endX);
    QFETCH(int, frames);
    QFETCH(bool, isBlankMeanwhile);
    tagKorviaShowTextInfo info = title(QString(300, QLatin1Char('w')));
    info.x = x;
    info.scrollEndX = endX;
    info.scrollTime = 40;
    texts().add(PGMObject, info);
    QVERIFY(firstPose());
    for (int frame = 0; frame < frames; ++frame)
      stage_->beginFrame();
    if (isBlankMeanwhile) {
      info.text.clear();
      texts().update(info);
      QTRY_VERIFY((stage_->beginFrame(0), !program_->layers().layers().at(0).layer));
    }
    info.text = QStringLiteral("short");
    texts().update(info);
    const auto isShort = [this] {
      stage_->beginFrame(0);
      const LayerRef& layer = program_->layers().layers().at(0).layer;
      return layer && layer->content.width() < 200;
    };
    QTRY_VERIFY(isShort());
    QVERIFY(isCovered());
  }

  void aCrawlThatBecomesBlankIsGoneAndComesBack_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("fontSize");
    QTest::newRow("no text") << "" << 40;
    QTest::newRow("blanks") << "   " << 40;
    QTest::newRow("no size") << "text" << 0;
  }
  void aCrawlThatBecomesBlankIsGoneAndComesBack() {
    QFETCH(QString, text);
    QFETCH(int, fontSize);
    tagKorviaShowTextInfo info = title(QString(300, QLatin1Char('w')));
    info.x = 0.5;
    info.scrollTime = 100;
    texts().add(PGMObject, info);
    QVERIFY(firstPose());
    tagKorviaShowTextInfo blank = info;
    blank.text = text;
    blank.style.fontSize = fontSize;
    texts().update(blank);
    QTRY_VERIFY((stage_->beginFrame(), !program_->layers().layers().at(0).layer));
    texts().update(info);
    QTRY_VERIFY((stage_->beginFrame(), program_->layers().layers().at(0).layer && isCovered()));
    // Also when it stops to crawl meanwhile.
    texts().update(blank);
    blank.scrollTime = 0;
    texts().update(blank);
    QTRY_VERIFY((stage_->beginFrame(), !program_->layers().layers().at(0).layer));
  }

  void aCrawlThatWasAlwaysBlankComesWithItsText() {
    tagKorviaShowTextInfo info = title(" ");
    info.x = 0.5;
    info.scrollTime = 100;
    texts().add(PGMObject, info);
    for (int i = 0; i < 10; ++i) {
      stage_->beginFrame();
      QTest::qWait(2);
    }
    info.text = "text";
    texts().update(info);
    QTRY_VERIFY((stage_->beginFrame(), program_->layers().layers().at(0).layer && isCovered()));
    texts().remove(PGMObject, info.id);
    QTRY_VERIFY((stage_->beginFrame(), program_->layers().layers().empty()));
  }

  void aFastOrTallCrawlIsCovered_data() {
    QTest::addColumn<double>("x");
    QTest::addColumn<double>("endX");
    QTest::addColumn<int>("fontSize");
    QTest::addColumn<int>("seconds");
    QTest::newRow("fast to the left") << 1.0 << 0.0 << 40 << 6;
    QTest::newRow("fast to the right") << 0.0 << 1.0 << 40 << 6;
    QTest::newRow("tall to the left") << 1.0 << 0.0 << 900 << 600;
    QTest::newRow("tall to the right") << 0.0 << 1.0 << 900 << 600;
    QTest::newRow("taller than the picture") << 0.0 << 1.0 << 1900 << 900;
  }
  void aFastOrTallCrawlIsCovered() {
    QFETCH(double, x);
    QFETCH(double, endX);
    QFETCH(int, fontSize);
    QFETCH(int, seconds);
    tagKorviaShowTextInfo info = title(QString(6000, QLatin1Char('w')));
    info.x = x;
    info.scrollEndX = endX;
    info.scrollTime = static_cast<float>(seconds);
    info.style.fontSize = fontSize;
    texts().add(PGMObject, info);
    QTRY_VERIFY_WITH_TIMEOUT((stage_->beginFrame(1), !layers(*program_).empty()), 20'000);
    for (int frame = 0; frame < 30; ++frame) {
      stage_->beginFrame(2);
      QTRY_VERIFY_WITH_TIMEOUT((stage_->beginFrame(0), isCovered()), 20'000);
    }
  }

  void anEntranceBeginsOnEachBusWithItsFirstLayer() {
    tagKorviaShowTextInfo info = title(QString(300, QLatin1Char('w')));
    info.x = 0.5;
    info.scrollTime = 100;
    info.enter = {.effect = 1, .duration = 1000};
    texts().add(PVMObject, info);
    QVERIFY(shows(*preview_, 1));
    texts().add(PGMObject, info);
    double before = 0;
    QTRY_VERIFY_WITH_TIMEOUT((stage_->beginFrame(), program_->layers().layers().at(0).layer != nullptr),
                             10'000);
    before = program_->layers().layers().at(0).pose.moveY;
    // It flies in from the top, and has gone one frame's way at most.
    stage_->beginFrame();
    const double step = program_->layers().layers().at(0).pose.moveY - before;
    QVERIFY(step > 0);
    const double way = program_->layers().layers().at(0).layer->content.bottom();
    QVERIFY2(before < -0.85 * way, QByteArray::number(before / way));
  }

  // Else it is sampled, which takes longer and blurs it.
  void aStandingTextIsShownAsItWasDrawn() {
    constexpr int kTexts = 40;
    for (int i = 0; i < kTexts; ++i) {
      tagKorviaShowTextInfo info = title(QString(i + 1, QLatin1Char('i')));
      info.enter = info.exit = {};
      info.x = i / double{kTexts};
      info.y = 1 - i / double{kTexts};
      texts().add(PGMObject, info);
    }
    QVERIFY(shows(*program_, kTexts));
    for (const StackedLayer& stacked : program_->layers().layers())
      QVERIFY2(stacked.pose.isPlain(), QByteArray::number(stacked.pose.moveX));
  }

  void aMovedItemIsThereWithTheNextFrame() {
    const tagKorviaShowTextInfo info = title();
    texts().add(PGMObject, info);
    QVERIFY(shows(*program_, 1));
    for (int i = 0; i < 30; ++i)
      stage_->beginFrame();
    const QPointF drawn = program_->layers().layers().at(0).layer->content.center();
    texts().place(info.id, 0.25, 0.75);
    stage_->beginFrame();
    const StackedLayer& stacked = program_->layers().layers().at(0);
    const QPointF shown = stacked.layer->content.center() + QPointF(stacked.pose.moveX, stacked.pose.moveY);
    QCOMPARE(shown, QPointF(160, 270));
    QVERIFY(shown != drawn);
    std::vector<PlacedItem> items;
    texts().describe(items);
    QCOMPARE(items.at(0).content.center(), QPointF(160, 270));
  }

  void aCrawlWithoutSensePlacesStands_data() {
    QTest::addColumn<double>("x");
    QTest::addColumn<double>("endX");
    QTest::addColumn<float>("seconds");
    const double nan = std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("no number as its begin") << nan << 0.0 << 5.0F;
    QTest::newRow("no number as its end") << 0.5 << nan << 5.0F;
    QTest::newRow("endless") << 0.5 << 1e300 << 5.0F;
    QTest::newRow("no time at all") << 0.5 << 0.0 << 1e-42F;
  }
  void aCrawlWithoutSensePlacesStands() {
    QFETCH(double, x);
    QFETCH(double, endX);
    QFETCH(float, seconds);
    tagKorviaShowTextInfo info = title();
    info.x = 0.5;
    info.scrollTime = 100;
    texts().add(PGMObject, info);
    QVERIFY(firstPose());
    info.x = x;
    info.scrollEndX = endX;
    info.scrollTime = seconds;
    texts().update(info);
    for (int i = 0; i < 20; ++i) {
      stage_->beginFrame();
      const StackedLayer& stacked = program_->layers().layers().at(0);
      QVERIFY(std::isfinite(stacked.pose.moveX));
      QTest::qWait(1);
    }
  }

  void anItemThatIsDrawnIsSeenWithinTwoFrames() {
    const tagKorviaShowTextInfo info = title();
    texts().add(PVMObject, info);
    QVERIFY(shows(*preview_, 1));
    texts().add(PGMObject, info);
    stage_->beginFrame();
    stage_->beginFrame();
    const StackedLayer& stacked = program_->layers().layers().at(0);
    QVERIFY(stacked.layer);
    QVERIFY(stacked.pose.opacity > 0);
  }

  void aCrawlHasItsOwnPlaceOnEachBus() {
    tagKorviaShowTextInfo info = title();
    info.x = 1;
    info.scrollTime = 10;
    texts().add(PVMObject, info);
    QTRY_VERIFY((stage_->beginFrame(10), preview_->layers().layers().at(0).layer != nullptr));
    for (int i = 0; i < 5; ++i)
      stage_->beginFrame(10);
    texts().add(PGMObject, info);
    QTRY_VERIFY((stage_->beginFrame(1), program_->layers().layers().at(0).layer != nullptr));
    QVERIFY(preview_->layers().layers().at(0).pose.moveX < program_->layers().layers().at(0).pose.moveX - 50);
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
