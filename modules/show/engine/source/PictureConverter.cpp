#include "PictureConverter.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "ColorTable.h"

namespace korvia {

namespace {

// Alignment of rows and buffers, for the widest vector registers.
constexpr std::size_t kAlignment = 64;
constexpr int kAlpha = 3;
// A picture without a stated matrix has that of BT.601 up to this height, and that of BT.709 above it.
constexpr int kMostSdLines = 576;

std::size_t alignedBytes(std::size_t bytes) {
  return (bytes + kAlignment - 1) / kAlignment * kAlignment;
}

int roundUp(int value, int step) {
  return (value + step - 1) / step * step;
}

bool isRgb(const GstVideoInfo& info) {
  return GST_VIDEO_INFO_IS_RGB(&info);
}

/// Whether each sample has bytes of its own, at a fixed step from the next one.
bool isAddressable(const GstVideoFormatInfo& format) {
  constexpr int kNotAddressable =
      GST_VIDEO_FORMAT_FLAG_COMPLEX | GST_VIDEO_FORMAT_FLAG_PALETTE | GST_VIDEO_FORMAT_FLAG_TILED;
  if (format.flags & kNotAddressable)
    return false;
  for (guint i = 0; i < format.n_components; ++i) {
    const guint depth = format.depth[i];
    if (depth != format.depth[0] || depth < 8 || depth > 16)
      return false;
    if (depth > 8 && !GST_VIDEO_FORMAT_INFO_IS_LE(&format))
      return false;
    if (depth == 8 && format.shift[i] != 0)
      return false;
  }
  return true;
}

zimg_matrix_coefficients_e matrixOf(const GstVideoInfo& info) {
  if (isRgb(info))
    return ZIMG_MATRIX_RGB;
  switch (info.colorimetry.matrix) {
    case GST_VIDEO_COLOR_MATRIX_FCC:
      return ZIMG_MATRIX_FCC;
    case GST_VIDEO_COLOR_MATRIX_BT601:
      return ZIMG_MATRIX_ST170_M;
    case GST_VIDEO_COLOR_MATRIX_SMPTE240M:
      return ZIMG_MATRIX_ST240_M;
    case GST_VIDEO_COLOR_MATRIX_BT2020:
      return ZIMG_MATRIX_BT2020_NCL;
    case GST_VIDEO_COLOR_MATRIX_BT709:
      return ZIMG_MATRIX_BT709;
    default:
      return info.height <= kMostSdLines ? ZIMG_MATRIX_ST170_M : ZIMG_MATRIX_BT709;
  }
}

zimg_chroma_location_e chromaLocationOf(const GstVideoInfo& info) {
  switch (static_cast<int>(info.chroma_site)) {
    case GST_VIDEO_CHROMA_SITE_NONE:  // JPEG
      return ZIMG_CHROMA_CENTER;
    case GST_VIDEO_CHROMA_SITE_COSITED:
    case GST_VIDEO_CHROMA_SITE_DV:
      return ZIMG_CHROMA_TOP_LEFT;
    case GST_VIDEO_CHROMA_SITE_V_COSITED:
      return ZIMG_CHROMA_TOP;
    default:
      return ZIMG_CHROMA_LEFT;
  }
}

zimg_pixel_range_e rangeOf(const GstVideoInfo& info) {
  if (info.colorimetry.range == GST_VIDEO_COLOR_RANGE_0_255)
    return ZIMG_RANGE_FULL;
  if (info.colorimetry.range == GST_VIDEO_COLOR_RANGE_16_235)
    return ZIMG_RANGE_LIMITED;
  return isRgb(info) ? ZIMG_RANGE_FULL : ZIMG_RANGE_LIMITED;
}

void repeatLast(std::uint8_t* row, int from, int to, int bytes) {
  for (int x = from; x < to; ++x)
    std::memcpy(row + x * bytes, row + (from - 1) * bytes, static_cast<std::size_t>(bytes));
}

template <typename Sample>
void gather(const std::uint8_t* from, int step, int shift, std::uint8_t* to, int count) {
  auto* samples = reinterpret_cast<Sample*>(to);
  for (int x = 0; x < count; ++x) {
    Sample sample;
    std::memcpy(&sample, from + static_cast<std::ptrdiff_t>(x) * step, sizeof(Sample));
    samples[x] = static_cast<Sample>(sample >> shift);
  }
}

}  // namespace

struct PictureConverter::RowRequest {
  PictureConverter* self;
  const GstVideoFrame* from;
  int field;
};

void PictureConverter::AlignedDelete::operator()(void* memory) const {
  std::free(memory);
}

PictureConverter::AlignedMemory PictureConverter::allocate(std::size_t bytes) {
  return AlignedMemory(
      static_cast<std::uint8_t*>(std::aligned_alloc(kAlignment, std::max(alignedBytes(bytes), kAlignment))));
}

bool PictureConverter::isWorkingFormat(const GstVideoInfo& info) {
  const GstVideoFormat format = GST_VIDEO_INFO_FORMAT(&info);
  return (format == GST_VIDEO_FORMAT_I420 || format == GST_VIDEO_FORMAT_YV12) &&
         rangeOf(info) == ZIMG_RANGE_LIMITED && matrixOf(info) == ZIMG_MATRIX_BT709 &&
         !ColorTable::kindOf(info.colorimetry);
}

PictureConverter::PictureConverter(const GstVideoInfo& info, PictureScan scan)
    : info_(info), fields_(scan == PictureScan::Interlaced ? 2 : 1) {
  const int stepX = std::max(2, 1 << info.finfo->w_sub[1]);
  const int stepY = std::max(2, 1 << info.finfo->h_sub[1]);
  padded_ = {roundUp(info.width, stepX), roundUp(info.height, stepY * fields_)};
}

PictureConverter::~PictureConverter() = default;

std::unique_ptr<PictureConverter> PictureConverter::create(const GstVideoInfo& info, PictureScan scan) {
  std::unique_ptr<PictureConverter> converter(new PictureConverter(info, scan));
  return converter->build() ? std::move(converter) : nullptr;
}

bool PictureConverter::build() {
  const GstVideoFormatInfo& format = *info_.finfo;
  packed_ = !isAddressable(format);
  if (packed_ && !format.unpack_func)
    return false;
  depth_ =
      static_cast<int>(packed_ ? gst_video_format_get_info(format.unpack_format)->depth[0] : format.depth[0]);
  bytes_ = depth_ > 8 ? 2 : 1;
  // Unpacked pictures have chroma in every pixel, grey ones are given it.
  if (!packed_ && format.n_components >= 3) {
    subsampleW_ = format.w_sub[1];
    subsampleH_ = format.h_sub[1];
  }
  if (const auto kind = ColorTable::kindOf(info_.colorimetry))
    table_ = ColorTable::of(*kind);
  // Nothing in use makes such material with alpha, so alpha is dropped.
  hasAlpha_ = GST_VIDEO_FORMAT_INFO_HAS_ALPHA(&format) && !table_;
  if (packed_)
    unpacked_.resize(static_cast<std::size_t>(info_.width) * 4 * static_cast<std::size_t>(bytes_));
  if (table_) {
    for (int i = 0; i < 3; ++i) {
      const int shift = i == 0 ? 0 : 1;
      tableStride_[i] = static_cast<int>(alignedBytes(static_cast<std::size_t>(padded_.width >> shift) * 2));
      tableInput_[i] = allocate(static_cast<std::size_t>(tableStride_[i]) *
                                static_cast<std::size_t>(padded_.height >> shift));
    }
  }
  if (fields_ == 1)
    return buildField(graphs_[0], ZIMG_FIELD_PROGRESSIVE);
  return buildField(graphs_[0], ZIMG_FIELD_TOP) && buildField(graphs_[1], ZIMG_FIELD_BOTTOM);
}

zimg_image_format PictureConverter::inputFormat() const {
  zimg_image_format format;
  zimg_image_format_default(&format, ZIMG_API_VERSION);
  format.width = static_cast<unsigned>(padded_.width);
  format.height = static_cast<unsigned>(padded_.height / fields_);
  format.pixel_type = bytes_ == 2 ? ZIMG_PIXEL_WORD : ZIMG_PIXEL_BYTE;
  format.depth = static_cast<unsigned>(depth_);
  format.color_family = isRgb(info_) ? ZIMG_COLOR_RGB : ZIMG_COLOR_YUV;
  format.matrix_coefficients = matrixOf(info_);
  format.pixel_range = rangeOf(info_);
  format.chroma_location = chromaLocationOf(info_);
  format.subsample_w = subsampleW_;
  format.subsample_h = subsampleH_;
  if (hasAlpha_)
    format.alpha = GST_VIDEO_INFO_FLAG_IS_SET(&info_, GST_VIDEO_FLAG_PREMULTIPLIED_ALPHA)
                       ? ZIMG_ALPHA_PREMULTIPLIED
                       : ZIMG_ALPHA_STRAIGHT;
  return format;
}

zimg_image_format PictureConverter::outputFormat() const {
  zimg_image_format format;
  zimg_image_format_default(&format, ZIMG_API_VERSION);
  format.width = static_cast<unsigned>(padded_.width);
  format.height = static_cast<unsigned>(padded_.height / fields_);
  format.pixel_type = table_ ? ZIMG_PIXEL_WORD : ZIMG_PIXEL_BYTE;
  format.depth = table_ ? ColorTable::kDepth : 8;
  format.color_family = ZIMG_COLOR_YUV;
  format.matrix_coefficients = table_ ? ZIMG_MATRIX_BT2020_NCL : ZIMG_MATRIX_BT709;
  format.pixel_range = ZIMG_RANGE_LIMITED;
  format.subsample_w = 1;
  format.subsample_h = 1;
  // Chroma keeps its location, so that 4:2:0 chroma is not resampled.
  format.chroma_location = chromaLocationOf(info_);
  if (hasAlpha_)
    format.alpha = ZIMG_ALPHA_PREMULTIPLIED;
  return format;
}

bool PictureConverter::buildField(FieldGraph& field, zimg_field_parity_e parity) {
  zimg_image_format from = inputFormat();
  zimg_image_format to = outputFormat();
  from.field_parity = parity;
  to.field_parity = parity;
  zimg_graph_builder_params params;
  zimg_graph_builder_params_default(&params, ZIMG_API_VERSION);
  field.graph.reset(zimg_filter_graph_build(&from, &to, &params));
  std::size_t scratch = 0;
  unsigned buffered = 0;
  if (!field.graph || zimg_filter_graph_get_tmp_size(field.graph.get(), &scratch) != ZIMG_ERROR_SUCCESS ||
      zimg_filter_graph_get_input_buffering(field.graph.get(), &buffered) != ZIMG_ERROR_SUCCESS)
    return false;
  field.scratch = allocate(scratch);
  field.input.version = ZIMG_API_VERSION;
  const unsigned mask = zimg_select_buffer_mask(buffered);
  for (int i = 0; i < (hasAlpha_ ? 4 : 3); ++i) {
    const bool chroma = i == 1 || i == 2;
    const unsigned subsampleW = chroma ? from.subsample_w : 0;
    const unsigned subsampleH = chroma ? from.subsample_h : 0;
    const std::size_t stride = alignedBytes((from.width >> subsampleW) * static_cast<std::size_t>(bytes_));
    const std::size_t planeRows =
        mask == ZIMG_BUFFER_MAX ? from.height >> subsampleH : (mask >> subsampleH) + 1;
    field.rows[i] = allocate(stride * planeRows);
    field.input.plane[i].data = field.rows[i].get();
    field.input.plane[i].stride = static_cast<std::ptrdiff_t>(stride);
    field.input.plane[i].mask = mask == ZIMG_BUFFER_MAX ? mask : mask >> subsampleH;
  }
  return true;
}

int PictureConverter::sourceRow(int row, int sourceHeight, int parity) const {
  if (fields_ == 1)
    return std::min(row, sourceHeight - 1);
  const int last = sourceHeight - 1 - (sourceHeight - 1 - parity + 2) % 2;
  return std::clamp(row * 2 + parity, 0, std::max(last, 0));
}

void PictureConverter::loadPlaneRow(const GstVideoFrame& from, int component, int row, std::uint8_t* to,
                                    int width) const {
  const GstVideoFormatInfo& format = *info_.finfo;
  const auto index = static_cast<guint>(component);
  if (index >= format.n_components) {
    // Grey pictures have no chroma, so it is set to neutral.
    if (bytes_ == 1)
      std::memset(to, 1 << 7, static_cast<std::size_t>(width));
    else
      std::fill_n(reinterpret_cast<std::uint16_t*>(to), width, static_cast<std::uint16_t>(1 << (depth_ - 1)));
    return;
  }
  const int count = std::min(GST_VIDEO_FRAME_COMP_WIDTH(&from, component), width);
  const int step = GST_VIDEO_FORMAT_INFO_PSTRIDE(&format, component);
  const int shift = static_cast<int>(format.shift[component]);
  // GStreamer says that V of P010, P012 and P016 stands 1 byte behind U; it stands 1 sample behind.
  const int misplaced = GST_VIDEO_FORMAT_INFO_POFFSET(&format, component) % bytes_;
  const auto* data = static_cast<const std::uint8_t*>(GST_VIDEO_FRAME_COMP_DATA(&from, component)) +
                     misplaced +
                     static_cast<std::ptrdiff_t>(row) * GST_VIDEO_FRAME_COMP_STRIDE(&from, component);
  if (step == bytes_ && shift == 0)
    std::memcpy(to, data, static_cast<std::size_t>(count) * static_cast<std::size_t>(bytes_));
  else if (bytes_ == 1)
    gather<std::uint8_t>(data, step, shift, to, count);
  else
    gather<std::uint16_t>(data, step, shift, to, count);
  repeatLast(to, count, width, bytes_);
}

// Fills unpacked_ with the pixels of the row, four samples each, alpha first.
void PictureConverter::unpackRow(const GstVideoFrame& from, int row) {
  const GstVideoFormatInfo& format = *info_.finfo;
  // Limited-range samples are extended with zero bits. Full-range samples have to be scaled, or white would
  // not stay white.
  const auto flags =
      rangeOf(info_) == ZIMG_RANGE_LIMITED ? GST_VIDEO_PACK_FLAG_TRUNCATE_RANGE : GST_VIDEO_PACK_FLAG_NONE;
  format.unpack_func(&format, flags, unpacked_.data(), from.data, from.info.stride, 0, row, info_.width);
}

void PictureConverter::loadRows(const RowRequest& request, int row) {
  FieldGraph& field = graphs_[static_cast<std::size_t>(request.field)];
  const auto rowOf = [&field](int plane, int y) {
    const auto& buffer = field.input.plane[plane];
    return field.rows[plane].get() +
           static_cast<std::ptrdiff_t>(static_cast<unsigned>(y) & buffer.mask) * buffer.stride;
  };
  if (packed_) {
    unpackRow(*request.from, sourceRow(row, info_.height, request.field));
    for (int plane = 0; plane < (hasAlpha_ ? 4 : 3); ++plane) {
      const int place = plane == kAlpha ? 0 : plane + 1;
      std::uint8_t* to = rowOf(plane, row);
      const std::uint8_t* samples = unpacked_.data() + place * bytes_;
      if (bytes_ == 1)
        gather<std::uint8_t>(samples, 4, 0, to, info_.width);
      else
        gather<std::uint16_t>(samples, 8, 0, to, info_.width);
      repeatLast(to, info_.width, padded_.width, bytes_);
    }
    return;
  }
  const int rows = 1 << subsampleH_;
  for (int plane = 0; plane < (hasAlpha_ ? 4 : 3); ++plane) {
    const bool chroma = plane == 1 || plane == 2;
    const int width = chroma ? padded_.width >> subsampleW_ : padded_.width;
    const bool exists = static_cast<guint>(plane) < info_.finfo->n_components;
    const int height = exists ? GST_VIDEO_FRAME_COMP_HEIGHT(request.from, plane) : info_.height;
    const int first = chroma ? row >> subsampleH_ : row;
    for (int y = first; y < first + (chroma ? 1 : rows); ++y)
      loadPlaneRow(*request.from, plane, sourceRow(y, height, request.field), rowOf(plane, y), width);
  }
}

bool PictureConverter::convert(GstVideoFrame& from, Frame& to) {
  for (int field = 0; field < fields_; ++field) {
    zimg_image_buffer output = {};
    output.version = ZIMG_API_VERSION;
    for (int i = 0; i < (hasAlpha_ ? 4 : 3); ++i) {
      std::uint8_t* data = table_ ? tableInput_[i].get() : to.writablePlane(i);
      const int stride = table_ ? tableStride_[i] : to.stride(i);
      output.plane[i] = {data + static_cast<std::ptrdiff_t>(field) * stride,
                         static_cast<std::ptrdiff_t>(stride) * fields_, ZIMG_BUFFER_MAX};
    }
    FieldGraph& graph = graphs_[static_cast<std::size_t>(field)];
    RowRequest request{this, &from, field};
    const auto load = [](void* user, unsigned row, unsigned, unsigned) -> int {
      const auto& wanted = *static_cast<const RowRequest*>(user);
      wanted.self->loadRows(wanted, static_cast<int>(row));
      return 0;
    };
    if (zimg_filter_graph_process(graph.graph.get(), &graph.input, &output, graph.scratch.get(), load,
                                  &request, nullptr, nullptr) != ZIMG_ERROR_SUCCESS)
      return false;
  }
  if (table_) {
    ColorTable::Picture picture;
    for (int i = 0; i < 3; ++i)
      picture.plane[i] = {reinterpret_cast<const std::uint16_t*>(tableInput_[i].get()), tableStride_[i]};
    table_->apply(picture, to);
  }
  return true;
}

}  // namespace korvia
