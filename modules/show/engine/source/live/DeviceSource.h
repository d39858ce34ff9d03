// Makes the sources of capture devices. Console thread.
#pragma once
#include <memory>
#include <optional>

#include "CaptureSettings.h"
#include "LiveInput.h"
#include "engine/source/Source.h"

namespace korvia {

/// A camera by its lasting identifier, or by its name, and a sound device by its name; one of both may be
/// absent.
std::shared_ptr<Source> makeDeviceSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                                         const tagKorviaFormatInfo& format);

/// The input of an SDI card.
std::shared_ptr<Source> makeCardSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                                       const tagKorviaFormatInfo& format);

/// What the source keeps to for a device: the latency is as short as the sound allows, less than
/// three frames with the wait for the tick.
LiveSettings captureLiveSettings(FrameRate rate, const QString& description);

/// What a card is asked for; none for a format that no card has. The elements' properties are those of the
/// record.
std::optional<CaptureSettings> cardSettings(const SourceContext& context,
                                            const tagKorviaShowSourceInfo& info);

/// What a camera is asked for, without the elements.
CaptureSettings deviceSettings(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                               const tagKorviaFormatInfo& format);

}  // namespace korvia
