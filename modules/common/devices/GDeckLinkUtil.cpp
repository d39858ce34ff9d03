#include "GDeckLinkUtil.h"

#include <gst/gst.h>

#include "DeviceListing.h"

namespace {

/// The formats that the element knows, in its order. It does not tell which of them a single card has.
QStringList formatsOf(const char* element) {
  QStringList formats;
  GstElement* made = gst_element_factory_make(element, nullptr);
  if (!made)
    return formats;
  GParamSpec* mode = g_object_class_find_property(G_OBJECT_GET_CLASS(made), "mode");
  if (mode && G_IS_PARAM_SPEC_ENUM(mode)) {
    const GEnumClass* values = G_PARAM_SPEC_ENUM(mode)->enum_class;
    for (guint n = 0; n < values->n_values; ++n) {
      if (qstrcmp(values->values[n].value_nick, "auto") != 0)
        formats.append(QString::fromLatin1(values->values[n].value_nick));
    }
  }
  gst_object_unref(made);
  return formats;
}

}  // namespace

void GDeckLinkUtil::enumDecklink(QList<tagGDecklinkCardInfo>& cards, bool isInput) {
  QList<korvia::ListedDevice> devices;
  if (!korvia::listDevices(isInput ? "Video/Source" : "Video/Sink", devices))
    return;
  QStringList formats;
  for (const korvia::ListedDevice& device : std::as_const(devices)) {
    if (device.interface != QLatin1String("decklink"))
      continue;
    if (formats.isEmpty())
      formats = formatsOf(isInput ? "decklinkvideosrc" : "decklinkvideosink");
    cards.append({cards.size(), device.name, formats});
  }
}
