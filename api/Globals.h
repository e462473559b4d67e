#pragma once
// The process-wide state of the exported calls: the engine that
// TARVOS_Init builds and TARVOS_Exit destroys, and the configuration reader.
#include <memory>

#include "api/Engine.h"
#include "checker/CheckServices.h"

// Null before TARVOS_Init and after TARVOS_Exit. Written only by those two,
// which must not overlap any other call.
extern std::unique_ptr<CEngine> g_pEngine;

// Reads the switches of a configuration file into switches, which should
// hold the defaults. Returns 1 when the file was parsed; 0 (switches
// unchanged, "Failed reading file <name>") otherwise.
int LoadZYGConfigre(const char* sFilename, _tCheckSwitches& switches);
