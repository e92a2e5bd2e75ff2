#include "ui/KeyMapping.h"

#include <QKeyEvent>
#include <algorithm>
#include <array>
#include <utility>

namespace tessaspaces::KeyMapping {
namespace {

constexpr auto gridKeys = std::to_array<std::pair<int, GridKey>>({
    {Qt::Key_Left, GridKey::left},
    {Qt::Key_Right, GridKey::right},
    {Qt::Key_Up, GridKey::up},
    {Qt::Key_Down, GridKey::down},
    {Qt::Key_Home, GridKey::home},
    {Qt::Key_End, GridKey::end},
    {Qt::Key_Return, GridKey::enter},
    {Qt::Key_Enter, GridKey::enter},
    {Qt::Key_Escape, GridKey::escape},
    {Qt::Key_Backtab, GridKey::backTab},
    {Qt::Key_Backspace, GridKey::backspace},
    {Qt::Key_Delete, GridKey::remove},
    {Qt::Key_Insert, GridKey::insert},
    {Qt::Key_F2, GridKey::rename},
    {Qt::Key_Menu, GridKey::menu},
});

// By their legends on an ANSI keyboard, as the key codes are meant.
constexpr auto keyCodes = std::to_array<std::pair<int, std::uint32_t>>({
    {Qt::Key_A, 0},       {Qt::Key_S, 1},          {Qt::Key_D, 2},        {Qt::Key_F, 3},       {Qt::Key_H, 4},
    {Qt::Key_G, 5},       {Qt::Key_Z, 6},          {Qt::Key_X, 7},        {Qt::Key_C, 8},       {Qt::Key_V, 9},
    {Qt::Key_B, 11},      {Qt::Key_Q, 12},         {Qt::Key_W, 13},       {Qt::Key_E, 14},      {Qt::Key_R, 15},
    {Qt::Key_Y, 16},      {Qt::Key_T, 17},         {Qt::Key_1, 18},       {Qt::Key_2, 19},      {Qt::Key_3, 20},
    {Qt::Key_4, 21},      {Qt::Key_6, 22},         {Qt::Key_5, 23},       {Qt::Key_Equal, 24},  {Qt::Key_9, 25},
    {Qt::Key_7, 26},      {Qt::Key_Minus, 27},     {Qt::Key_8, 28},       {Qt::Key_0, 29},      {Qt::Key_O, 31},
    {Qt::Key_U, 32},      {Qt::Key_I, 34},         {Qt::Key_P, 35},       {Qt::Key_Return, 36}, {Qt::Key_L, 37},
    {Qt::Key_J, 38},      {Qt::Key_K, 40},         {Qt::Key_Comma, 43},   {Qt::Key_N, 45},      {Qt::Key_M, 46},
    {Qt::Key_Period, 47}, {Qt::Key_Tab, 48},       {Qt::Key_Backtab, 48}, {Qt::Key_Space, 49},  {Qt::Key_Backspace, 51},
    {Qt::Key_Escape, 53}, {Qt::Key_F5, 96},        {Qt::Key_F6, 97},      {Qt::Key_F7, 98},     {Qt::Key_F3, 99},
    {Qt::Key_F8, 100},    {Qt::Key_F9, 101},       {Qt::Key_F11, 103},    {Qt::Key_F10, 109},   {Qt::Key_F12, 111},
    {Qt::Key_Home, 115},  {Qt::Key_PageUp, 116},   {Qt::Key_Delete, 117}, {Qt::Key_F4, 118},    {Qt::Key_End, 119},
    {Qt::Key_F2, 120},    {Qt::Key_PageDown, 121}, {Qt::Key_F1, 122},     {Qt::Key_Left, 123},  {Qt::Key_Right, 124},
    {Qt::Key_Down, 125},  {Qt::Key_Up, 126},
});

template <class Table>
auto lookUp(const Table& table, int key) -> std::optional<typename Table::value_type::second_type> {
  const auto* found = std::find_if(table.begin(), table.end(), [&](const auto& entry) { return entry.first == key; });
  if (found == table.end()) return std::nullopt;
  return found->second;
}

}  // namespace

std::optional<GridKey> gridKey(const QKeyEvent& event) {
  const bool shift = event.modifiers().testFlag(Qt::ShiftModifier);
  if (event.key() == Qt::Key_Tab) return shift ? GridKey::backTab : GridKey::tab;
  if (event.key() == Qt::Key_F10 && shift) return GridKey::menu;
  return lookUp(gridKeys, event.key());
}

std::string written(const QKeyEvent& event) {
  QString text = event.text();
  text.removeIf([](QChar character) { return character.category() == QChar::Other_Control; });
  return text.toStdString();
}

KeyCombo combo(const QKeyEvent& event) {
  KeyCombo combo;
  combo.keyCode = lookUp(keyCodes, event.key()).value_or(KeyCombo::noKeyCode);
  const auto modifiers = event.modifiers();
  if (modifiers.testFlag(Qt::ControlModifier)) combo.modifiers |= KeyCombo::control;
  if (modifiers.testFlag(Qt::AltModifier)) combo.modifiers |= KeyCombo::option;
  if (modifiers.testFlag(Qt::ShiftModifier)) combo.modifiers |= KeyCombo::shift;
  if (modifiers.testFlag(Qt::MetaModifier)) combo.modifiers |= KeyCombo::command;
  return combo;
}

}  // namespace tessaspaces::KeyMapping
