#pragma once

// The routines over effects and music; the catalogue says what each one exercises.

void TestHRTF();
