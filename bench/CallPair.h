#ifndef SCALER_ISP_BENCH_CALL_PAIR_H
#define SCALER_ISP_BENCH_CALL_PAIR_H

/// Complete calls of the library that reach the plug-in, and what a program without the library
/// would do: zero two records, open the plug-in, look up its eleven functions, call one, close it.
///
/// Both use the plug-in in the staged directory, which checks the record that it receives. A
/// failure ends the program with a message.

/// Opens the staged library. Call it before measuring, so that loading the library is not measured.
void OpenStagedLibrary();

/// One call without a file.
void CallLibrary();
void CallPeer();

/// One call that programs a file of 16 banks. The peer resolves and opens the file itself.
void IspLibrary();
void IspPeer();

/// CallPeer with what is done once in a process: a conversion descriptor and a locale for
/// characters.
void PeerOfTheFirstCall();

#endif
