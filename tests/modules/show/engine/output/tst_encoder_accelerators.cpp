// Encoders of GPUs are stood in for by x264 under their names, as no machine of the tests has any.
#include <gst/gst.h>

#include <QDir>
#include <QElapsedTimer>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QtTest>
#include <array>
#include <atomic>

#include "RecordRig.h"
#include "engine/output/EncoderTrials.h"
#include "support/VideoJudge.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr FrameSize kSize{320, 180};
constexpr int kFinishMs = 20000;

enum class Behaviour { Works, FailsAtStart, HangsAtStart, NeverGivesAPacket, FailsAfter30 };

struct StandIn {
  const char* factory;
  std::atomic<Behaviour> behaviour{Behaviour::Works};
  std::atomic<int> made{0};
  std::atomic<int> alive{0};
  std::atomic<int> kbps{0};  // the newest that was set
};

StandIn standIns[] = {{"nvautogpuh264enc"}, {"nvcudah264enc"}, {"nvh264enc"},   {"vah264enc"},
                      {"vah264lpenc"},      {"qsvh264enc"},    {"vaapih264enc"}};
Gate* hangingDriver = nullptr;

struct StandInBin {
  GstBin parent;
  StandIn* own;
  int frames;
};

struct StandInClass {
  GstBinClass parent;
  StandIn* own;
};

GstStaticPadTemplate sinkTemplate =
    GST_STATIC_PAD_TEMPLATE("sink", GST_PAD_SINK, GST_PAD_ALWAYS, GST_STATIC_CAPS("video/x-raw,format=NV12"));
GstStaticPadTemplate srcTemplate =
    GST_STATIC_PAD_TEMPLATE("src", GST_PAD_SRC, GST_PAD_ALWAYS, GST_STATIC_CAPS("video/x-h264"));

GstElementClass* parentClass = nullptr;

GstPadProbeReturn onFrame(GstPad*, GstPadProbeInfo*, gpointer self) {
  auto* bin = static_cast<StandInBin*>(self);
  const Behaviour behaviour = bin->own->behaviour;
  ++bin->frames;
  if (behaviour == Behaviour::NeverGivesAPacket)
    return GST_PAD_PROBE_DROP;
  if (behaviour != Behaviour::FailsAfter30 || bin->frames <= 30)
    return GST_PAD_PROBE_OK;
  if (bin->frames == 31)
    GST_ELEMENT_ERROR(bin, STREAM, ENCODE, ("the device is gone"), (nullptr));
  return GST_PAD_PROBE_DROP;
}

GstStateChangeReturn changeState(GstElement* element, GstStateChange change) {
  const Behaviour behaviour = reinterpret_cast<StandInBin*>(element)->own->behaviour;
  if (change == GST_STATE_CHANGE_NULL_TO_READY && behaviour == Behaviour::FailsAtStart)
    return GST_STATE_CHANGE_FAILURE;
  if (change == GST_STATE_CHANGE_NULL_TO_READY && behaviour == Behaviour::HangsAtStart)
    hangingDriver->pass();
  return parentClass->change_state(element, change);
}

void setProperty(GObject* object, guint, const GValue* value, GParamSpec*) {
  reinterpret_cast<StandInBin*>(object)->own->kbps = static_cast<int>(g_value_get_uint(value));
}

void getProperty(GObject*, guint, GValue*, GParamSpec*) {}

void finalize(GObject* object) {
  StandIn* own = reinterpret_cast<StandInBin*>(object)->own;
  G_OBJECT_CLASS(parentClass)->finalize(object);
  --own->alive;
}

