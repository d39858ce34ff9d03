#include "ConsoleLibrary.h"

#include <dlfcn.h>

#include <QFile>

#include "shell/IKorviaSarnhawk.h"

namespace korvia {

ConsoleLibrary::ConsoleLibrary(const QString& folder)
    : path_(folder + QStringLiteral("/libKorviaSarnhawk.so")) {}

IKorviaSarnhawk* ConsoleLibrary::createConsole() {
  error_.clear();
  void* library = dlopen(QFile::encodeName(path_).constData(), RTLD_NOW | RTLD_LOCAL);
  if (!library) {
    error_ = QStringLiteral("failed to load the console : %1").arg(QString::fromLocal8Bit(dlerror()));
    return nullptr;
  }
  const auto factory = reinterpret_cast<CreateKorviaSarnhawkFunction>(dlsym(library, "CreateKorviaSarnhawk"));
  if (!factory) {
    error_ = QStringLiteral("no console in %1 : %2").arg(path_, QString::fromLocal8Bit(dlerror()));
    return nullptr;
  }
  try {
    auto* console = static_cast<IKorviaSarnhawk*>(factory(&kIKorviaSarnhawkId, kInterfaceVersion));
    if (!console)
      error_ = QStringLiteral("the console's factory gave nothing");
    return console;
  } catch (const wchar_t* reason) {  // catches a wchar_t* as well
    error_ = QStringLiteral("the console's factory failed : %1").arg(QString::fromWCharArray(reason));
  } catch (const std::exception& exception) {
    error_ =
        QStringLiteral("the console's factory failed : %1").arg(QString::fromLocal8Bit(exception.what()));
  }
  return nullptr;
}

}  // namespace korvia
