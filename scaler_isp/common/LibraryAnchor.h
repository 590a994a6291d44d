#ifndef SCALER_ISP_COMMON_LIBRARY_ANCHOR_H
#define SCALER_ISP_COMMON_LIBRARY_ANCHOR_H

/// A symbol inside the library; its address leads to the library's file and so to the folder with
/// the plug-ins. It must stay hidden: a host that referenced an exported one would get a copy of
/// its own, and the plug-ins would be looked for beside the host.
extern wchar_t TCSZ_GLOBAL_SYMBOL[];

#endif
