#ifndef ISPCTL_EXPLAIN_XML_TEXT_H
#define ISPCTL_EXPLAIN_XML_TEXT_H

#include <string>
#include <string_view>

namespace ispctl {

/// Text for an element or a quoted attribute of XML or HTML: markup characters become references;
/// bytes, control characters and noncharacters that XML forbids become visible as \xNN and \u{N}.
std::string XmlText(std::string_view bytes);

} // namespace ispctl

#endif
