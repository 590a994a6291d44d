#ifndef ISPCTL_EXPLAIN_FLASH_TEXT_H
#define ISPCTL_EXPLAIN_FLASH_TEXT_H

#include <string>

#include "VisibleText.h"
#include "explain/FlashPicture.h"

namespace ispctl {

/// The picture for a terminal, with colours (SGR sequences); StripColours takes them out.
std::string FlashText(const FlashPicture &picture, Charset charset);

/// The text without its SGR sequences.
std::string StripColours(std::string_view text);

} // namespace ispctl

#endif
