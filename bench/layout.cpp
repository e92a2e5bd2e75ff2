// What the geometry of the overview grid takes: a whole pass over 16 desktops, with the windows where they are and
// drawn apart, and the packing of one tile.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <random>

#include "grid/ExplodedPacking.h"
#include "grid/GridLayout.h"
#include "platform/simulated/SimulatedPlatform.h"

namespace {

using namespace tessaspaces;

constexpr int desktops = 16;
constexpr Size screen{1920, 1080};

/// Windows of all sizes and shapes anywhere on the screen, the same at every run.
class Windows {
 public:
  explicit Windows(unsigned seed) : random_(seed) {}

  Rect next() {
    const double width = between(0.05, 0.7) * screen.width;
    const double height = between(0.05, 0.7) * screen.height;
    return {between(0, screen.width - width), between(0, screen.height - height), width, height};
  }

 private:
  // Not a library distribution: those differ between libraries.
  double between(double low, double high) { return low + (high - low) * static_cast<double>(random_()) / 4294967296.0; }

  std::mt19937 random_;
};

SpacesSnapshot snapshot(int windowsEach) {
  SpacesSnapshot all;
  for (int i = 0; i < desktops; ++i) {
    auto desktop = std::make_shared<DesktopInfo>(static_cast<SpaceID>(i + 1), "one");
    desktop->screen = platform().screens().mainScreen();
    Windows windows(static_cast<unsigned>(i));
    for (int k = 0; k < windowsEach; ++k) {
      desktop->windows.push_back({static_cast<WindowID>(100 * i + k), {}, 1, windows.next()});
    }
    all.desktops.push_back(std::move(desktop));
  }
  return all;
}

GridLayout panel() {
  GridLayout layout;
  layout.setGrid(4, 4);
  layout.setBounds(screen);
  return layout;
}

void standardPass(benchmark::State& state) {
  auto layout = panel();
  layout.setSnapshot(snapshot(static_cast<int>(state.range(0))));
  for (auto _ : state) {
    layout.layoutGrid();
    benchmark::DoNotOptimize(layout.thumbRects().data());
  }
}

void explodedPass(benchmark::State& state) {
  const auto windows = snapshot(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    // A layout remembers what it packed: each pass has a new one.
    auto layout = panel();
    layout.setExplodedAll(true);
    layout.setSnapshot(windows);
    layout.layoutGrid();
    benchmark::DoNotOptimize(layout.thumbRects().data());
  }
}

/// A pass over tiles that are drawn apart and where nothing changed.
void explodedPassAgain(benchmark::State& state) {
  auto layout = panel();
  layout.setExplodedAll(true);
  layout.setSnapshot(snapshot(static_cast<int>(state.range(0))));
  layout.layoutGrid();
  for (auto _ : state) {
    layout.layoutGrid();
    benchmark::DoNotOptimize(layout.thumbRects().data());
  }
}

void packing(benchmark::State& state) {
  const Rect content{20, 80, 440, 248};
  const auto count = static_cast<std::size_t>(state.range(0));
  std::vector<std::vector<Rect>> tiles(desktops);
  std::vector<double> limits;
  for (std::size_t i = 0; i < tiles.size(); ++i) {
    Windows windows(static_cast<unsigned>(i));
    double total = 0;
    while (tiles[i].size() < count) {
      const auto window = windows.next();
      tiles[i].push_back({content.x + window.x / screen.width * content.width,
                          content.y + window.y / screen.height * content.height,
                          window.width / screen.width * content.width, window.height / screen.height * content.height});
      total += tiles[i].back().width * tiles[i].back().height;
    }
    limits.push_back(std::min(1.0, std::sqrt(0.85 * content.width * content.height / total)));
  }
  std::size_t next = 0;
  double reached = 0;
  for (auto _ : state) {
    const auto i = next++ % tiles.size();
    reached += packExploded(content, tiles[i], limits[i]).score / limits[i];
  }
  // 1: as large as the windows could be if they filled the tile but for the air.
  state.counters["scale"] = reached / static_cast<double>(next);
}

BENCHMARK(standardPass)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(explodedPass)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(explodedPassAgain)->Arg(100)->Unit(benchmark::kMillisecond);
BENCHMARK(packing)->Arg(3)->Arg(12)->Arg(40)->Arg(80)->Arg(200)->Arg(1000)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  std::string error;
  const auto simulated = tessaspaces::SimulatedPlatform::fromText("one 1920x1080 | A*", &error);
  if (!simulated) {
    std::fprintf(stderr, "layout: %s\n", error.c_str());
    return 1;
  }
  tessaspaces::setPlatform(simulated.get());
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  tessaspaces::setPlatform(nullptr);
  return 0;
}
