#include "Tests/GTK/Host.h"
