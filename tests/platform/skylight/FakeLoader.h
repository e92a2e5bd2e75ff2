#pragma once

#include <algorithm>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/skylight/DynamicLoader.h"
#include "platform/skylight/MachOBuilder.h"

namespace tessaspaces::fakes {

/// Images are buffers of their own, each of exactly the size that it is given, so that a sanitizer sees a step outside.
class FakeLoader : public DynamicLoader {
 public:
  struct Image {
    std::optional<std::string> path;
    std::optional<std::uintptr_t> header;
    std::uintptr_t slide;
  };

  bool loads = true;
  std::map<std::string, void*> exported;
  std::vector<Image> images;

  /// How often each name was opened or looked up, and the images counted.
  std::map<std::string, int> asked() {
    const std::lock_guard lock(mutex_);
    return asked_;
  }

  /// Makes the bytes readable and returns where.
  std::uintptr_t map(const std::vector<std::byte>& bytes) {
    memory_.push_back(bytes);
    memory_.back().shrink_to_fit();
    return reinterpret_cast<std::uintptr_t>(memory_.back().data());
  }

  void* open(const char* path) override {
    note(path);
    return loads ? this : nullptr;
  }
  std::string lastError() override { return loads ? "" : "image not found"; }
  void* symbol(void* library, const char* name) override {
    note(name);
    const auto found = exported.find(name);
    return library == this && found != exported.end() ? found->second : nullptr;
  }

  std::uint32_t imageCount() override {
    note("imageCount");
    return static_cast<std::uint32_t>(images.size());
  }
  std::optional<std::string> imagePath(std::uint32_t index) override { return images.at(index).path; }
  std::optional<std::uintptr_t> imageHeader(std::uint32_t index) override { return images.at(index).header; }
  std::uintptr_t imageSlide(std::uint32_t index) override { return images.at(index).slide; }
  std::span<const std::byte> mapped(std::uintptr_t address, std::size_t size) override {
    for (const auto& bytes : memory_) {
      const auto offset = address - reinterpret_cast<std::uintptr_t>(bytes.data());
      if (offset < bytes.size()) return std::span(bytes).subspan(offset).first(std::min(size, bytes.size() - offset));
    }
    return {};
  }

 private:
  void note(const char* name) {
    const std::lock_guard lock(mutex_);
    ++asked_[name];
  }

  std::list<std::vector<std::byte>> memory_;
  std::mutex mutex_;  // guards asked_
  std::map<std::string, int> asked_;
};

}  // namespace tessaspaces::fakes
