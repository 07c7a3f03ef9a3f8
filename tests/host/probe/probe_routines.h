#pragma once

#include <string>

#include "harness/declared.h"

// The routines of the probe catalogue.

ROUTINE(void, Nothing);
ROUTINE(void, Echo, const char* text, char* more, bool flag, int number);
ROUTINE(void, PrintAndLog);
ROUTINE(void, PrintPartOfALine);
ROUTINE(void, Break, const char* how);  // Copies "in.pcm" to "broken.pcm", with a fault.
ROUTINE(void, Measure, bool whole);     // Says what it found, in whole lines or in torn ones.
ROUTINE(void, Crash);
ROUTINE(void, CrashIn, const char* how);  // In a function with a name of its own.
ROUTINE(void, Abort);
ROUTINE(void, Throw);
ROUTINE(void, ExitEarly);
ROUTINE(void, Hang);  // Writes its process id to "pid" first.
ROUTINE(void, WriteNothing);
ROUTINE(void, WriteEmpty);
ROUTINE(void, WritePcm);
ROUTINE(void, WriteTooMuch);  // More than the process may write to a file.
ROUTINE(void, FlushTooMuch);  // The same, and closes the file later.
ROUTINE(void, WriteNotFinite);
ROUTINE(void, WriteLoud);  // Up to twice full scale.
ROUTINE(void, WriteNoWave);
ROUTINE(void, LeaveOpen);
ROUTINE(void, Copy, const char* inFile, const char* outFile);
ROUTINE(void, NeedNothing);
ROUTINE(void, WriteFor, const char* word);  // Into "for-" and the word.
ROUTINE(void, OpenByAnyName);
ROUTINE(void, OpenOutside);
ROUTINE(void, ReadAll, const char* inFile);
ROUTINE(void, ReadAndLeaveOpen, const char* inFile);
ROUTINE(void, ReadBoth, const char* first, const char* second);
ROUTINE(void, PrintCoreLimit);
ROUTINE(void, ReadList);  // Does not, but its row says that it lists further inputs.
ROUTINE(void, StatOf, const char* name);                    // Says what is there.
ROUTINE(void, Spoil, const char* how, const char* inFile);  // Changes its own input.
ROUTINE(void, WriteBytes, int count);
ROUTINE(void, WriteHugeFloats, int megabytes);           // Zeros that take no room on the disk.
ROUTINE(void, WriteWave, int dataBytes, int riffBytes);  // 8 bytes of samples, whatever they say.
ROUTINE(void, WriteTo, const char* outFile);
ROUTINE(void, ChangeRights, const char* outFile);           // And writes nothing.
ROUTINE(void, OpenAs, const char* mode, const char* file);  // Not declared in its row.
ROUTINE(void, WriteItsProcess);                             // Other bytes each time.
ROUTINE(void, PrintForEver);
ROUTINE(void, LogForEver);
ROUTINE(void, PrintMuch, int lines);
ROUTINE(void, LogMuch);
ROUTINE(void, LeaveDaemon, bool hang);    // Leaves a process that has cut all ties; see "daemon".
ROUTINE(void, Allocate);                  // 4 GiB
ROUTINE(void, WorkOn, int milliseconds);  // Writes its output only after it has returned.
ROUTINE(void, PlayOn, int milliseconds);  // The same, and its row says so.
ROUTINE(void, StandStill);                // Once it has written its output.
ROUTINE(void, RecordForEver, int bytes);  // Writes so many bytes again and again.
ROUTINE(void, GoWithout, const char* inFile);
ROUTINE(void, CopyList,
        int milliseconds);  // Copies those of its 40 files that are there, one by one.
ROUTINE(void, HangOn, const char* inFile);
ROUTINE(void, CopyIfThere, const char* outFile);    // "fixed.in", or nothing.
ROUTINE(void, ReportOnList, const char* outFile);   // Has a first line whatever is there.
ROUTINE(void, PlayWhatIsNone, const char* inFile);  // Its engine says so.
const std::string& RefusedByTheEngine();            // Empty for nothing.
ROUTINE(void, ReadSome, const char* inFile, int bytes);
ROUTINE(void, ReadSomeOnPurpose, const char* inFile, int bytes);  // As its row says.
ROUTINE(void, DecodeSome, const char* inFile);                    // Up to the first 'x'.
ROUTINE(void, HaveSaid, const char* line);                        // By the engine, as a refusal.
const std::string& SaidByTheEngine();                             // Empty for nothing.
ROUTINE(void, Choose, int number, bool flag, const char* word, int other);  // Few numbers do.
ROUTINE(void, UseSeven, int number);                                        // Whatever it is given.
ROUTINE(void, Mark);  // A quarter of a stereo track in its second channel, as a detector does.
ROUTINE(void, AppendTo, const char* outFile);
ROUTINE(void, WriteUnless, const char* word, int bytes);  // Nothing for "nothing".
ROUTINE(void, TakeTurn, const char* turns);          // Says in that file when it begins and ends.
ROUTINE(void, TakeTurnOnDevice, const char* turns);  // The same, as its row says with a device,
ROUTINE(void, TakeTurnByClock, const char* turns);   // by the clock,
ROUTINE(void, TakeTurnAndPlay, const char* turns);   // or with something that runs on.
HELPER(void, Helper);
