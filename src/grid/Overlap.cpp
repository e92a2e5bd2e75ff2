#include "grid/Overlap.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <vector>

namespace tessaspaces {

// A line sweeps from left to right. The rectangles that it cuts are free of overlap as long as none was found, so they
// lie one below the other, and a new one can only meet those directly above and below its top.
bool hasOverlap(std::span<const Rect> rects) {
  struct Edge {
    double x;
    bool opens;  // closing edges come first: touching is no overlap
    const Rect* rect;
  };
  std::vector<Edge> edges;
  edges.reserve(2 * rects.size());
  for (const auto& rect : rects) {
    if (rect.isEmpty()) continue;
    edges.push_back({rect.minX(), true, &rect});
    edges.push_back({rect.maxX(), false, &rect});
  }
  std::sort(edges.begin(), edges.end(),
            [](const Edge& a, const Edge& b) { return std::tie(a.x, a.opens) < std::tie(b.x, b.opens); });

  std::map<double, const Rect*> open;  // by their tops
  for (const auto& edge : edges) {
    if (!edge.opens) {
      open.erase(edge.rect->minY());
      continue;
    }
    const auto below = open.lower_bound(edge.rect->minY());
    if (below != open.end() && edge.rect->intersects(*below->second)) return true;
    if (below != open.begin() && edge.rect->intersects(*std::prev(below)->second)) return true;
    open.emplace_hint(below, edge.rect->minY(), edge.rect);
  }
  return false;
}

}  // namespace tessaspaces
