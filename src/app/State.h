#pragma once

namespace tessaspaces {

/// How something stands; each state has a symbol and a colour.
enum class State { ok, off, waiting, warning, failed };

}  // namespace tessaspaces
