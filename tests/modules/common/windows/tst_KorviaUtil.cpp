// The windows of a display without a window manager and with one's list.
#include <xcb/xcb.h>

#include <QtTest>

#include "KorviaUtil.h"
#include "support/VirtualDisplay.h"

namespace {

/// Another program on the display: a window with a title, a class and, if asked for, a process.
class OtherProgram {
 public:
  OtherProgram() : connection_(xcb_connect(nullptr, nullptr)) {
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
  }
  ~OtherProgram() { xcb_disconnect(connection_); }
  OtherProgram(const OtherProgram&) = delete;
  OtherProgram& operator=(const OtherProgram&) = delete;

  xcb_window_t open(const QByteArray& title, const QByteArray& className) {
    const xcb_window_t window = xcb_generate_id(connection_);
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, root_, 0, 0, 100, 100, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    put(window, "_NET_WM_NAME", "UTF8_STRING", 8, title);
    if (!className.isEmpty())
      put(window, "WM_CLASS", "STRING", 8,
          "instance" + QByteArray(1, '\0') + className + QByteArray(1, '\0'));
    xcb_map_window(connection_, window);
    sync();
    return window;
  }
  void setProcess(xcb_window_t window, quint32 process) {
    put(window, "_NET_WM_PID", "CARDINAL", 32, QByteArray(reinterpret_cast<const char*>(&process), 4));
    sync();
  }
  void setClientList(xcb_window_t window) {
    put(root_, "_NET_CLIENT_LIST", "WINDOW", 32, QByteArray(reinterpret_cast<const char*>(&window), 4));
    sync();
  }

 private:
  xcb_atom_t atom(const QByteArray& name) {
    const auto cookie = xcb_intern_atom(connection_, 0, static_cast<quint16>(name.size()), name.constData());
    xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(connection_, cookie, nullptr);
    const xcb_atom_t found = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    free(reply);
    return found;
  }
  void put(xcb_window_t window, const char* name, const char* type, quint8 bits, const QByteArray& bytes) {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, atom(name), atom(type), bits,
                        static_cast<quint32>(bytes.size()) * 8 / bits, bytes.constData());
  }
  void sync() { atom("WM_NAME"); }

  xcb_connection_t* connection_;
  xcb_window_t root_ = 0;
};

}  // namespace

class KorviaUtilTest : public QObject {
  Q_OBJECT

 private slots:
  void listsWindows() {
    korvia::test::VirtualDisplay display;
    QVERIFY(display.start({320, 240}));
    qputenv("DISPLAY", display.name().toLatin1());
    OtherProgram program;
    QCOMPARE(windows().size(), 0);
    const xcb_window_t first = program.open("Pr\xc3\xa4sentation", "Slides");
    const xcb_window_t second = program.open("Notes", "");
    program.open("", "Untitled");
    QCOMPARE(windows(),
             (QList<tagKorviaWindowHWNDInfo>{{QString::fromUtf8("Pr\u00e4sentation"), idOf(first), "Slides"},
                                             {"Notes", idOf(second), ""}}));
    program.setProcess(first, static_cast<quint32>(QCoreApplication::applicationPid()));
    QCOMPARE(windows().size(), 1);
    program.setProcess(first, 1);
    program.setClientList(first);
    QCOMPARE(windows().size(), 1);
    QCOMPARE(windows().first().windowId, idOf(first));
  }

  void noDisplayHasNoWindows() {
    qputenv("DISPLAY", ":99999");
    QCOMPARE(windows().size(), 0);
  }

 private:
  static QString idOf(xcb_window_t window) { return QString("0x%1").arg(window, 0, 16); }
  static QList<tagKorviaWindowHWNDInfo> windows() {
    QList<tagKorviaWindowHWNDInfo> list;
    KorviaUtil::fillWindowHwndList(list);
    return list;
  }
};

QTEST_GUILESS_MAIN(KorviaUtilTest)
#include "tst_KorviaUtil.moc"
