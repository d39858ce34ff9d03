// Which input of a card the name of a signal means.
#include <QtTest>

#include "engine/source/live/SignalInput.h"

using namespace korvia;

namespace {

v4l2_input input(unsigned index, const char* name, unsigned type = V4L2_INPUT_TYPE_CAMERA) {
  v4l2_input made{};
  made.index = index;
  made.type = type;
  qstrncpy(reinterpret_cast<char*>(made.name), name, sizeof(made.name));
  return made;
}

}  // namespace

class SignalInputTest : public QObject {
  Q_OBJECT

 private slots:
  void byNameAndType_data() {
    QTest::addColumn<QString>("signal");
    QTest::addColumn<int>("index");
    QTest::newRow("tuner") << "Tuner" << 0;
    QTest::newRow("composite") << "Composite" << 1;
    QTest::newRow("s-video") << "SVideo" << 3;
    QTest::newRow("component") << "Component" << 4;
    QTest::newRow("hdmi") << "HDMI" << 5;
    QTest::newRow("missing") << "SDI" << -1;
    QTest::newRow("unknown") << "Antenna" << -1;
  }

  void byNameAndType() {
    QFETCH(QString, signal);
    const std::vector<v4l2_input> inputs{input(0, "Television", V4L2_INPUT_TYPE_TUNER),
                                         input(1, "Composite1"),
                                         input(2, "Composite2"),
                                         input(3, "S-Video"),
                                         input(4, "YPbPr component"),
                                         input(5, "HDMI 1")};
    QTEST(findSignalInput(inputs, signal), "index");
  }

  void nameWithoutAnEnd() {
    v4l2_input full = input(7, "");
    std::fill(std::begin(full.name), std::end(full.name), static_cast<__u8>('x'));
    QCOMPARE(findSignalInput({full}, "HDMI"), -1);
  }

  void defaultLeavesTheDevice() {
    QString reason;
    QVERIFY(selectSignalInput("/nowhere", "", reason));
    QVERIFY(selectSignalInput("/nowhere", "Default", reason));
    QVERIFY(reason.isEmpty());
  }

  void deviceThatIsNone() {
    QString reason;
    QVERIFY(!selectSignalInput("/nowhere", "HDMI", reason));
    QCOMPARE(reason, QString("camera cannot be opened"));
    QVERIFY(!selectSignalInput("/dev/null", "HDMI", reason));
    QCOMPARE(reason, QString("camera has no input HDMI"));
  }
};

QTEST_GUILESS_MAIN(SignalInputTest)
#include "tst_signal_input.moc"
