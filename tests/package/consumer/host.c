#include <scaler_isp/OperateScaler.h>

static int calls;

static void OnProgress(int percent) {
    (void)percent;
    ++calls;
}

static void OnMessage(wchar_t *text) {
    (void)text;
    ++calls;
}

int main(void) {
    if (OperateScaler(L"", NULL, OnProgress, OnMessage) != SCALER_ISP_REFUSED) {
        return 1;
    }
    if (OperateScalerEx(L"tool \"odd", NULL, OnProgress, OnMessage, &calls) != -1) {
        return 2;
    }
    return calls;
}
