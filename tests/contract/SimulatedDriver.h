#pragma once

#include "contract/WorldDriver.h"

namespace tessaspaces::contract {

Backend simulatedBackend();

}  // namespace tessaspaces::contract
