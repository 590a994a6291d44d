#ifndef SCALER_ISP_SIMULATOR_ISP_UI_H
#define SCALER_ISP_SIMULATOR_ISP_UI_H

#include <cstddef>
#include <string_view>

#include "scaler_isp/abi/Callbacks.h"

namespace virtual_scaler {

/// The host's callbacks; each may be null.
struct Ui {
    ScalerIspProgressCallback progress = nullptr;
    ScalerIspMessageCallback message = nullptr;
};

/// The callbacks from SetUIFunction; valid until the plug-in is unloaded.
Ui &CurrentUi();

/// Sends a message to the host, with a newline added.
void SendMessage(std::string_view utf8);

/// Progress of one action: 0 at the start, then one report per step, never decreasing; 100 only in
/// Finish.
class Progress {
  public:
    explicit Progress(std::size_t steps);
    void Step(std::size_t count = 1);
    void Finish();

  private:
    void Report();

    std::size_t m_steps;
    std::size_t m_done = 0;
};

} // namespace virtual_scaler

#endif
