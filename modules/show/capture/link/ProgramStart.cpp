#include "ProgramStart.h"

#include <fcntl.h>
#include <spawn.h>

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QList>
#include <QStandardPaths>
#include <QVector>
#include <csignal>
#include <cstring>

namespace korvia {

namespace {

// What a page needs of the operator's environment, and what a capture of the display does.
constexpr const char* kCommonVariables[] = {"PATH",         "LANG",         "LC_ALL",       "TZ",
                                            "ASAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS"};
constexpr const char* kPageVariables[] = {"http_proxy",  "https_proxy", "no_proxy",       "HTTP_PROXY",
                                          "HTTPS_PROXY", "NO_PROXY",    "FONTCONFIG_FILE"};
constexpr const char* kDisplayVariables[] = {"DISPLAY"};

template <std::size_t count>
void copyVariables(const char* const (&names)[count], QList<QByteArray>& environment) {
  for (const char* name : names) {
    if (qEnvironmentVariableIsSet(name))
      environment << QByteArray(name) + '=' + qgetenv(name);
  }
}

/// The file with the key to the display: X programs find it in the operator's home, which the program does
/// not see.
QByteArray displayKeyFile() {
  const QByteArray named = qgetenv("XAUTHORITY");
  return named.isEmpty() ? QFile::encodeName(QDir::homePath() + QStringLiteral("/.Xauthority")) : named;
}

/// The list of GStreamer's plugins, which takes seconds to make. The processes of a page only read it.
QByteArray pluginRegistry() {
  QByteArray named = qgetenv(kCaptureRegistryVariable);
  if (!named.isEmpty())
    return named;
  return QFile::encodeName(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) +
                           QStringLiteral("/gstreamer-1.0/registry.x86_64.bin"));
}

QList<QByteArray> environmentOf(CaptureKind kind, const QByteArray& folder) {
  QList<QByteArray> environment{"HOME=" + folder, "TMPDIR=" + folder, "XDG_RUNTIME_DIR=" + folder};
  copyVariables(kCommonVariables, environment);
  if (kind == CaptureKind::Page) {
    copyVariables(kPageVariables, environment);
    environment << "LIBGL_ALWAYS_SOFTWARE=1"
                << "GSETTINGS_BACKEND=memory"
                << "GIO_USE_VFS=local"
                << "GST_REGISTRY_UPDATE=no"
                // Media of servers are kept in a file, which is /var/tmp otherwise.
                << "WPE_SHELL_MEDIA_DISK_CACHE_PATH=" + folder;
    if (const QByteArray registry = pluginRegistry(); QFileInfo::exists(QFile::decodeName(registry)))
      environment << QByteArray(kCaptureRegistryVariable) + '=' + registry;
  } else {
    copyVariables(kDisplayVariables, environment);
    environment << "XAUTHORITY=" + displayKeyFile();
  }
  return environment;
}

QVector<char*> pointersTo(QList<QByteArray>& texts) {
  QVector<char*> pointers;
  for (QByteArray& text : texts)
    pointers << text.data();
  return pointers << nullptr;
}

/// The program lies beside the one that runs.
QByteArray programFile() {
  const QFileInfo own(QStringLiteral("/proc/self/exe"));
  return QFile::encodeName(QFileInfo(own.symLinkTarget()).absolutePath() + QStringLiteral("/korvia-capture"));
}

void addSignals(posix_spawnattr_t& attributes) {
  sigset_t none;
  sigset_t all;
  sigemptyset(&none);
  sigfillset(&all);
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setsigdefault(&attributes, &all);
  posix_spawnattr_setflags(
      &attributes, static_cast<short>(POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF));
}

}  // namespace

std::optional<qint64> ProgramStart::run(CaptureKind kind, QString& reason) const {
  const QByteArray folderName = QFile::encodeName(folder);
  QList<QByteArray> arguments{programFile(), CaptureRequest::nameOf(kind).toLatin1()};
  QList<QByteArray> environment = environmentOf(kind, folderName);
  QVector<char*> argumentPointers = pointersTo(arguments);
  QVector<char*> environmentPointers = pointersTo(environment);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, errors, STDERR_FILENO);
  posix_spawn_file_actions_adddup2(&actions, channel, kCaptureChannelDescriptor);
  posix_spawn_file_actions_addclosefrom_np(&actions, kCaptureChannelDescriptor + 1);
  posix_spawn_file_actions_addchdir_np(&actions, folderName.constData());
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  addSignals(attributes);

  pid_t process = 0;
  const int error = ::posix_spawn(&process, argumentPointers[0], &actions, &attributes,
                                  argumentPointers.data(), environmentPointers.data());
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) {
    reason = QStringLiteral("capture program does not start : %1")
                 .arg(QString::fromLocal8Bit(std::strerror(error)).toLower());
    return std::nullopt;
  }
  return process;
}

}  // namespace korvia
