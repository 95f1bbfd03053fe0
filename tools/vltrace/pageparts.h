#pragma once

#include <string_view>

// The parts of the page of vltrace view, from the files in view/: the build makes pageparts.cpp of
// them. pageHtml has the marks {{style}}, {{data}} and {{script}}, in this order, where the others
// go.
extern const std::string_view pageHtml;
extern const std::string_view pageStyle;
extern const std::string_view pageScript;
