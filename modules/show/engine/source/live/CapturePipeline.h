// Steps that the pipelines of capture devices have in common. Control thread of the source.
#pragma once
#include <cstdint>

#include "CaptureSettings.h"
#include "LivePipeline.h"

namespace korvia {

/// Adds the element and gives the caller's reference up.
void addAndRelease(LivePipeline& pipeline, GstElement* element);

/// Sets a property by its text, when the element has it.
void setIfTextFits(GstElement* element, const char* property, const char* value);

/// Links and unreferences the pad.
bool linkToPad(GstElement* from, GstPad* pad);

/// The system's clock, whose time `baseNs` is the stamp 0, so that pipelines with the same base have the same
/// stamps.
void useCommonClock(LivePipeline& pipeline, std::int64_t baseNs);
std::int64_t commonClockNs();

/// Links the element of a device, which is in the pipeline, to the pictures' sink: in the offered format that
/// is nearest to the wanted one, decoded and not deinterlaced if so wanted. Opens the device. False with a
/// reason when that is impossible; a format that is not the wanted one is logged.
bool linkPictures(LivePipeline& pipeline, GstElement* source, const CaptureSettings& settings,
                  QString& reason);

}  // namespace korvia
