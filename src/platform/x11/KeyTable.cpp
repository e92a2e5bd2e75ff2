#include "platform/x11/KeyTable.h"

#include <algorithm>
#include <array>

namespace tessaspaces {
namespace {

// Key codes by their place on an ANSI keyboard, with X11's keysyms (Latin-1 ones are the character itself).
constexpr auto table = std::to_array<KeyMeaning>({
    {0, 'a', 38},       {1, 's', 39},       {2, 'd', 40},       {3, 'f', 41},       {4, 'h', 43},
    {5, 'g', 42},       {6, 'z', 52},       {7, 'x', 53},       {8, 'c', 54},       {9, 'v', 55},
    {11, 'b', 56},      {12, 'q', 24},      {13, 'w', 25},      {14, 'e', 26},      {15, 'r', 27},
    {16, 'y', 29},      {17, 't', 28},      {18, '1', 10},      {19, '2', 11},      {20, '3', 12},
    {21, '4', 13},      {22, '6', 15},      {23, '5', 14},      {24, '=', 21},      {25, '9', 18},
    {26, '7', 16},      {27, '-', 20},      {28, '8', 17},      {29, '0', 19},      {30, ']', 35},
    {31, 'o', 32},      {32, 'u', 30},      {33, '[', 34},      {34, 'i', 31},      {35, 'p', 33},
    {36, 0xff0d, 36},   {37, 'l', 46},      {38, 'j', 44},      {39, '\'', 48},     {40, 'k', 45},
    {41, ';', 47},      {42, '\\', 51},     {43, ',', 59},      {44, '/', 61},      {45, 'n', 57},
    {46, 'm', 58},      {47, '.', 60},      {48, 0xff09, 23},   {49, ' ', 65},      {50, '`', 49},
    {51, 0xff08, 22},   {53, 0xff1b, 9},    {96, 0xffc2, 71},   {97, 0xffc3, 72},   {98, 0xffc4, 73},
    {99, 0xffc0, 69},   {100, 0xffc5, 74},  {101, 0xffc6, 75},  {103, 0xffc8, 95},  {109, 0xffc7, 76},
    {111, 0xffc9, 96},  {115, 0xff50, 110}, {116, 0xff55, 112}, {117, 0xffff, 119}, {118, 0xffc1, 70},
    {119, 0xff57, 115}, {120, 0xffbf, 68},  {121, 0xff56, 117}, {122, 0xffbe, 67},  {123, 0xff51, 113},
    {124, 0xff53, 114}, {125, 0xff54, 116}, {126, 0xff52, 111},
});

}  // namespace

std::optional<KeyMeaning> meaningOf(std::uint32_t keyCode) {
  const auto* found =
      std::find_if(table.begin(), table.end(), [&](const KeyMeaning& entry) { return entry.keyCode == keyCode; });
  if (found == table.end()) return std::nullopt;
  return *found;
}

}  // namespace tessaspaces
