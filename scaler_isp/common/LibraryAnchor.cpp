#include "scaler_isp/common/LibraryAnchor.h"

wchar_t TCSZ_GLOBAL_SYMBOL[] = L"GlobalSymbol";
