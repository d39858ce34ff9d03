#include "PageSettings.h"

#include <dlfcn.h>

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace korvia {

namespace {

using SetDirectory = void (*)(GObject* context, const char* directory);

constexpr const char* kWebEngines[] = {"libWPEWebKit-1.1.so.0", "libWPEWebKit-1.0.so.3",
                                       "libWPEWebKit-2.0.so.1"};

/// The function of the web engine that GStreamer's plugin has loaded.
SetDirectory directorySetter() {
  for (const char* engine : kWebEngines) {
    if (void* library = ::dlopen(engine, RTLD_LAZY | RTLD_NOLOAD))
      return reinterpret_cast<SetDirectory>(
          ::dlsym(library, "webkit_web_context_set_web_extensions_directory"));
  }
  return nullptr;
}

/// The folder of the extension that is installed with the plugin.
QByteArray extensionFolder() {
  GstPlugin* plugin = gst_registry_find_plugin(gst_registry_get(), "wpe");
  if (!plugin)
    return {};
  const QFileInfo file(QFile::decodeName(gst_plugin_get_filename(plugin)));
  gst_object_unref(plugin);
  return QFile::encodeName(
      QDir::cleanPath(file.absolutePath() + QStringLiteral("/../gst-plugins-bad/wpe-extension")));
}

}  // namespace

void sendSoundToPipeline(GObject* webView) {
  GObject* context = nullptr;
  g_object_get(webView, "web-context", &context, nullptr);
  if (!context)
    return;
  // The plugin sets its folder by the same signal, and before this.
  g_signal_connect(context, "initialize-web-extensions", G_CALLBACK(+[](GObject* self, gpointer) {
                     const QByteArray folder = extensionFolder();
                     const SetDirectory set = directorySetter();
                     if (set && QFileInfo::exists(QFile::decodeName(folder)))
                       set(self, folder.constData());
                   }),
                   nullptr);
  g_object_unref(context);
}

}  // namespace korvia
