#pragma once

namespace tessaspaces {

/// One callable out of several, for `std::visit`: each handles the types that it takes.
template <class... Cases>
struct Overloaded : Cases... {
  using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

}  // namespace tessaspaces
