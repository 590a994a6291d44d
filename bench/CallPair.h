#ifndef SCALER_ISP_BENCH_CALL_PAIR_H
#define SCALER_ISP_BENCH_CALL_PAIR_H

/// One whole call of the library that reaches the plug-in, and the least that such a call can cost:
/// loading the plug-in, one function of it, unloading, one record filled and one copied.
///
/// Both run in the staged folder's plug-in. A failure ends the program with a message.

/// Opens the staged library; to be called before anything is measured.
void OpenStagedLibrary();

void CallLibrary();
void CallFloor();

/// What the floor pays once in a process: a conversion descriptor and a switch of the locale.
void FloorOfTheFirstCall();

#endif
