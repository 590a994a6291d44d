#ifndef SCALER_ISP_COMMON_LIBRARY_ANCHOR_H
#define SCALER_ISP_COMMON_LIBRARY_ANCHOR_H

/// A symbol inside the library; its address identifies the library's file and thus the directory
/// with the plug-ins. It must stay hidden: a host that referenced an exported one would get its own
/// copy, and the plug-ins would be searched for in the host's directory.
extern wchar_t TCSZ_GLOBAL_SYMBOL[];

#endif
