// What nginx tells of its publishers, and how the status board shows it.
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

#include "NginxControl.h"
#include "PublisherTable.h"

using korvia::NginxControl;
using korvia::PublisherTable;
using korvia::RtmpPublisher;

namespace {

QByteArray statistics(const QByteArray& nameOfPlayed = "waiting") {
  return R"(<?xml version="1.0" encoding="utf-8" ?>
<rtmp><nginx_version>1.22.1</nginx_version><bytes_in>9</bytes_in>
<server><application><name>income</name><live>
<stream><name>cam1</name><time>6547</time><bw_in>8</bw_in><bytes_in>286394</bytes_in>
<client><id>7</id><address>192.0.2.9</address><time>500</time><flashver>LNX</flashver><active/></client>
<client><id>1</id><address>192.0.2.7</address><time>6723</time><dropped>0</dropped><publishing/><active/></client>
<meta><video><width>160</width></video><audio></audio></meta><nclients>2</nclients><publishing/><active/></stream>
<stream><name>)" +
         nameOfPlayed + R"(</name><bytes_in>0</bytes_in>
<client><id>8</id><address>192.0.2.9</address><time>500</time></client><nclients>1</nclients></stream>
<nclients>3</nclients></live></application>
<application><name>live</name><live><stream><name>output_0</name><bytes_in>5</bytes_in>
<client><id>9</id><address>127.0.0.1</address><time>100</time><publishing/></client></stream></live></application>
</server></rtmp>)";
}

}  // namespace

class NginxControlTest : public QObject {
  Q_OBJECT

 private slots:
  void readsThePublishers() {
    const auto publishers = NginxControl::parse(statistics());
    QVERIFY(publishers);
    QCOMPARE(publishers->size(), 2);
    const RtmpPublisher& first = publishers->at(0);
    QCOMPARE(first.app, QString("income"));
    QCOMPARE(first.name, QString("cam1"));
    QCOMPARE(first.addr, QString("192.0.2.7"));
    QCOMPARE(first.clientId, 1);
    QCOMPARE(first.bytesIn, 286394);
    QCOMPARE(first.connectedMs, 6723);
    QCOMPARE(first.players, 1);
    QCOMPARE(publishers->at(1).app, QString("live"));
    QCOMPARE(publishers->at(1).name, QString("output_0"));
  }

  void namesOfPlayersEndNoReading_data() {
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("control characters") << QByteArray("a\x01\x1b\x00 b", 6);
    QTest::newRow("no UTF-8") << QByteArray("\xff\xfe\xc0");
    QTest::newRow("no characters") << QByteArray("\xef\xbf\xbe\xef\xbf\xbf");
    QTest::newRow("marks") << QByteArray("&lt;/name&gt;&amp;");
  }
  void namesOfPlayersEndNoReading() {
    QFETCH(QByteArray, name);
    const auto publishers = NginxControl::parse(statistics(name));
    QVERIFY(publishers);
    QCOMPARE(publishers->size(), 2);
  }

  void brokenAnswerIsNone() {
    QVERIFY(!NginxControl::parse(statistics().left(700)));
    QVERIFY(!NginxControl::parse("<html>"));
    QVERIFY(!NginxControl::parse(""));
  }

  void noServerIsNoAnswer() {
    const QTemporaryDir folder;
    const NginxControl control(folder.path());
    QVERIFY(!control.isReady(std::chrono::milliseconds(200)));
    QVERIFY(!control.publishers(std::chrono::milliseconds(200)));
    QVERIFY(!NginxControl("/no/such/folder").isReady(std::chrono::milliseconds(200)));
  }

  void boardShowsRatesSinceTheLookBefore() {
    PublisherTable table;
    QCOMPARE(table.rows(), QJsonArray());
    table.update({{"income", "cam1", "192.0.2.7", 1, 1000, 12'345, 2}});
    QCOMPARE(table.rows().at(0).toObject(), (QJsonObject{{"name", "cam1"},
                                                         {"app", "income"},
                                                         {"addr", "192.0.2.7"},
                                                         {"kbps", 0},
                                                         {"seconds", 12},
                                                         {"players", 2}}));
    table.update({{"income", "cam1", "192.0.2.7", 1, 1'000'000, 12'345, 2}});
    QVERIFY(table.rows().at(0).toObject()["kbps"].toInt() > 0);
    // A new connection begins from nothing.
    table.update({{"income", "cam1", "192.0.2.7", 2, 2'000'000, 0, 0}});
    QCOMPARE(table.rows().at(0).toObject()["kbps"].toInt(), 0);
    table.update({});
    QCOMPARE(table.rows(), QJsonArray());
  }
};

QTEST_GUILESS_MAIN(NginxControlTest)
#include "tst_nginx_control.moc"
