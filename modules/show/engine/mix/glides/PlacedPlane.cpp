#include "PlacedPlane.h"

#include <algorithm>
#include <cstring>

#include "engine/kernels/AreaKernels.h"
#include "engine/kernels/FetchAhead.h"

namespace korvia {

namespace {

constexpr int kWhole = PlacedSide::kWhole;
// The most rows of one mean; of more rows that many are picked at equal distances.
constexpr int kRowsMost = 128;
// The sum of the weights of a mean before they are rounded.
constexpr int kWeightTotal = 255;
constexpr std::size_t kAlignment = 64;
constexpr int kRowsAhead = 3;

int floorOf(int place) {
  return place >> 8;
}

int ceilOf(int place) {
  return (place + kWhole - 1) >> 8;
}

}  // namespace

int PlacedSide::cover(int sample) const {
  return std::max(0, std::min((sample + 1) * kWhole, begin + length) - std::max(sample * kWhole, begin));
}

PlacedSide::Range PlacedSide::whole(int count) const {
  const int first = std::clamp(ceilOf(begin), 0, count);
  return {first, std::clamp(floorOf(begin + length), first, count)};
}

PlacedSide::Range PlacedSide::touched(int count) const {
  const int first = std::clamp(floorOf(begin), 0, count);
  return {first, length == 0 ? first : std::clamp(ceilOf(begin + length), first, count)};
}

RowPart PlacedSide::part(int sample) const {
  const double step = static_cast<double>(ownLength) / length;
  return {(sample * kWhole - begin) * step, ((sample + 1) * kWhole - begin) * step};
}

PlacedPlane::PlacedPlane(const PlaneView& plane, const PlacedSide& columns, const PlacedSide& rows,
                         TransitionScratch& scratch, int scratchPlace)
    : plane_(plane), columns_(columns), rows_(rows), touched_(columns.touched(plane.width)) {
  const std::size_t stride =
      (static_cast<std::size_t>(plane.width) / kAlignment + 2) * kAlignment;  // room for kernels to overrun
  line_ = scratch.buffer<std::uint8_t>(scratchPlace, 4 * stride);
  average_ = line_ + stride;
  halves_[0] = average_ + stride;
  halves_[1] = halves_[0] + stride;
  // Allocated for the full width, because a growing picture needs it later in the take.
  if (columns_.isShrunk() && touched_.begin < touched_.end)
    prepareShrinking(scratch.buffer<ShrinkGroup>(scratchPlace + 1, static_cast<std::size_t>(plane.width)));
}

void PlacedPlane::prepareShrinking(ShrinkGroup* groups) {
  double length = columns_.ownLength;
  double step = length * kWhole / columns_.length;
  int samples = plane_.width;
  for (; step >= 2 && samples > 1; ++halvings_) {
    step /= 2;
    length /= 2;
    samples = (samples + 1) / 2;
  }
  const double begin = (touched_.begin * kWhole - columns_.begin) * (step / kWhole);
  groupCount_ = fillShrinkGroups(begin, step, length, std::max(samples, ShrinkGroup::kWindow),
                                 touched_.end - touched_.begin, groups);
  groups_ = groups;
}

const std::uint8_t* PlacedPlane::row(int y) {
  const std::uint8_t* row = planeRow(y);
  return columns_.isShrunk() ? shrunk(row) : shifted(row);
}

const std::uint8_t* PlacedPlane::planeRow(int y) {
  const CoveredPart part(rows_.part(y), rows_.ownLength);
  const int first = part.first();
  const int count = part.last() - first + 1;
  fetchAfter(part.last());
  const auto rowAt = [&](int sourceY) { return plane_.row(std::min(sourceY, plane_.height - 1)); };
  if (count == 1)
    return rowAt(first);

  const std::uint8_t* rows[kRowsMost];
  std::uint16_t weights[kRowsMost];
  int used = count;
  if (count == 2) {
    weights[1] = static_cast<std::uint16_t>((part.of(first + 1) * 256 + part.length() / 2) / part.length());
    weights[0] = static_cast<std::uint16_t>(256 - weights[1]);
  } else if (count <= kRowsMost) {
    const int weight = kWeightTotal * CoveredPart::kOne / part.length();
    for (int i = 0; i < count; ++i)
      weights[i] = static_cast<std::uint16_t>((part.of(first + i) * weight + CoveredPart::kOne / 2) >>
                                              CoveredPart::kBits);
  } else {
    used = kRowsMost;
    std::fill_n(weights, used, std::uint16_t{1});
  }
  for (int i = 0; i < used; ++i)
    rows[i] = rowAt(first + static_cast<int>(std::int64_t{i} * count / used));
  averageRows(rows, weights, used, average_, plane_.width);
  return average_;
}

void PlacedPlane::fetchAfter(int lastRow) {
  int begin = 0;
  int end = plane_.width;
  if (!columns_.isShrunk()) {
    const int left = floorOf(columns_.begin);
    begin = std::clamp(touched_.begin - left - 1, 0, plane_.width);
    end = std::clamp(touched_.end - left, begin, plane_.width);
  }
  fetched_ = std::max(fetched_, lastRow + 1);
  for (; fetched_ < std::min(lastRow + 1 + kRowsAhead, plane_.height); ++fetched_)
    fetchAhead(plane_.row(fetched_) + begin, end - begin);
}

const std::uint8_t* PlacedPlane::shifted(const std::uint8_t* row) {
  const int left = floorOf(columns_.begin);
  const int part = columns_.begin & (kWhole - 1);
  const auto [begin, end] = touched_;
  const int right = left + plane_.width;
  if (part == 0 && end <= right)
    return row + (begin - left);

  // Between the outermost samples each one is the mean of two neighbours.
  const int inner = std::min(std::max(begin, left + 1), end);
  const int innerEnd = std::max(inner, std::min(end, right));
  std::memset(line_, row[0], static_cast<std::size_t>(inner - begin));
  if (inner < innerEnd) {
    const std::uint8_t* here = row + (inner - left);
    const std::uint8_t* neighbours[] = {here, here - 1};
    const std::uint16_t weights[] = {static_cast<std::uint16_t>(kWhole - part),
                                     static_cast<std::uint16_t>(part)};
    averageRows(neighbours, weights, 2, line_ + (inner - begin), innerEnd - inner);
  }
  std::memset(line_ + (innerEnd - begin), row[plane_.width - 1], static_cast<std::size_t>(end - innerEnd));
  return line_;
}

const std::uint8_t* PlacedPlane::shrunk(const std::uint8_t* row) {
  int samples = plane_.width;
  for (int i = 0; i < halvings_; ++i) {
    // Rounding alternates up and down, so that the picture does not get brighter.
    halveRow(row, samples, 1 - i % 2, halves_[i % 2]);
    row = halves_[i % 2];
    samples = (samples + 1) / 2;
  }
  if (samples < ShrinkGroup::kWindow) {
    // The row is shorter than a window, so its last sample is repeated.
    std::uint8_t* longer = halves_[halvings_ % 2];
    std::copy_n(row, samples, longer);
    std::fill(longer + samples, longer + ShrinkGroup::kWindow, row[samples - 1]);
    row = longer;
  }
  shrinkRow(row, groups_, groupCount_, line_);
  return line_;
}

}  // namespace korvia
