// Converts decoded pictures of one format into the working format: planar 4:2:0, 8 bit, BT.709 limited range,
// in the same size. Values are rounded without bias. Pictures with alpha are premultiplied. ColorTable maps
// wide gamuts and high dynamic ranges. The two fields of an interlaced picture are converted separately, so
// that their chroma does not mix. One thread at a time.
#pragma once
#include <gst/video/video.h>
#include <zimg.h>

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "engine/frame/Frame.h"

namespace korvia {

class ColorTable;

enum class PictureScan { Progressive, Interlaced };

class PictureConverter {
 public:
  /// Null when pictures of this kind cannot be converted.
  static std::unique_ptr<PictureConverter> create(const GstVideoInfo& info, PictureScan scan);
  /// Whether a picture of this kind is in the working format already.
  static bool isWorkingFormat(const GstVideoInfo& info);
  ~PictureConverter();

  /// The size of the frames that convert() fills: the picture's, rounded up to whole chroma samples of each
  /// field. Samples outside the picture repeat its edge.
  FrameSize paddedSize() const { return padded_; }
  FrameAlpha alpha() const { return hasAlpha_ ? FrameAlpha::Plane : FrameAlpha::None; }
  /// Fills `to`, which has the padded size and the plane of alpha() when there is one. False when the picture
  /// cannot be read.
  bool convert(GstVideoFrame& from, Frame& to);

 private:
  struct GraphDelete {
    void operator()(zimg_filter_graph* graph) const { zimg_filter_graph_free(graph); }
  };
  struct AlignedDelete {
    void operator()(void* memory) const;
  };
  using AlignedMemory = std::unique_ptr<std::uint8_t, AlignedDelete>;
  /// The graph of one field, or of a whole picture.
  struct FieldGraph {
    std::unique_ptr<zimg_filter_graph, GraphDelete> graph;
    AlignedMemory scratch;
    AlignedMemory rows[4];
    zimg_image_buffer_const input = {};
  };
  /// The context of the graph's callback for input rows.
  struct RowRequest;

  PictureConverter(const GstVideoInfo& info, PictureScan scan);
  bool build();
  bool buildField(FieldGraph& field, zimg_field_parity_e parity);
  zimg_image_format inputFormat() const;
  zimg_image_format outputFormat() const;
  void loadRows(const RowRequest& request, int row);
  void loadPlaneRow(const GstVideoFrame& from, int component, int row, std::uint8_t* to, int width) const;
  void unpackRow(const GstVideoFrame& from, int row);
  int sourceRow(int row, int sourceHeight, int parity) const;
  static AlignedMemory allocate(std::size_t bytes);

  const GstVideoInfo info_;
  const int fields_;  // 1 for progressive pictures, else 2
  FrameSize padded_;
  bool hasAlpha_ = false;
  bool packed_ = false;  // samples are not separately addressable, so GStreamer unpacks the rows
  int depth_ = 8;
  unsigned subsampleW_ = 0;  // of the input's chroma, as a power of two
  unsigned subsampleH_ = 0;
  int bytes_ = 1;  // of an input sample
  std::array<FieldGraph, 2> graphs_;
  std::vector<std::uint8_t> unpacked_;
  std::shared_ptr<const ColorTable> table_;  // null when only matrix and range differ
  AlignedMemory tableInput_[3];              // the input of the table, 16 bits a sample
  int tableStride_[3] = {};
};

}  // namespace korvia
