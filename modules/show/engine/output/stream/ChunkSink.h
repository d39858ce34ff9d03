// The end of a pipeline whose muxed stream goes on inside the program. Any thread.
#pragma once
#include <QByteArray>
#include <functional>

#include "engine/output/MuxPipeline.h"

namespace korvia {

struct StreamChunk {
  QByteArray header;  ///< what a viewer needs before this or any other chunk
  QByteArray data;
  bool keyFrame = false;  ///< a viewer can begin here
};

enum class ChunkFormat { Flv, Ts };

/// A sink that hands each chunk of a muxer of that format to `onChunk`, on the streaming thread.
MuxSink chunkSink(ChunkFormat format, std::function<void(const StreamChunk&)> onChunk);

}  // namespace korvia
