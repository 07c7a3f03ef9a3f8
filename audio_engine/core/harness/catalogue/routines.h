#pragma once

// The routine that belongs to no facility; the catalogue says what it exercises.

void TestSilkMos();
