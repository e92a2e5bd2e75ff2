#include "grid/packing/Arrangement.h"

#include <algorithm>

namespace tessaspaces::packing {

Task transposed(const Task& task) {
  Task turned{transposed(task.room), task.boxes, task.wishes};
  for (auto& box : turned.boxes) box = transposed(box);
  for (auto& wish : turned.wishes) wish = transposed(wish);
  return turned;
}

Places transposed(const Places& places) {
  Places turned = places;
  for (auto& place : turned) place = transposed(place);
  return turned;
}

}  // namespace tessaspaces::packing
