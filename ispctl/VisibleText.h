#ifndef ISPCTL_VISIBLE_TEXT_H
#define ISPCTL_VISIBLE_TEXT_H

#include <string>
#include <string_view>

namespace ispctl {

/// RETURNS whether a character controls the display instead of being displayed: C0, DEL and C1
/// controls, Unicode's direction and tag characters, its line and paragraph separators.
bool IsControl(char32_t value);

/// Which control characters are layout and are kept.
enum class Layout {
    Lines,  ///< newlines and tabs
    OneLine ///< none
};

/// Which characters the terminal can display.
enum class Charset { Utf8, Ascii };

/// RETURNS the text with everything escaped that could act on a terminal: \xNN for a control byte
/// and for a byte that is not UTF-8, \u{N} for any other control character and, in ASCII, for every
/// character outside it. Backslashes are kept, so the result is for reading only.
std::string Visible(std::string_view bytes, Layout layout, Charset charset);

/// What becomes of the library's own colours, ESC[31m, ESC[32m and ESC[m.
enum class Colours { Keep, Drop };

/// What becomes of the NUL that the library prints as a part of some of its messages.
enum class Nul { Keep, Show };

/// Makes control characters visible in a stream that arrives in pieces of any length. Newlines and
/// tabs are kept.
class VisibleStream {
  public:
    explicit VisibleStream(Charset charset, Colours colours = Colours::Keep, Nul nul = Nul::Show)
        : m_charset(charset), m_colours(colours), m_nul(nul) {}

    /// RETURNS what can be shown now; keeps an incomplete character or colour sequence.
    std::string Add(std::string_view bytes);
    /// RETURNS the kept bytes, made visible.
    std::string Finish();

  private:
    std::string Convert(bool complete);

    Charset m_charset;
    Colours m_colours;
    Nul m_nul;
    std::string m_pending; ///< an incomplete character or colour
};

} // namespace ispctl

#endif
