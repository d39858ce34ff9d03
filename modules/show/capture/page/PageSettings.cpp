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

// The web engine's numbers of the steps of a load.
enum class LoadStep { Started, Redirected, Committed, Finished };

// Whether the load that has begun is to show the empty page.
constexpr const char* kWantsEmptyPage = "korvia-wants-empty-page";

void onLoadStep(GObject* webView, int step, gpointer source) {
  gchar* address = nullptr;
  g_object_get(webView, "uri", &address, nullptr);
  const bool isEmptyPage = g_str_has_prefix(address ? address : "", "about:");
  g_free(address);
  if (static_cast<LoadStep>(step) == LoadStep::Started)
    g_object_set_data(webView, kWantsEmptyPage, GINT_TO_POINTER(isEmptyPage ? 1 : 0));
  else if (static_cast<LoadStep>(step) == LoadStep::Committed && isEmptyPage &&
           !g_object_get_data(webView, kWantsEmptyPage))
    GST_ELEMENT_ERROR(GST_ELEMENT(source), RESOURCE, FAILED, (nullptr), ("Failed to load"));
}

}  // namespace

void failWhenRefused(GObject* webView, GstElement* source) {
  g_signal_connect(webView, "load-changed", G_CALLBACK(onLoadStep), source);
}

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
