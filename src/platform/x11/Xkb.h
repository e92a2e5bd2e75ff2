#pragma once

#include "platform/x11/Xcb.h"

// The header of a C library, with a C++ keyword for a member's name.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit
