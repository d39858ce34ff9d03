// Loads sibling modules by the names that the helpers carry. The one place that turns
// "KorviaCommonModule.dll" into a file of this machine. Console thread only.
#pragma once
#include <dlfcn.h>

#include <QDebug>
#include <QFileInfo>
#include <QString>

namespace korvia::modules {

/// "KorviaCommonModule.dll" -> "libKorviaCommonModule.so".
inline QString machineFileName(const QString& moduleName) {
  return QStringLiteral("lib") + QFileInfo(moduleName).completeBaseName() + QStringLiteral(".so");
}

/// Folder of the binary that this code is linked into, which is the console library.
inline QString ownFolder() {
  static const int anchor = 0;
  Dl_info info{};
  if (!dladdr(&anchor, &info) || !info.dli_fname)
    return QString();
  return QFileInfo(QString::fromLocal8Bit(info.dli_fname)).absolutePath();
}

/// Handle of the module, or null with a log line. Modules are never unloaded.
inline void* load(const wchar_t* moduleName) {
  const QString file = ownFolder() + QLatin1Char('/') + machineFileName(QString::fromWCharArray(moduleName));
  void* handle = dlopen(file.toLocal8Bit().constData(), RTLD_NOW | RTLD_LOCAL);
  if (!handle)
    qDebug("failed to load module : %s", dlerror());
  return handle;
}

inline void* resolve(void* handle, const char* entry) {
  return dlsym(handle, entry);
}

}  // namespace korvia::modules
