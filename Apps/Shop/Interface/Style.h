#pragma once

/// Where the pictures and the style sheets are inside the program.
inline constexpr const char* ShopResources = "/com/example/CornerCoffee/";

/// Loads the shop's style, which follows the user's choice between light and dark. After GTK's
/// start.
void installStyle();

/// Changes between light and dark, for this session.
void toggleDarkStyle();
