#pragma once

// The routines of the probe catalogue.

void Nothing();
void Echo(const char* text, char* more, bool flag, int number);
void PrintAndLog();
void PrintPartOfALine();
void Crash();
void Abort();
void Throw();
void ExitEarly();
void Hang();  // Writes its process id to "pid" first.
void WriteEmpty();
void WritePcm();
void WriteTooMuch();  // More than the process may write to a file.
void WriteNotFinite();
void WriteLoud();  // Up to twice full scale.
void WriteNoWave();
void LeaveOpen();
void Copy(const char* inFile, const char* outFile);
void OpenByAnyName();
void OpenOutside();
