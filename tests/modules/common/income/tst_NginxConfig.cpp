// Values in the configuration of the income server.
#include <QtTest>

#include "NginxConfig.h"

using korvia::NginxConfig;

class NginxConfigTest : public QObject {
  Q_OBJECT

 private slots:
  void pathsAreQuoted() {
    QCOMPARE(NginxConfig::quoted("/a b/c").value(), QByteArray("\"/a b/c\""));
    QCOMPARE(NginxConfig::quoted("/it's; {x} #y").value(), QByteArray("\"/it's; {x} #y\""));
    QCOMPARE(NginxConfig::quoted("/say \"hi\"").value(), QByteArray("\"/say \\\"hi\\\"\""));
    QCOMPARE(NginxConfig::quoted("/back\\slash").value(), QByteArray("\"/back\\\\slash\""));
  }

  void unsafePathsAreRefused() {
    QVERIFY(!NginxConfig::quoted("/a$b"));
    QVERIFY(!NginxConfig::quoted("/a\nb"));
    QVERIFY(!NginxConfig::quoted(QString("/a") + QChar(0) + "b"));
    NginxConfig config = sample();
    config.htmlFolder = "/srv/$uri";
    QVERIFY(!config.text());
  }

  void valuesStandInTheirPlaces() {
    const QByteArray text = sample().text().value();
    QVERIFY(text.startsWith("load_module \"/mods/ngx_rtmp_module.so\";\n"));
    for (const char* line : {"listen 127.0.0.1:1936;", "listen 192.0.2.7:1936;", "listen 127.0.0.1:19001;",
                             "listen 192.0.2.7:19001;"})
      QVERIFY2(text.contains(line), line);
    QVERIFY(text.contains("root \"/srv/html\";"));
    QVERIFY(text.contains("pid \"/tmp/w/nginx.pid\";"));
    // Both ask the gate.
    QCOMPARE(text.count("on_publish \"http://unix:gate.sock:/publish\";"), 2);
    // What controls the server has no address of the network.
    const QByteArray control = text.mid(text.indexOf("listen unix:control.sock;"));
    for (const char* word : {"/ready", "rtmp_stat", "rtmp_control"}) {
      QVERIFY(control.contains(word));
      QCOMPARE(text.count(word), control.count(word));
    }
    QVERIFY(text.contains("application income {"));
    QVERIFY(text.contains("application live {"));
    QVERIFY(text.contains("allow publish 127.0.0.1;\n      deny publish all;"));
    QCOMPARE(text.count('{'), text.count('}'));
  }

  void pathThatLooksLikeAMarkStays() {
    NginxConfig config = sample();
    config.workFolder = "/tmp/%HTML%";
    const QByteArray text = config.text().value();
    QVERIFY(text.contains("pid \"/tmp/%HTML%/nginx.pid\";"));
    QVERIFY(text.contains("root \"/srv/html\";"));
  }

 private:
  static NginxConfig sample() {
    NginxConfig config;
    config.modulePath = "/mods/ngx_rtmp_module.so";
    config.workFolder = "/tmp/w";
    config.htmlFolder = "/srv/html";
    config.addresses = QStringList{"127.0.0.1", "192.0.2.7"};
    config.httpPort = 19001;
    config.rtmpPort = 1936;
    return config;
  }
};

QTEST_GUILESS_MAIN(NginxConfigTest)
#include "tst_NginxConfig.moc"
