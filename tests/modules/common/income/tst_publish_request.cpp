// The form that nginx posts for a publisher.
#include <QtTest>

#include "PublishRequest.h"

using korvia::PublishRequest;

namespace {
const QByteArray kFields =
    "app=income&flashver=FMLE/3.0%20(compatible%3B%20x)&swfurl=&tcurl=rtmp://127.0.0.1:1935/income&pageurl=&"
    "addr=192.0.2.7&clientid=1&call=publish&name=cam1&type=live";
}  // namespace

class PublishRequestTest : public QObject {
  Q_OBJECT

 private slots:
  void fieldsOfTheServer() {
    const auto request = PublishRequest::fromForm(kFields);
    QVERIFY(request);
    QCOMPARE(request->app, QString("income"));
    QCOMPARE(request->name, QString("cam1"));
    QCOMPARE(request->addr, QString("192.0.2.7"));
    QCOMPARE(request->key, QByteArray());
  }

  void argumentsOfThePublisherOverwriteNothing() {
    const auto request =
        PublishRequest::fromForm(kFields + "&app=live&name=cam2&addr=127.0.0.1&key=a=b&key=c&secret=s%41");
    QCOMPARE(request->app, QString("income"));
    QCOMPARE(request->name, QString("cam1"));
    QCOMPARE(request->addr, QString("192.0.2.7"));
    QCOMPARE(request->key, QByteArray("a=b"));
    QCOMPARE(request->secret, QByteArray("s%41"));
  }

  void decodesOnce() {
    QByteArray form = kFields;
    form.replace("name=cam1", "name=a%2526b%00c+d");
    const auto request = PublishRequest::fromForm(form);
    QCOMPARE(request->name, QString("a%26b") + QChar(0) + "c+d");
  }

  void otherFormsAreNothing_data() {
    QTest::addColumn<QByteArray>("form");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no name") << QByteArray(kFields).replace("name=cam1", "name=");
    QTest::newRow("no application") << QByteArray(kFields).replace("app=income", "app");
    QTest::newRow("no address") << QByteArray(kFields).replace("addr=192.0.2.7", "x=y");
    QTest::newRow("another call") << QByteArray(kFields).replace("call=publish", "call=play&call=publish");
    QTest::newRow("rubbish") << QByteArray("&&==%%%&=&\xff\x00", 11);
  }
  void otherFormsAreNothing() {
    QFETCH(QByteArray, form);
    QVERIFY(!PublishRequest::fromForm(form));
  }
};

QTEST_GUILESS_MAIN(PublishRequestTest)
#include "tst_publish_request.moc"
