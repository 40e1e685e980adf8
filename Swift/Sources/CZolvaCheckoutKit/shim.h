#include <ZolvaCheckoutKit/C/zolvacheckoutkit.h>
