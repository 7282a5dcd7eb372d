#pragma once
// The files of tools/draw/page as texts of the program; made by the build (cmake/embed.cmake).

#include <string_view>

namespace statecut::draw::embedded {

extern const std::string_view coloursCss, pictureCss, pageCss;
extern const std::string_view pageHtml;
extern const std::string_view dataJs, mapJs, lookupJs, statesJs;
extern const std::string_view notice;  // data/NOTICE.md

}  // namespace statecut::draw::embedded