void initClass(gpointer table, gpointer own) {
  static_cast<StandInClass*>(table)->own = static_cast<StandIn*>(own);
  parentClass = GST_ELEMENT_CLASS(g_type_class_peek_parent(table));
  auto* element = static_cast<GstElementClass*>(table);
  gst_element_class_set_static_metadata(element, "stand-in", "Codec/Encoder/Video", "x264", "Korvia");
  gst_element_class_add_static_pad_template(element, &sinkTemplate);
  gst_element_class_add_static_pad_template(element, &srcTemplate);
  element->change_state = changeState;
  auto* object = static_cast<GObjectClass*>(table);
  object->set_property = setProperty;
  object->get_property = getProperty;
  object->finalize = finalize;
  g_object_class_install_property(
      object, 1, g_param_spec_uint("bitrate", "bitrate", "kbit/s", 0, 100'000, 0, G_PARAM_WRITABLE));
}

void initBin(GTypeInstance* instance, gpointer table) {
  auto* bin = reinterpret_cast<StandInBin*>(instance);
  bin->own = static_cast<StandInClass*>(table)->own;
  ++bin->own->made;
  ++bin->own->alive;
  GstElement* encoder = gst_element_factory_make("x264enc", nullptr);
  gst_util_set_object_arg(G_OBJECT(encoder), "tune", "zerolatency");
  gst_bin_add(GST_BIN(bin), encoder);
  for (GstStaticPadTemplate* side : {&sinkTemplate, &srcTemplate}) {
    GstPad* inner = gst_element_get_static_pad(encoder, side->name_template);
    GstPadTemplate* outer = gst_static_pad_template_get(side);
    GstPad* pad = gst_ghost_pad_new_from_template(side->name_template, inner, outer);
    if (side == &sinkTemplate)
      gst_pad_add_probe(pad, GST_PAD_PROBE_TYPE_BUFFER, onFrame, bin, nullptr);
    gst_element_add_pad(GST_ELEMENT(bin), pad);
    gst_object_unref(outer);
    gst_object_unref(inner);
  }
}

void registerStandIns() {
  for (StandIn& own : standIns) {
    GTypeInfo info = {};
    info.class_size = sizeof(StandInClass);
    info.class_init = initClass;
    info.class_data = &own;
    info.instance_size = sizeof(StandInBin);
    info.instance_init = initBin;
    const GType type =
        g_type_register_static(GST_TYPE_BIN, (QByteArray("StandIn-") + own.factory).constData(), &info, {});
    QVERIFY(gst_element_register(nullptr, own.factory, GST_RANK_NONE, type));
  }
}

StandIn& standIn(const char* factory) {
  return *std::find_if(std::begin(standIns), std::end(standIns),
                       [factory](const StandIn& own) { return qstrcmp(own.factory, factory) == 0; });
}

int madeInAll() {
  return std::accumulate(std::begin(standIns), std::end(standIns), 0,
                         [](int sum, const StandIn& own) { return sum + own.made; });
}

}  // namespace

class TestEncoderAccelerators : public QObject {
  Q_OBJECT

 private:
  RecordingSettings settings(KorviaShowEncodeAccelerator accelerator) const {
    RecordingSettings settings;
    settings.file.folder = folder_->path();
    settings.file.name = QStringLiteral("take");
    settings.encoder.label = QStringLiteral("the slot");
    settings.encoder.picture = {kSize, {25, 1}, 1000};
    settings.encoder.accelerator = accelerator;
    settings.encoder.trials = trials_;
    return settings;
  }
  /// Records so many frames without waiting for the encoder.
  void record(const RecordingSettings& settings, int count) {
    Recording recording(settings);
    FramePool pool(kSize);
    for (int i = 0; i < count; ++i)
      recording.pushFrame(patternFrame(pool, i));
    recording.finish();
    QVERIFY(recording.waitFinished(kFinishMs));
    QCOMPARE(recording.figures().framesDropped, qint64(0));
  }
  QStringList files() const {
    QStringList files;
    for (const QFileInfo& file : QDir(folder_->path()).entryInfoList(QDir::Files, QDir::Name))
      files << file.filePath();
    // The first one has no number in its name.
    std::sort(files.begin(), files.end(), [](const QString& a, const QString& b) {
      return a.size() < b.size() || (a.size() == b.size() && a < b);
    });
    return files;
  }

  std::unique_ptr<QTemporaryDir> folder_;
  std::shared_ptr<EncoderTrials> trials_;

 private slots:
  void initTestCase() {
    gst_init(nullptr, nullptr);
    registerStandIns();
  }
  void init() {
    folder_ = std::make_unique<QTemporaryDir>();
    trials_ = std::make_shared<EncoderTrials>();
    for (StandIn& own : standIns) {
      own.behaviour = Behaviour::FailsAtStart;
      own.made = 0;
      own.kbps = 0;
    }
  }
  void cleanup() {
    for (StandIn& own : standIns)
      QTRY_COMPARE(own.alive.load(), 0);
  }

  void theFirstThatWorksEncodes_data() {
    QTest::addColumn<int>("accelerator");
    QTest::addColumn<QByteArray>("works");
    QTest::addColumn<QString>("line");
    const int integrated = EncodeAcceleratorIntegratedGpu;
    const int independent = EncodeAcceleratorIndependentGpu;
    QTest::newRow("va") << integrated << QByteArray("vah264enc") << "the slot is encoded by VA-API";
    QTest::newRow("va low power") << integrated << QByteArray("vah264lpenc")
                                  << "the slot is encoded by VA-API low power";
    QTest::newRow("qsv") << integrated << QByteArray("qsvh264enc") << "the slot is encoded by QSV";
    QTest::newRow("old va") << integrated << QByteArray("vaapih264enc")
                            << "the slot is encoded by the old VA-API plugin";
    QTest::newRow("not integrated") << integrated << QByteArray("nvh264enc")
                                    << "the slot is encoded by x264: no encoder of an integrated GPU works";
    QTest::newRow("any nv") << independent << QByteArray("nvautogpuh264enc")
                            << "the slot is encoded by NVENC on any GPU";
    QTest::newRow("nv cuda") << independent << QByteArray("nvcudah264enc") << "the slot is encoded by NVENC";
    QTest::newRow("nv") << independent << QByteArray("nvh264enc")
                        << "the slot is encoded by NVENC by the older plugin";
    QTest::newRow("not independent") << independent << QByteArray("vah264enc")
                                     << "the slot is encoded by x264: no encoder of an independent GPU works";
    QTest::newRow("cpu") << int(EncodeAcceleratorSoftware) << QByteArray("nvh264enc")
                         << "the slot is encoded by x264";
  }
  void theFirstThatWorksEncodes() {
    QFETCH(int, accelerator);
    QFETCH(QByteArray, works);
    QFETCH(QString, line);
    StandIn& good = standIn(works.constData());
    good.behaviour = Behaviour::Works;
    QTest::ignoreMessage(QtInfoMsg, qPrintable(line));
    record(settings(static_cast<KorviaShowEncodeAccelerator>(accelerator)), 20);
    const bool encodes = !line.contains("x264");
    QCOMPARE(good.made.load(), encodes ? 2 : 0);  // the trial and the recording
    QCOMPARE(good.kbps.load(), encodes ? 1000 : 0);
    QCOMPARE(files().size(), 1);
    QByteArray complaints;
    QCOMPARE(numbersIn(VideoJudge::decodeLuma(files().value(0), &complaints), kSize), countTo(20));
    QCOMPARE(complaints, QByteArray());
    QCOMPARE(VideoJudge::judge(files().value(0)).keyFrames, QVector<int>({0}));
  }

  void framesWaitForTheTrials() {
    // More than fit into the queue of a running encoder.
    standIn("nvautogpuh264enc").behaviour = Behaviour::NeverGivesAPacket;
    standIn("nvh264enc").behaviour = Behaviour::Works;
    QTest::ignoreMessage(QtInfoMsg, "the slot is encoded by NVENC by the older plugin");
    record(settings(EncodeAcceleratorIndependentGpu), 60);
    QCOMPARE(numbersIn(VideoJudge::decodeLuma(files().value(0)), kSize), countTo(60));
  }

  void aDriverThatHangsIsLeftBehind() {
    Gate gate;
    hangingDriver = &gate;
    const auto opener = qScopeGuard([&gate] {
      gate.open();
      QTRY_COMPARE(standIn("nvcudah264enc").alive.load(), 0);
    });
    standIn("nvcudah264enc").behaviour = Behaviour::HangsAtStart;
    QTest::ignoreMessage(QtInfoMsg, "the slot is encoded by x264: no encoder of an independent GPU works");
    record(settings(EncodeAcceleratorIndependentGpu), 60);
    QCOMPARE(numbersIn(VideoJudge::decodeLuma(files().value(0)), kSize), countTo(60));
  }

  void whatFailedIsNotTriedAgain() {
    standIn("nvautogpuh264enc").behaviour = Behaviour::NeverGivesAPacket;
    record(settings(EncodeAcceleratorIndependentGpu), 5);
    const int made = madeInAll();
    QCOMPARE(made, 3);
    record(settings(EncodeAcceleratorIndependentGpu), 5);
    QCOMPARE(madeInAll(), made);
    // Another size is another case.
    RecordingSettings small = settings(EncodeAcceleratorIndependentGpu);
    small.encoder.picture.size = {160, 90};
    record(small, 5);
    QCOMPARE(madeInAll(), 2 * made);
  }

  void oneThatFailsMidwayIsReplaced_data() {
    QTest::addColumn<int>("encapsulation");
    QTest::newRow("mp4") << int(EncapsulationMp4);
    QTest::newRow("ts") << int(EncapsulationTs);
    QTest::newRow("mkv") << int(EncapsulationMkv);
  }
  void oneThatFailsMidwayIsReplaced() {
    QFETCH(int, encapsulation);
    standIn("nvh264enc").behaviour = Behaviour::FailsAfter30;
    QTest::ignoreMessage(
        QtWarningMsg, QRegularExpression(
                          "^NVENC by the older plugin has failed, the slot is encoded by x264 from here on : "
                          ".*the device is gone"));
    RecordingSettings own = settings(EncodeAcceleratorIndependentGpu);
    own.file.container = RecordContainer::of(encapsulation);
    record(own, 70);
    // A file has the headers of one encoder, so the recording goes on in a second one.
    QCOMPARE(files().size(), 2);
    QVector<int> numbers;
    for (const QString& file : files()) {
      QByteArray complaints;
      const QVector<int> here = numbersIn(VideoJudge::decodeLuma(file, &complaints), kSize);
      QCOMPARE(complaints, QByteArray());
      const VideoVerdict verdict = VideoJudge::judge(file);
      QCOMPARE(verdict.keyFrames.value(0, -1), 0);
      QVERIFY(areSpaced(verdict.pts, 0.04, countTo(here.size())));
      numbers += here;
    }
    QCOMPARE(numbers, countTo(70));
    // The next recording begins with x264.
    const int made = madeInAll();
    record(own, 5);
    QCOMPARE(madeInAll(), made);
  }
};

QTEST_GUILESS_MAIN(TestEncoderAccelerators)
#include "tst_encoder_accelerators.moc"
