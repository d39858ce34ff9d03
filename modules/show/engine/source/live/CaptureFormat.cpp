#include "CaptureFormat.h"

#include <cmath>
#include <limits>

namespace korvia {

namespace {

constexpr char kRaw[] = "video/x-raw";
constexpr char kJpeg[] = "image/jpeg";
constexpr double kCostOfJpeg = 0.01;
constexpr double kCostOfSurplusRate = 0.1;

CaptureFormat formatOf(const GstStructure* structure) {
  CaptureFormat format;
  gst_structure_get_int(structure, "width", &format.size.width);
  gst_structure_get_int(structure, "height", &format.size.height);
  int numerator = 0;
  int denominator = 1;
  gst_structure_get_fraction(structure, "framerate", &numerator, &denominator);
  format.rate = {numerator, denominator};
  return format;
}

/// In doublings and halvings.
double costOf(const CaptureFormat& format, const CaptureFormat& wanted) {
  // A rate of 0 stands for a changing one, of which nothing is known.
  const double faster =
      format.rate.isValid() ? std::log2(format.rate.framesPerSecond() / wanted.rate.framesPerSecond()) : -1;
  return std::abs(std::log2(static_cast<double>(format.size.width) / wanted.size.width)) +
         std::abs(std::log2(static_cast<double>(format.size.height) / wanted.size.height)) +
         (faster < 0 ? -faster : faster * kCostOfSurplusRate);
}

/// The structure with the values that are nearest to what is wanted. The caller frees it.
GstStructure* nearest(const GstStructure* offered, const CaptureFormat& wanted) {
  GstStructure* fixed = gst_structure_copy(offered);
  if (!gst_structure_has_field(fixed, "width"))
    gst_structure_set(fixed, "width", G_TYPE_INT, wanted.size.width, nullptr);
  if (!gst_structure_has_field(fixed, "height"))
    gst_structure_set(fixed, "height", G_TYPE_INT, wanted.size.height, nullptr);
  gst_structure_fixate_field_nearest_int(fixed, "width", wanted.size.width);
  gst_structure_fixate_field_nearest_int(fixed, "height", wanted.size.height);
  gst_structure_fixate_field_nearest_fraction(fixed, "framerate", static_cast<gint>(wanted.rate.numerator),
                                              static_cast<gint>(wanted.rate.denominator));
  gst_structure_fixate(fixed);
  return fixed;
}

bool isPlainMemory(GstCaps* caps, guint index) {
  const GstCapsFeatures* features = gst_caps_get_features(caps, index);
  return !features || gst_caps_features_is_equal(features, GST_CAPS_FEATURES_MEMORY_SYSTEM_MEMORY);
}

}  // namespace

CaptureChoice chooseCaptureFormat(GstCaps* offered, const CaptureFormat& wanted) {
  CaptureChoice best;
  double leastCost = std::numeric_limits<double>::infinity();
  for (guint i = 0; i < gst_caps_get_size(offered); ++i) {
    const GstStructure* structure = gst_caps_get_structure(offered, i);
    const bool isJpeg = gst_structure_has_name(structure, kJpeg);
    if (!isPlainMemory(offered, i) || (!isJpeg && !gst_structure_has_name(structure, kRaw)))
      continue;
    GstStructure* fixed = nearest(structure, wanted);
    const CaptureFormat format = formatOf(fixed);
    const double cost = costOf(format, wanted) + (isJpeg ? kCostOfJpeg : 0);
    if (format.size.isEmpty() || cost >= leastCost) {
      gst_structure_free(fixed);
      continue;
    }
    leastCost = cost;
    gst_clear_caps(&best.caps);
    best = {gst_caps_new_full(fixed, nullptr), format, isJpeg};
  }
  return best;
}

}  // namespace korvia
