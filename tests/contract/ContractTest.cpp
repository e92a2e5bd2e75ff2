#include "contract/ContractTest.h"

#include "contract/SimulatedDriver.h"
#ifdef TESSASPACES_CONTRACT_X11
#include "contract/X11Driver.h"
#endif

namespace tessaspaces::contract {

ManagedDisplay Contract::display(std::size_t index) {
  const auto displays = server().copyManagedDisplaySpaces();
  if (!displays || index >= displays->size()) {
    ADD_FAILURE() << "there is no managed display " << index;
    return {};
  }
  return displays->at(index);
}

std::vector<SpaceID> Contract::spaces(std::size_t index) {
  std::vector<SpaceID> ids;
  for (const auto& space : display(index).spaces.value_or(std::vector<ManagedSpace>{})) {
    ids.push_back(space.id64.value_or(0));
  }
  return ids;
}

std::optional<WindowInfo> Contract::info(WindowID window, WindowListOption option) {
  for (auto& entry : platform().windowList().copyWindowInfo(option).value_or(std::vector<WindowInfo>{})) {
    if (entry.number == window) return entry;
  }
  return std::nullopt;
}

namespace {

std::string nameOf(const testing::TestParamInfo<Backend>& info) {
  return info.param.name;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Simulated, Contract, testing::Values(simulatedBackend()), nameOf);
#ifdef TESSASPACES_CONTRACT_X11
INSTANTIATE_TEST_SUITE_P(X11, Contract, testing::ValuesIn(x11Backends()), nameOf);
#endif

}  // namespace tessaspaces::contract
