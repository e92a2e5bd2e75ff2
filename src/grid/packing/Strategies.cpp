#include "grid/packing/Strategies.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <tuple>
#include <utility>

#include "grid/packing/FreeSpace.h"
#include "grid/packing/Shelves.h"

namespace tessaspaces::packing {
namespace {

using Order = std::vector<std::size_t>;

constexpr std::size_t mostForAll = 24;
constexpr std::size_t mostForFreeSpace = 250;
constexpr std::size_t mostForLeaning = 12;
constexpr double leaning = 0.04;
constexpr double steps = 24;
/// For each doubling.
constexpr double stepsOfSize = 8;

double area(Size size) {
  return size.width * size.height;
}

Order listOrder(const Task& windows) {
  Order order(windows.boxes.size());
  std::iota(order.begin(), order.end(), 0);
  return order;
}

/// What decisions are made from is rounded, so that most small changes of a window change no decision.
Task rounded(const Task& windows) {
  Task task = windows;
  const auto round = [](double& value, double step) { value = std::round(value / step) * step; };
  for (auto& wish : task.wishes) {
    round(wish.x, task.room.width / steps);
    round(wish.y, task.room.height / steps);
  }
  for (auto& box : task.boxes) {
    box.width = std::exp2(std::round(std::log2(box.width) * stepsOfSize) / stepsOfSize);
    box.height = std::exp2(std::round(std::log2(box.height) * stepsOfSize) / stepsOfSize);
  }
  return task;
}

/// By the key, and in reading order where that is the same; list order, which changes with each click, comes last.
template <class Key>
Order sortedBy(const Task& windows, Key key) {
  std::vector<double> keys;
  for (std::size_t i = 0; i < windows.boxes.size(); ++i) keys.push_back(key(i));
  Order order = listOrder(windows);
  const auto& wishes = windows.wishes;
  std::stable_sort(order.begin(), order.end(), [&](auto a, auto b) {
    return std::tie(keys[a], wishes[a].y, wishes[a].x) < std::tie(keys[b], wishes[b].y, wishes[b].x);
  });
  return order;
}

Strategy shelves(Axis axis, Order order) {
  return [axis, order = std::move(order)](const Task& task) { return placeInShelves(task, axis, order); };
}

/// From top to bottom (or left to right), with a part of the windows' heights in it: shelves of windows that are
/// equally high waste less.
Order shelfOrder(const Task& windows, Axis axis, double sizePart) {
  return sortedBy(windows, [&](std::size_t i) {
    const bool rows = axis == Axis::horizontal;
    const double place = rows ? windows.wishes[i].y / windows.room.height : windows.wishes[i].x / windows.room.width;
    const double size =
        rows ? windows.boxes[i].height / windows.room.height : windows.boxes[i].width / windows.room.width;
    return place * (1 - sizePart) + size * sizePart;
  });
}

/// The wishes drawn apart along one axis: at `part` 1 so that every stretch is wanted by as much window as fits there.
/// Windows crowd in the middle of a desktop, and who comes late would else be sent far away.
void even(const Task& windows, double part, double Point::*coordinate, double length, std::vector<Point>& wishes) {
  const auto order = sortedBy(windows, [&](std::size_t i) { return windows.wishes[i].*coordinate; });
  double total = 0;
  for (const auto& box : windows.boxes) total += area(box);
  double before = 0;
  for (const auto i : order) {
    const double own = area(windows.boxes[i]);
    const double target = (before + own / 2) / total * length;
    wishes[i].*coordinate += part * (target - wishes[i].*coordinate);
    before += own;
  }
}

Strategy freeSpace(const Task& windows, Fit fit, double evenPart, Order order, Point lean = {}) {
  auto wishes = windows.wishes;
  even(windows, evenPart, &Point::x, windows.room.width, wishes);
  even(windows, evenPart, &Point::y, windows.room.height, wishes);
  for (auto& wish : wishes) wish = {wish.x + lean.x * windows.room.width, wish.y + lean.y * windows.room.height};
  return [fit, wishes = std::move(wishes), order = std::move(order)](const Task& task) {
    return placeInFreeSpace({task.room, task.boxes, wishes}, fit, order);
  };
}

}  // namespace

std::vector<Strategy> simpleStrategies(const Task& windows) {
  return {shelves(Axis::horizontal, listOrder(windows)), shelves(Axis::vertical, listOrder(windows))};
}

std::vector<Strategy> faithfulStrategies(const Task& exact) {
  const Task windows = rounded(exact);
  const auto count = windows.boxes.size();
  std::vector<Strategy> strategies;
  if (count <= mostForAll) strategies = simpleStrategies(windows);
  for (const auto axis : {Axis::horizontal, Axis::vertical}) {
    for (const double sizePart : {0.0, 0.3, 0.6}) {
      if (sizePart > 0 && count > mostForAll) continue;
      strategies.push_back(shelves(axis, shelfOrder(windows, axis, sizePart)));
    }
  }
  if (count > mostForFreeSpace) return strategies;
  // The large ones first: the small ones find a place anywhere.
  const auto bySize = sortedBy(windows, [&](std::size_t i) { return -area(windows.boxes[i]); });
  strategies.push_back(freeSpace(windows, Fit::corners, 0.5, bySize));
  if (count > mostForAll) return strategies;
  // The outer ones first: each takes its edge before another is sent there.
  const auto fromOutside = sortedBy(windows, [&](std::size_t i) {
    const auto& wish = windows.wishes[i];
    return -std::max(std::abs(wish.x / windows.room.width - 0.5), std::abs(wish.y / windows.room.height - 0.5));
  });
  strategies.push_back(freeSpace(windows, Fit::corners, 0, bySize));
  strategies.push_back(freeSpace(windows, Fit::corners, 1, bySize));
  strategies.push_back(freeSpace(windows, Fit::anywhere, 0, bySize));
  strategies.push_back(freeSpace(windows, Fit::anywhere, 0.5, bySize));
  for (const double evenPart : {0.0, 0.5, 1.0}) {
    strategies.push_back(freeSpace(windows, Fit::corners, evenPart, fromOutside));
  }
  if (count > mostForLeaning) return strategies;
  // A large window in the middle may go to any corner; which one is good shows when the others have come.
  for (const double x : {-leaning, leaning}) {
    for (const double y : {-leaning, leaning}) {
      strategies.push_back(freeSpace(windows, Fit::corners, 0, bySize, {x, y}));
      strategies.push_back(freeSpace(windows, Fit::corners, 0.5, bySize, {x, y}));
    }
  }
  return strategies;
}

}  // namespace tessaspaces::packing
