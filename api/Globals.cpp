#include "api/Globals.h"

std::unique_ptr<CEngine> g_pEngine;
