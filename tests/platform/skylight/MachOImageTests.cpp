#include <gtest/gtest.h>

#include <functional>

#include "platform/skylight/FakeLoader.h"
#include "platform/skylight/MachOImage.h"

namespace tessaspaces {
namespace {

using fakes::FakeLoader;
using fakes::MachO;
using fakes::MachOSymbol;
using fakes::put;

constexpr std::uintptr_t slide = 0x7'0000'0000;
const std::vector<MachOSymbol> symbols{{"_before", 0x1000}, {"_wanted", 0x2000}, {"_wanted2", 0x3000}};

/// Maps an image as a loader does, its parts apart from one another, after `change` has been at it.
FakeLoader::Image load(FakeLoader& loader, std::string path, const std::vector<MachOSymbol>& of,
                       std::uintptr_t imageSlide, const std::function<void(MachO&)>& change = {}) {
  MachO image(of, {0, 0x4000});
  if (change) change(image);
  const auto vmaddr = loader.map(image.symbols) - imageSlide;
  if (image.start.size() >= MachO::table) put(image.start, MachO::linkEdit + 24, vmaddr);
  return {std::move(path), loader.map(image.start), imageSlide};
}

TEST(MachOImage, TheFirstImageThatFitsAndItsFirstSymbolCount) {
  struct Case {
    const char* what;
    std::vector<std::optional<std::string>> paths;  // image 1 has "_wanted" at 0x1000, image 2 at 0x2000, and so on
    std::optional<std::uintptr_t> found;
  };
  const std::vector<Case> cases{
      {"no image", {}, {}},
      {"none that fits", {"/usr/lib/SkyLight.dylib", "/SkyLight/Other", "SkyLight"}, {}},
      {"two that fit", {"/Other", "/a/SkyLight", "/b/SkyLight"}, slide + 0x2000},
      {"one without a path", {std::nullopt, "/a/SkyLight"}, slide + 0x2000},
      {"one without a header", {"no header/SkyLight", "/a/SkyLight"}, slide + 0x2000},
      // The one without the symbol is chosen all the same.
      {"one without the symbol", {"no symbol/SkyLight", "/a/SkyLight"}, {}},
  };
  for (const auto& [what, paths, found] : cases) {
    SCOPED_TRACE(what);
    FakeLoader loader;
    std::uint64_t value = 0;
    for (const auto& path : paths) {
      value += 0x1000;
      const auto name = path && path->starts_with("no symbol") ? "_other" : "_wanted";
      auto image = load(loader, "", {{"_before", 0}, {name, value}, {name, 0x9000}}, slide);
      image.path = path;
      if (path && path->starts_with("no header")) image.header.reset();
      loader.images.push_back(image);
    }
    EXPECT_EQ(localSymbol(loader, "_wanted", "/SkyLight"), found);
  }
}

TEST(MachOImage, TheSlideMovesTheTablesAndTheSymbolEitherWay) {
  for (const std::uintptr_t amount : {std::uintptr_t{0}, slide, std::uintptr_t{0} - 0x1800}) {
    FakeLoader loader;
    loader.images.push_back(load(loader, "/SkyLight", symbols, amount));
    EXPECT_EQ(localSymbol(loader, "_wanted", "/SkyLight"), amount + 0x2000);
    EXPECT_EQ(localSymbol(loader, "_wanted2", "/SkyLight"), amount + 0x3000);
    for (const auto* absent : {"_want", "wanted", "_wanted3", "_Wanted"}) {
      EXPECT_EQ(localSymbol(loader, absent, "/SkyLight"), std::nullopt) << absent;
    }
  }
}

TEST(MachOImage, DamageCostsNoMoreThanTheSymbol) {
  constexpr std::uint32_t huge = 0xffff'ffff;
  const auto number = [](std::size_t offset, std::uint32_t value) {
    return [=](MachO& image) { put(image.start, offset, value); };
  };
  const auto oneMore = [](std::uint32_t kind, std::uint32_t length) {
    return [=](MachO& image) {
      put(image.start, MachO::commandCount, std::uint32_t{5});
      image.start.resize(MachO::startSize + 8);
      put(image.start, MachO::startSize, kind);
      put(image.start, MachO::startSize + 4, length);
    };
  };
  const auto index = [](std::size_t symbol, std::uint32_t value) {
    return [=](MachO& image) { put(image.symbols, 16 * symbol, value); };
  };
  const auto cutStart = [](std::size_t size) { return [=](MachO& image) { image.start.resize(size); }; };
  const auto cutSymbols = [](std::size_t less) {
    return [=](MachO& image) { image.symbols.resize(image.symbols.size() - less); };
  };

  struct Case {
    const char* what;
    std::function<void(MachO&)> damage;
    bool found;
  };
  const std::vector<Case> cases{
      {"header cut off", cutStart(MachO::commandCount + 3), false},
      {"no commands", cutStart(32), false},
      {"first command cut off", cutStart(39), false},
      {"last command cut off", cutStart(MachO::startSize - 1), false},
      {"no command counted", number(MachO::commandCount, 0), false},
      {"symbol table command not counted", number(MachO::commandCount, 3), false},
      {"more commands than there are", number(MachO::commandCount, 5), false},
      {"most commands", number(MachO::commandCount, huge), false},
      {"command without a length", number(MachO::odd + 4, 0), false},
      {"one more command", oneMore(0x80000001, 8), true},
      {"one more, shorter than any", oneMore(0x80000001, 7), false},
      {"one more, shorter than a segment", oneMore(0x19, 8), false},
      {"command longer than the image", number(MachO::odd + 4, huge), false},
      {"symbol table command too short", number(MachO::table + 4, 8), false},
      {"no symbol table", number(MachO::table, 0x22), false},
      {"no such segment", number(MachO::linkEdit + 8, 0), false},
      {"segment of a longer name", number(MachO::linkEdit + 18, 0x32), false},
      {"segment far away", [](MachO& image) { put(image.start, MachO::linkEdit + 40, ~std::uint64_t{0} / 2); }, false},
      {"symbols out of reach", number(MachO::table + 8, huge), false},
      {"strings out of reach", number(MachO::table + 16, huge), false},
      {"no symbols", number(MachO::table + 12, 0), false},
      {"most symbols", number(MachO::table + 12, huge), true},
      {"entry before with a string out of reach", index(0, huge), true},
      {"entry with a string out of reach", index(1, huge), false},
      {"string one byte out of reach", cutSymbols(sizeof "_wanted2" + 1), false},
      {"string that just fits", cutSymbols(sizeof "_wanted2"), true},
      {"table that ends within the entry", [](MachO& image) { image.symbols.resize(31); }, false},
  };
  for (const auto& [what, damage, found] : cases) {
    SCOPED_TRACE(what);
    FakeLoader loader;
    loader.images.push_back(load(loader, "/SkyLight", symbols, slide, damage));
    EXPECT_EQ(localSymbol(loader, "_wanted", "/SkyLight").has_value(), found);
  }

  // Most entries of a table that is not there: the walk ends with what can be read.
  FakeLoader loader;
  loader.images.push_back(load(loader, "/SkyLight", symbols, slide, number(MachO::table + 12, huge)));
  EXPECT_EQ(localSymbol(loader, "_absent", "/SkyLight"), std::nullopt);
}

}  // namespace
}  // namespace tessaspaces
