#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz/Fuzz.h"

// Stands in for libFuzzer in an ordinary build: feeds the target every file of the folders named on the command line.
// The first folder is that of the seeds and must hold some, so that a moved folder is no silent success.

namespace fs = std::filesystem;

namespace {

std::vector<fs::path> filesOf(const fs::path& folder) {
  std::vector<fs::path> files;
  std::error_code none;  // no regressions yet, or no seeds at all, which main complains about
  for (const auto& entry : fs::directory_iterator(folder, none)) {
    if (entry.is_regular_file()) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

int main(int argc, char** argv) {
  std::size_t inputs = 0;
  for (int at = 1; at < argc; ++at) {
    const auto files = filesOf(argv[at]);
    if (at == 1 && files.empty()) {
      std::fprintf(stderr, "no seed in %s\n", argv[at]);
      return 1;
    }
    for (const auto& file : files) {
      // Named before it is tried: the last one named is the one that ends the program.
      std::fprintf(stderr, "%s\n", file.c_str());
      std::ifstream stream(file, std::ios::binary);
      const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
      if (!stream) return 1;
      LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
      ++inputs;
    }
  }
  std::fprintf(stderr, "%zu inputs\n", inputs);
  return inputs > 0 ? 0 : 1;
}
