#ifndef SCALER_ISP_BENCH_CALL_PAIR_H
#define SCALER_ISP_BENCH_CALL_PAIR_H

/// One complete call of the library that reaches the plug-in, and the minimum work of such a call:
/// loading the plug-in, one of its functions, unloading, one record filled and one copied.
///
/// Both use the plug-in in the staged directory. A failure ends the program with a message.

/// Opens the staged library. Call it before measuring, so that loading the library is not measured.
void OpenStagedLibrary();

void CallLibrary();
void CallFloor();

/// The work of the minimum call that is done once per process: a conversion descriptor and a locale
/// switch.
void FloorOfTheFirstCall();

#endif
