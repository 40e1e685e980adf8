#pragma once

#include <array>
#include <cstddef>

#include "Apps/Shop/Model/Money.h"

struct MenuItem {
  /// Also the name of its picture.
  const char* id;
  const char* name;
  const char* description;
  const char* category;
  Cents price;
};

/// What the shop sells.
inline constexpr std::array<MenuItem, 8> ShopMenu{{
    {"espresso", "Espresso", "Short and dark", "coffee", 240},
    {"cappuccino", "Cappuccino", "With a crown of foam", "coffee", 360},
    {"flat-white", "Flat white", "Double shot, silky", "coffee", 390},
    {"cold-brew", "Cold brew", "Steeped overnight", "coffee", 420},
    {"croissant", "Croissant", "Butter, baked at six", "bakery", 280},
    {"beans", "House beans", "250 g, chocolatey", "pantry", 1150},
    {"pour-over", "Pour-over set", "Glass, steel filter", "equipment", 3400},
    {"machine", "Coffee machine", "Nineteen bars", "equipment", 24900},
}};
