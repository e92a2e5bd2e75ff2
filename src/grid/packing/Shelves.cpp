#include "grid/packing/Shelves.h"

#include <algorithm>
#include <limits>
#include <numeric>

namespace tessaspaces::packing {
namespace {

struct Row {
  std::vector<std::size_t> boxes;
  double height = 0;
  /// The mean of the boxes' wishes.
  double wish = 0;
};

/// Where each row of the lowest stack begins in the order, last row first; empty when they do not fit.
std::vector<std::size_t> cut(const Task& task, std::span<const std::size_t> order) {
  const auto count = order.size();
  constexpr double none = std::numeric_limits<double>::infinity();
  std::vector<double> lowest(count + 1, none);  // the height that the first boxes of the order need
  std::vector<std::size_t> begin(count + 1, 0);
  lowest[0] = 0;
  for (std::size_t end = 1; end <= count; ++end) {
    double width = 0;
    double height = 0;
    for (std::size_t first = end; first-- > 0;) {
      const auto& box = task.boxes[order[first]];
      width += box.width;
      height = std::max(height, box.height);
      if (width > task.room.width) break;
      if (lowest[first] + height < lowest[end]) {
        lowest[end] = lowest[first] + height;
        begin[end] = first;
      }
    }
    if (lowest[end] > task.room.height) return {};
  }
  std::vector<std::size_t> begins;
  for (std::size_t end = count; end > 0; end = begin[end]) begins.push_back(begin[end]);
  return begins;
}

std::optional<Places> placeInRows(const Task& task, std::span<const std::size_t> order) {
  const auto begins = cut(task, order);
  if (begins.empty() && !order.empty()) return std::nullopt;

  std::vector<Row> rows;
  std::size_t end = order.size();
  for (const auto begin : begins) {
    Row row;
    row.boxes.assign(order.begin() + static_cast<std::ptrdiff_t>(begin),
                     order.begin() + static_cast<std::ptrdiff_t>(end));
    for (const auto box : row.boxes) {
      row.height = std::max(row.height, task.boxes[box].height);
      row.wish += task.wishes[box].y / static_cast<double>(row.boxes.size());
    }
    std::stable_sort(row.boxes.begin(), row.boxes.end(),
                     [&](auto a, auto b) { return task.wishes[a].x < task.wishes[b].x; });
    rows.push_back(std::move(row));
    end = begin;
  }
  std::reverse(rows.begin(), rows.end());
  std::stable_sort(rows.begin(), rows.end(), [](const Row& a, const Row& b) { return a.wish < b.wish; });

  Places places(task.boxes.size());
  double y = 0;
  for (const auto& row : rows) {
    double x = 0;
    for (const auto box : row.boxes) {
      places[box] = {x, y + (row.height - task.boxes[box].height) / 2};
      x += task.boxes[box].width;
    }
    y += row.height;
  }
  return places;
}

}  // namespace

std::optional<Places> placeInShelves(const Task& task, Axis axis, std::span<const std::size_t> order) {
  if (axis == Axis::horizontal) return placeInRows(task, order);
  const auto places = placeInRows(transposed(task), order);
  if (!places) return std::nullopt;
  return transposed(*places);
}

}  // namespace tessaspaces::packing
