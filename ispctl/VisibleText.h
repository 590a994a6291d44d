#ifndef ISPCTL_VISIBLE_TEXT_H
#define ISPCTL_VISIBLE_TEXT_H

#include <string>
#include <string_view>

namespace ispctl {

/// RETURNS whether a character acts on what is shown instead of being shown: C0, DEL and C1
/// controls, Unicode's direction and tag characters, its line and paragraph separators.
bool IsControl(char32_t value);

/// Which characters of a text structure what is shown and stay as they are.
enum class Layout {
    Lines,  ///< line ends and tabs
    OneLine ///< none
};

/// Which characters the reader can show.
enum class Charset { Utf8, Ascii };

/// RETURNS the text with everything that could act on a terminal made visible: \xNN for a control
/// byte and for a byte that is not UTF-8, \u{N} for any other control character and, in ASCII, for
/// every character outside it. Backslashes stay as they are.
std::string Visible(std::string_view bytes, Layout layout, Charset charset);

/// Makes what library and plug-ins print visible as it comes, in pieces of any length. Line ends,
/// tabs and the library's own colours (ESC[31m, ESC[32m, ESC[m) stay.
class VisibleStream {
  public:
    explicit VisibleStream(Charset charset) : m_charset(charset) {}

    /// RETURNS what can be shown now; a character or colour that is not complete yet waits.
    std::string Add(std::string_view bytes);
    /// RETURNS what still waits, made visible.
    std::string Finish();

  private:
    std::string Take(bool complete);

    Charset m_charset;
    std::string m_waiting; ///< a few bytes
};

} // namespace ispctl

#endif
