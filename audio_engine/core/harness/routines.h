#pragma once

// Every routine of the bench; the catalogue says what each one exercises.

// Harness.
void TestSilkMos();

// Effects and music processing.
void TestHRTF();
