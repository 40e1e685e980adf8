#include "Apps/Shop/ShopApplication.h"

int main(int argc, char** argv) { return ShopApplication().run(argc, argv); }
