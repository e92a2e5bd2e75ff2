#include "ScreenProbe.h"

#include <sys/ipc.h>
#include <sys/shm.h>

#include <thread>

namespace tessaspaces::bench {

using namespace harness;

namespace {

constexpr int rowStep = 16;
/// Between two looks: a hundredth of what is measured, and the server is left alone meanwhile.
constexpr auto pause = std::chrono::microseconds(500);

}  // namespace

ScreenProbe::ScreenProbe(const XServer& server) : x_(server.display()) {
  width_ = x_.screen().width_in_pixels;
  height_ = x_.screen().height_in_pixels;
  const auto size = static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_ / rowStep + 1) * 4;
  const int id = shmget(IPC_PRIVATE, size, IPC_CREAT | 0600);
  if (id < 0) throw Failure("no shared memory");
  void* memory = shmat(id, nullptr, 0);
  segment_ = xcb_generate_id(x_.get());
  const int error = x_.errorOf(xcb_shm_attach_checked(x_.get(), segment_, static_cast<std::uint32_t>(id), 0));
  // Gone when both have let it go.
  shmctl(id, IPC_RMID, nullptr);
  // NOLINTNEXTLINE(performance-no-int-to-ptr): shmat's own way to fail
  if (memory == reinterpret_cast<void*>(-1) || error != 0) throw Failure("the server shares no memory");
  pixels_ = static_cast<std::uint32_t*>(memory);
}

ScreenProbe::~ScreenProbe() {
  xcb_shm_detach(x_.get(), segment_);
  x_.roundTrip();
  shmdt(pixels_);
}

std::uint64_t ScreenProbe::look() {
  std::vector<xcb_shm_get_image_cookie_t> asked;
  for (int row = 0; row * rowStep < height_; ++row) {
    asked.push_back(xcb_shm_get_image(x_.get(), x_.root(), 0, static_cast<std::int16_t>(row * rowStep),
                                      static_cast<std::uint16_t>(width_), 1, ~0U, XCB_IMAGE_FORMAT_Z_PIXMAP, segment_,
                                      static_cast<std::uint32_t>(row * width_ * 4)));
  }
  for (const auto cookie : asked) {
    if (!x_.reply(xcb_shm_get_image_reply, cookie)) throw Failure("the screen cannot be read");
  }
  // FNV-1a over the pixels, the unused byte left out.
  std::uint64_t hash = 1469598103934665603ULL;
  const std::size_t count = asked.size() * static_cast<std::size_t>(width_);
  for (std::size_t i = 0; i < count; ++i) hash = (hash ^ (pixels_[i] & 0xFFFFFFU)) * 1099511628211ULL;
  return hash;
}

std::optional<ScreenProbe::Change> ScreenProbe::changeAfter(const std::function<void()>& act, Milliseconds quiet) {
  std::uint64_t shown = look();
  act();
  std::optional<Change> change;
  const Deadline deadline(Milliseconds(10'000));
  while (!deadline.passed()) {
    // What is seen now was there when the looking began, at the latest when it ended.
    const std::uint64_t now = look();
    const auto time = Clock::now();
    if (now != shown) {
      if (!change) change = Change{time, time};
      change->last = time;
      shown = now;
    } else if (change && time - change->last > quiet) {
      return change;
    }
    std::this_thread::sleep_for(pause);
  }
  return std::nullopt;
}

bool ScreenProbe::waitForRest(Milliseconds quiet) {
  std::uint64_t shown = look();
  auto since = Clock::now();
  const Deadline deadline(Milliseconds(10'000));
  while (!deadline.passed()) {
    const std::uint64_t now = look();
    if (now != shown) {
      shown = now;
      since = Clock::now();
    } else if (Clock::now() - since > quiet) {
      return true;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return false;
}

}  // namespace tessaspaces::bench
