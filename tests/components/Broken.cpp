// Broken.cpp - the broken twin of the test component library: no DllCreateInstance
//
// It loads like a component library but exports no entry point, so creating
// a class registered to it fails at the look-up of "DllCreateInstance".
#include <quarn/core/ComponentLibrary.h>

extern "C" QUARN_COMPONENT_EXPORT int quarnTestBrokenMarker() { return 42; }
